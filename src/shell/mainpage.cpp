#include "shell/biosinterface.h"

#include "shell/pagebuttongrid.h"
#include "shell/pagename.h"
#include "widgets/heading.h"
#include "widgets/metrics.h"
#include "widgets/settingsbutton.h"

#include <QFrame>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int spaceAboveLine = 20;  // px
constexpr int buttonSpacing = 11;   // px
constexpr int headingFontSize = 28; // px

/// Creates the heading, which is larger than those of the settings pages.
QLabel *createMainHeading(const QString &text, QWidget *parent)
{
    QLabel *heading = createHeading(text, parent);
    QFont font = heading->font();
    font.setPixelSize(headingFontSize);
    font.setWeight(QFont::Bold);
    heading->setFont(font);
    return heading;
}

QFrame *createLine(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}
} // namespace

// Same order as the members: deletePageButtons() deletes the buttons in this order.
const BiosInterface::PageButton BiosInterface::s_pageButtons[] = {
    {&BiosInterface::m_comPort, QT_TR_NOOP("COM Port"), ComPortPage},
    {&BiosInterface::m_ethernet, QT_TR_NOOP("Ethernet"), EthernetPage},
    {&BiosInterface::m_fileTransfer, QT_TR_NOOP("File Transfer"), FileTransferPage},
    {&BiosInterface::m_backlight, QT_TR_NOOP("Backlight"), BacklightPage},
    {&BiosInterface::m_miscellaneous, QT_TR_NOOP("Miscellaneous"), MiscPage},
    {&BiosInterface::m_calibration, QT_TR_NOOP("Calibration"), CalibrationPage},
    {&BiosInterface::m_volume, QT_TR_NOOP("Volume"), VolumePage},
    {&BiosInterface::m_systemStatus, QT_TR_NOOP("System Status"), SystemStatusPage},
    {&BiosInterface::m_homeKey, QT_TR_NOOP("Home Key"), HomeKeyPage},
    {&BiosInterface::m_installFonts, QT_TR_NOOP("Install Fonts"), FontPage},
};

void BiosInterface::initMainSettingsButtonsPage()
{
    QWidget *page = m_pages->widget(MainSettingsPage);
    m_runApplication = new SettingsButton(tr("Run Application"), page);
    connect(m_runApplication, &SettingsButton::buttonClicked, this, &BiosInterface::runApplication);
    createPageButtons();

    QVBoxLayout *content = createContent(Metrics::wideMargin);
    content->addWidget(m_runApplication);
    content->addItem(
        new QSpacerItem(spaceAboveLine, spaceAboveLine, QSizePolicy::Minimum, QSizePolicy::Fixed));
    content->addWidget(createLine(page));
    content->addWidget(createMainHeading(tr("Settings"), page));
    content->addLayout(createPageButtonGrid());
    setPageLayout(createTitleBar(tr("TALMERO"), false, false), content, page);
}

void BiosInterface::createPageButtons()
{
    for (const PageButton &entry : s_pageButtons) {
        if (entry.page == HomeKeyPage && m_debugLevel <= 0) {
            continue;
        }
        const QString label = tr(entry.label);
        auto *button = new SettingsButton(label);
        button->setObjectName(pageButtonName(label, entry.page));
        connect(button, &SettingsButton::buttonClicked, this, &BiosInterface::runSettingsUI);
        this->*entry.button = button;
    }
    // No current panel has this hardware. The buttons exist, but no layout shows them.
    m_comPort->setEnabled(false);
    m_backlight->setEnabled(false);
    m_volume->setEnabled(false);
    m_miscellaneous->setEnabled(true);
}

void BiosInterface::deletePageButtons()
{
    for (const PageButton &entry : s_pageButtons) {
        delete (this->*entry.button);
    }
}

QLayout *BiosInterface::createPageButtonGrid()
{
    auto *grid = new PageButtonGrid;
    grid->setSpacing(buttonSpacing);
    grid->addWidget(m_installFonts, 0, 0);
    grid->addWidget(m_ethernet, 0, 1);
    grid->addWidget(m_fileTransfer, 0, 2);
    grid->addWidget(m_systemStatus, 1, 0);
    grid->addWidget(m_miscellaneous, 1, 1);
    grid->addWidget(m_calibration, 1, 2);
    if (m_homeKey != nullptr) {
        grid->addWidget(m_homeKey, 2, 0);
    }
    return grid;
}
