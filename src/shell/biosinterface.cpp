#include "shell/biosinterface.h"

#include "inputpanel/myinputpanelcontext.h"
#include "inputpanel/platformbridge.h"
#include "system/commandline.h"
#include "system/fontnames.h"
#include "system/process.h"
#include "system/screensize.h"
#include "system/settingskeys.h"
#include "system/versionfiles.h"
#include "system/xrandroutput.h"
#include "widgets/settingsbutton.h"
#include "widgets/stackwidgetpage.h"
#include "widgets/startingapplicationaniationbutton.h"
#include "widgets/touchstyle.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int rescuePollInterval = 200; // ms

constexpr int fontPixelSize = 28;
constexpr int smallFontPixelSize = 20;
/// Models with a screen too small for the usual font.
constexpr const char *smallFontModels[] = {"K07", "K21"};

int fontPixelSizeFor(const QStringList &model)
{
    for (const char *name : smallFontModels) {
        if (model.contains(QLatin1String(name))) {
            return smallFontPixelSize;
        }
    }
    return fontPixelSize;
}

/// Takes what room the window has. Asking all pages how much they need would lay out each of them,
/// with its fonts, before the first one is seen.
class PageStack : public QStackedWidget
{
public:
    using QStackedWidget::QStackedWidget;

    QSize sizeHint() const override { return {}; }
    QSize minimumSizeHint() const override { return {}; }
};
} // namespace

BiosInterface::BiosInterface(QWidget *parent, const ToolLimits &limits)
    : QWidget(parent)
    , m_limits(limits)
    , m_rescuePoll(new QTimer(this))
{
    connect(m_rescuePoll, &QTimer::timeout, this, &BiosInterface::slotRescueTimesup);
    m_rescuePoll->start(rescuePollInterval);
    readINI();
    preAction();
    init();
}

BiosInterface::~BiosInterface()
{
    installInputContext(nullptr);
    delete m_countDown;
    deletePageButtons();
    while (m_pages->count() > 0) {
        delete m_pages->widget(m_pages->count() - 1);
    }
    delete m_pages;
}

int BiosInterface::getDebugLevel() const
{
    return m_debugLevel;
}

/// What has to be known and applied before the window is built.
void BiosInterface::preAction()
{
    readDebugLevel();
    readScreenSize();
    findDisplayOutput();
    setScreenSaving();
    setBackLighting();
    watchScreens(); // before the orientation, which changes the size of the screen
    setScreenOrientation();
}

void BiosInterface::readDebugLevel()
{
    const QString level = m_settings.value(SettingsKeys::debugLevel);
    if (!level.isEmpty()) {
        m_debugLevel = level.toInt();
    }
}

void BiosInterface::readScreenSize()
{
    if (const auto size = parseScreenSize(m_settings.value(SettingsKeys::screenSize))) {
        m_screenWidth = size->width();
        m_screenHeight = size->height();
    }
}

void BiosInterface::findDisplayOutput()
{
    m_displayOutput = connectedOutputName(readOutput(outputQueryCommand(), m_limits.tool));
}

void BiosInterface::watchScreens()
{
    const auto screens = QGuiApplication::screens();
    for (QScreen *screen : screens) {
        watchScreen(screen);
    }
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &BiosInterface::watchScreen);
}

void BiosInterface::watchScreen(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, [this, screen] {
        slotresize(static_cast<int>(QGuiApplication::screens().indexOf(screen)));
    });
}

void BiosInterface::slotresize(int screen)
{
    if (const QScreen *resized = QGuiApplication::screens().value(screen)) {
        const QSize size = resized->geometry().size();
        fitRowFonts(size.width()); // before: a large font would not let the window become narrow
        layOutPages();
        resize(size);
        update();
    }
}

void BiosInterface::init()
{
    setUpWindow();
    QApplication::setStyle(new TouchStyle);
    // Now, while the window has no children that would each take the style's colours anew.
    QCoreApplication::sendPostedEvents(this, QEvent::ApplicationPaletteChange);
    m_inputContext = std::make_unique<MyInputPanelContext>();
    installInputContext(m_inputContext.get());
    setUpFont();
    createPageStack();
    // A line edit asks for the application's font before it has its own. The usual one, which no
    // page shows, would have to be looked for among all fonts.
    const QFont usualFont = QApplication::font();
    QApplication::setFont(font());
    buildPages();
    QApplication::setFont(usualFont);
}

void BiosInterface::setUpWindow()
{
    if (m_screenWidth > 0 && m_screenHeight > 0) {
        resize(m_screenWidth, m_screenHeight);
    } else {
        resize(QGuiApplication::primaryScreen()->virtualGeometry().size());
    }
    setWindowFlags(Qt::FramelessWindowHint);
}

void BiosInterface::setUpFont()
{
    for (const char *substitute : fontSubstitutes) {
        QFont::insertSubstitution(fontFamily, QLatin1String(substitute));
    }
    QFont windowFont = font();
    windowFont.setFamily(fontFamily);
    windowFont.setWeight(QFont::Bold);
    windowFont.setPixelSize(fontPixelSizeFor(getCurrentRuntimeModel()));
    setFont(windowFont);
}

void BiosInterface::createPageStack()
{
    m_pages = new PageStack(this);
    for (int page = 0; page <= MainSettingsPage; ++page) {
        m_pages->addWidget(new StackWidgetPage);
    }
    while (m_pages->count() < PageCount) {
        auto *page = new StackWidgetPage(StackWidgetPage::Glow);
        m_pages->addWidget(page);
        useRowFont(page); // before it has children: a new font makes some build their popups
    }
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_pages);
    m_pages->setCurrentIndex(CountDownPage);
}

void BiosInterface::buildPages()
{
    initCountDownPage();
    initMainSettingsButtonsPage();
    initCOMPortPage();
    initEthernetPage();
    initFileTransferPage();
    initMiscPage();
    initCalibrationPage();
    initSystemStatusPage();
    initHomeKeyPage();
    initFontSettingPage();
}

void BiosInterface::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        setScreenOrientation();
    }
    QWidget::changeEvent(event);
}
