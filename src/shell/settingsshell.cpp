#include "shell/biosinterface.h"

#include "pages/rowfont.h"
#include "shell/pagename.h"
#include "widgets/settingsbutton.h"

#include <QDebug>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr char okName[] = "ok";
constexpr char cancelName[] = "cancel";
constexpr QSize titleBarButtonSize(100, 32);
constexpr int titleBarButtonFontSize = 18; // px
constexpr int titleFontSize = 20;          // px
constexpr int labelFontSize = 24;          // px

/// A button that no layout holds would show at the window's corner.
void placeOrHide(QLayout *layout, QWidget *button, bool placed)
{
    if (placed) {
        layout->addWidget(button);
    } else {
        button->hide();
    }
}

void setFontSize(QWidget *widget, int pixelSize)
{
    QFont font = widget->font();
    font.setPixelSize(pixelSize);
    widget->setFont(font);
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
        return; // called by its name, not by a button
    }
    const int page = pageIndexFromName(sender()->objectName());
    m_pages->setCurrentIndex(page);
    loadSettings(page);
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
            // "Load" after saving too: both paths share one message.
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

/// What goes below a title bar, with @p margin pixels around it.
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

/// From now on @p widget, a page or a part of one with a font of its own, has a font that fits the
/// window's width.
void BiosInterface::useRowFont(QWidget *widget)
{
    m_rowWidgets += widget;
    setFontSize(widget, rowFontSize(font().pixelSize(), width()));
}

void BiosInterface::fitRowFonts(int width)
{
    const int pixelSize = rowFontSize(font().pixelSize(), width);
    for (QWidget *widget : std::as_const(m_rowWidgets)) {
        setFontSize(widget, pixelSize);
    }
}

/// Makes the layouts, those of hidden pages too, forget at once what room they needed before.
void BiosInterface::layOutPages()
{
    for (int page = 0; page < m_pages->count(); ++page) {
        if (QLayout *pageLayout = m_pages->widget(page)->layout()) {
            pageLayout->activate();
        }
    }
    m_pages->updateGeometry();
    layout()->activate();
}

void BiosInterface::setWidgetWithStyle(QWidget *widget)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, Qt::white);
    widget->setPalette(palette);
    QFont font = widget->font();
    font.setPixelSize(labelFontSize);
    widget->setFont(font);
}
