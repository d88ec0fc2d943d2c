// The pages that carry a title bar and nothing else, and the slots of contents that they have
// not got. A page that gets contents gets a file of its own.

#include "shell/biosinterface.h"

#include <QHBoxLayout>
#include <QSpacerItem>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int contentMargin = 29; // px
constexpr int spacerSize = 20;    // px
} // namespace

void BiosInterface::initEmptyPage(Page page, const QString &title)
{
    auto *content = new QVBoxLayout;
    content->setContentsMargins(contentMargin, contentMargin, contentMargin, contentMargin);
    content->addItem(
        new QSpacerItem(spacerSize, spacerSize, QSizePolicy::Minimum, QSizePolicy::Expanding));
    setPageLayout(createTitleBar(title, true, true), content, m_pages->widget(page));
}

void BiosInterface::initCOMPortPage()
{
    initEmptyPage(ComPortPage, tr("COM Port"));
}

void BiosInterface::initFiletransferPage()
{
    initEmptyPage(FileTransferPage, tr("File Transfer"));
}

void BiosInterface::initBacklightPage()
{
    initEmptyPage(BacklightPage, tr("Backlight"));
}

void BiosInterface::initVolumePage()
{
    initEmptyPage(VolumePage, tr("Volume"));
}

void BiosInterface::initSystemStatusPage()
{
    initEmptyPage(SystemStatusPage, tr("System Status"));
}

void BiosInterface::initHomeKeyPage()
{
    initEmptyPage(HomeKeyPage, tr("Home Key"));
}

void BiosInterface::initFontPage()
{
    initEmptyPage(FontPage, tr("Install Fonts"));
}

void BiosInterface::initTimeSettingPage()
{
}

bool BiosInterface::loadFiletransferSettings()
{
    return true;
}

bool BiosInterface::loadSystemStatusSettings()
{
    return true;
}

bool BiosInterface::loadFontSettings()
{
    return true;
}

bool BiosInterface::loadTimeSettings()
{
    return true;
}

bool BiosInterface::saveFiletransferSettings()
{
    return true;
}

bool BiosInterface::saveFontSettings()
{
    return true;
}

bool BiosInterface::saveTimeSettings()
{
    return true;
}

void BiosInterface::updateBIOSDialog(const QString &)
{
}

bool BiosInterface::installPackages()
{
    return false;
}
