// The pages that have only a title bar, and the slots of the time page, which has no widgets at
// all.

#include "shell/biosinterface.h"

#include "widgets/metrics.h"

#include <QHBoxLayout>
#include <QSpacerItem>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int spacerSize = 20; // px
} // namespace

void BiosInterface::initEmptyPage(Page page, const QString &title)
{
    QVBoxLayout *content = createContent(Metrics::wideMargin);
    content->addItem(
        new QSpacerItem(spacerSize, spacerSize, QSizePolicy::Minimum, QSizePolicy::Expanding));
    setPageLayout(createTitleBar(title, true, true), content, m_pages->widget(page));
}

void BiosInterface::initCOMPortPage()
{
    initEmptyPage(ComPortPage, tr("COM Port"));
}

void BiosInterface::initBacklightPage()
{
    initEmptyPage(BacklightPage, tr("Backlight"));
}

void BiosInterface::initVolumePage()
{
    initEmptyPage(VolumePage, tr("Volume"));
}

void BiosInterface::initHomeKeyPage()
{
    initEmptyPage(HomeKeyPage, tr("Home Key"));
}

void BiosInterface::initTimeSettingPage()
{
}

bool BiosInterface::loadTimeSettings()
{
    return true;
}

bool BiosInterface::saveTimeSettings()
{
    return true;
}
