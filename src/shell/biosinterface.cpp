#include "shell/biosinterface.h"

#include "inputpanel/myinputpanelcontext.h"
#include "inputpanel/platformbridge.h"
#include "shell/shiftinglayout.h"
#include "system/files/versionfiles.h"
#include "system/fontnames.h"
#include "system/output/tooloutput.h"
#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/settings/settingskeys.h"
#include "widgets/settingsbutton.h"
#include "widgets/stackwidgetpage.h"
#include "widgets/startingapplicationaniationbutton.h"
#include "widgets/touchstyle.h"

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QStackedWidget>

namespace {
constexpr int rescuePollInterval = 200; // ms

constexpr int fontPixelSize = 28;
constexpr int smallFontPixelSize = 20;
/// Models whose screen is too small for the usual font.
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

/// Page stack without size hints. Otherwise a large page would make the window larger than the
/// screen.
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

/// Reads and applies everything that the window needs before it is built.
void BiosInterface::preAction()
{
    readDebugLevel();
    readScreenSize();
    findDisplayOutput();
    setScreenSaving();
    setBackLighting();
    watchScreens(); // first: setScreenOrientation() changes the screen size
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
        resize(resized->geometry().size());
        update();
    }
}

void BiosInterface::init()
{
    setUpWindow();
    QApplication::setStyle(new TouchStyle);
    m_inputContext = std::make_unique<MyInputPanelContext>();
    connect(m_inputContext.get(), &MyInputPanelContext::aboutToShow, this,
            &BiosInterface::makeRoomForKeypad);
    connect(m_inputContext.get(), &MyInputPanelContext::hidden, this, &BiosInterface::takeRoomBack);
    installInputContext(m_inputContext.get());
    setUpFont();
    createPageStack();
    buildPages();
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
        m_pages->addWidget(new StackWidgetPage(StackWidgetPage::Glow));
    }
    m_windowLayout = new ShiftingLayout(this);
    m_windowLayout->setContentsMargins(0, 0, 0, 0);
    m_windowLayout->setSpacing(0);
    m_windowLayout->addWidget(m_pages);
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

/// Paints the strip that makeRoomForKeypad() uncovers when it moves the page stack.
void BiosInterface::paintEvent(QPaintEvent *event)
{
    QPainter(this).fillRect(event->rect(), Qt::black);
}

void BiosInterface::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitShownPage();
}

void BiosInterface::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        setScreenOrientation();
    }
    QWidget::changeEvent(event);
}
