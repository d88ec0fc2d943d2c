#include "shell/biosinterface.h"

#include "inputpanel/myinputpanelcontext.h"
#include "shell/pagename.h"
#include "shell/shiftinglayout.h"
#include "widgets/metrics.h"
#include "widgets/settingsbutton.h"

#include <QDebug>
#include <QGuiApplication>
#include <QLineEdit>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {
constexpr char okName[] = "ok";
constexpr char cancelName[] = "cancel";
constexpr QSize titleBarButtonSize(100, 32);
constexpr int titleBarButtonFontSize = 18; // px
constexpr int titleFontSize = 20;          // px
constexpr int touchPollInterval = 50;      // ms

/// Adds the button to the layout or hides it. A visible button without a layout would appear in
/// the window's corner.
void placeOrHide(QLayout *layout, QWidget *button, bool placed)
{
    if (placed) {
        layout->addWidget(button);
    } else {
        button->hide();
    }
}
} // namespace

// clang-format off
const BiosInterface::PageActions BiosInterface::s_pageActions[] = {
    {EthernetPage,     &BiosInterface::loadEthernetSettings,     &BiosInterface::saveEthernetSettings},
    {FileTransferPage, &BiosInterface::loadFiletransferSettings, &BiosInterface::saveFiletransferSettings},
    {MiscPage,         &BiosInterface::loadMiscSettings,         &BiosInterface::saveMiscSettings},
    {CalibrationPage,  &BiosInterface::loadCalibrationSettings,  nullptr},
    {SystemStatusPage, &BiosInterface::loadSystemStatusSettings, nullptr},
    {FontPage,         &BiosInterface::loadFontSettings,         &BiosInterface::saveFontSettings},
    {TimeSettingPage,  &BiosInterface::loadTimeSettings,         nullptr},
};
// clang-format on

void BiosInterface::runSettingsUI()
{
    if (sender() == nullptr) {
        return; // not called by a button
    }
    const int page = pageIndexFromName(sender()->objectName());
    m_pages->setCurrentIndex(page);
    loadSettings(page);
    fitShownPage();
}

void BiosInterface::titleBarButtonPressed()
{
    if (sender() == nullptr) {
        return;
    }
    m_clockTick.stop();
    if (sender()->objectName().contains(okName)) {
        saveSettings(m_pages->currentIndex());
    }
    m_pages->setCurrentIndex(MainSettingsPage);
}

void BiosInterface::loadSettings(int pageIndex)
{
    runPageAction(pageIndex, &PageActions::load);
}

void BiosInterface::saveSettings(int pageIndex)
{
    runPageAction(pageIndex, &PageActions::save);
}

void BiosInterface::runPageAction(int pageIndex, bool (BiosInterface::*PageActions::*action)())
{
    for (const PageActions &actions : s_pageActions) {
        if (actions.page == pageIndex && actions.*action && !(this->*(actions.*action))()) {
            // Saving uses the same text: "Load" is the wording for both.
            qDebug() << QString("Load settings at page %1 error.").arg(pageIndex);
        }
    }
}

QHBoxLayout *BiosInterface::createTitleBar(const QString &title, bool withOk, bool withCancel)
{
    SettingsButton *cancel = createTitleBarButton(tr("Cancel"), cancelName);
    auto *caption = new SettingsButton(title, titleFontSize, this);
    caption->setFixedHeight(titleBarButtonSize.height());
    caption->setPressEnabled(false);
    SettingsButton *ok = createTitleBarButton(tr("OK"), okName);

    auto *titleBar = new QHBoxLayout;
    titleBar->setContentsMargins(0, 0, 0, 0);
    titleBar->setSpacing(0);
    placeOrHide(titleBar, cancel, withCancel);
    titleBar->addWidget(caption);
    placeOrHide(titleBar, ok, withOk);
    return titleBar;
}

SettingsButton *BiosInterface::createTitleBarButton(const QString &text, const QString &name)
{
    auto *button = new SettingsButton(text, titleBarButtonFontSize, this);
    button->setObjectName(name);
    button->setFixedSize(titleBarButtonSize);
    connect(button, &SettingsButton::buttonClicked, this, &BiosInterface::titleBarButtonPressed);
    return button;
}

/// Creates the layout below the title bar, with a margin of @p margin pixels.
QVBoxLayout *BiosInterface::createContent(int margin)
{
    auto *content = new QVBoxLayout;
    content->setContentsMargins(margin, margin, margin, margin);
    return content;
}

void BiosInterface::setPageLayout(QLayout *titleBar, QLayout *content, QWidget *page)
{
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(titleBar);
    layout->addLayout(content);
}

/// Fits only the current page, because QStackedWidget resizes no other.
void BiosInterface::fitShownPage()
{
    QWidget *page = m_pages->currentWidget();
    if (page->layout() == nullptr || m_pages->currentIndex() <= MainSettingsPage) {
        return; // these pages need no fitting
    }
    auto &fit = m_fits.at(size_t(m_pages->currentIndex()));
    if (!fit) {
        fit.emplace(page);
    }
    fit->fit([this, page] { return keypadFitsAtEachEdit(page); });
}

bool BiosInterface::keypadFitsAtEachEdit(const QWidget *page) const
{
    const auto edits = page->findChildren<QLineEdit *>(Qt::FindDirectChildrenOnly);
    return std::all_of(edits.cbegin(), edits.cend(),
                       [this](const QLineEdit *edit) { return m_inputContext->panelFitsAt(edit); });
}

/// Moves the page down if the keypad fits neither below nor above @p field. On a screen 480 pixels
/// high, the first port's line edits need this: the keypad's upper keys would be off the screen.
void BiosInterface::makeRoomForKeypad(const QWidget *field)
{
    m_windowLayout->setShift(0); // the keypad may still be open for another line edit
    m_windowLayout->setShift(m_inputContext->shiftFor(field));
}

void BiosInterface::takeRoomBack()
{
    if (QGuiApplication::mouseButtons() != Qt::NoButton) {
        // Wait until the finger is lifted. The widget that it touches must not move away.
        QTimer::singleShot(touchPollInterval, this, &BiosInterface::takeRoomBack);
    } else if (!m_inputContext->panel()->isVisible()) {
        m_windowLayout->setShift(0);
    }
}

void BiosInterface::setWidgetWithStyle(QWidget *widget)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, Qt::white);
    widget->setPalette(palette);
    QFont font = widget->font();
    font.setPixelSize(Metrics::captionFont);
    widget->setFont(font);
}
