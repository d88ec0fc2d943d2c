#include "shell/biosinterface.h"

#include "packages/filetable.h"
#include "packages/filewalk.h"
#include "system/files/filecopy.h"
#include "system/paths.h"
#include "system/settings/settingskeys.h"
#include "widgets/metrics.h"

#include <QStackedWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {
void installFont(const QString &path)
{
    const QString name = path.mid(path.lastIndexOf('/') + 1);
    copyToNewFile(path, Paths::fontFolder + name); // keeps an existing font of that name
}
} // namespace

void BiosInterface::initFontSettingPage()
{
    m_fonts.files = createFileTable(FontPage, 1);
    m_fonts.files->setSelectionMode(QAbstractItemView::MultiSelection);
    QVBoxLayout *content = createContent(Metrics::wideMargin);
    content->addWidget(m_fonts.files);
    setPageLayout(createTitleBar(tr("Install Fonts"), true, true), content,
                  m_pages->widget(FontPage));
}

bool BiosInterface::loadFontSettings()
{
    if (m_fonts.files.isNull()) {
        return false;
    }
    const QString folder = searchFolder(m_settings.value(SettingsKeys::fontFolder));
    showFiles(m_fonts.files, folder,
              findFilesBelow(folder, {".ttf", ".ttc"}, ExtensionCase::AnyCase));
    return true;
}

bool BiosInterface::saveFontSettings()
{
    const auto chosen
        = m_fonts.files ? m_fonts.files->selectedItems() : QList<QTableWidgetItem *>();
    for (const QTableWidgetItem *item : chosen) {
        const QString path = filePath(item);
        if (!path.isEmpty()) {
            installFont(path);
        }
    }
    return true;
}
