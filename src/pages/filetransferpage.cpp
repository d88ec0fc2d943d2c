#include "shell/biosinterface.h"

#include "packages/filetable.h"
#include "packages/filewalk.h"
#include "packages/packageinstaller.h"
#include "packages/packagerefusal.h"
#include "packages/packagetypes.h"
#include "system/settings/settingskeys.h"
#include "widgets/metrics.h"
#include "widgets/radiobutton.h"

#include <QDir>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QStackedWidget>
#include <QTableWidget>

namespace {
constexpr int warningFontSize = 24;              // px, readable at arm's length
constexpr char tableName[] = "show_files_table"; // the font page uses it too
constexpr char applicationName[] = "application_radioButton";
constexpr char firmwareName[] = "firmware_radioButton";

void warn(const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok);
    QFont font = box.font();
    font.setPixelSize(warningFontSize);
    box.setFont(font);
    box.exec();
}
} // namespace

void BiosInterface::initFileTransferPage()
{
    QWidget *page = m_pages->widget(FileTransferPage);
    m_transfer.application = new RadioButton(tr("Application"), page);
    m_transfer.application->setObjectName(applicationName);
    m_transfer.application->setChecked(true);
    auto *firmware = new RadioButton(tr("Firmware"), page);
    firmware->setObjectName(firmwareName);
    // One connection is enough: choosing Firmware toggles Application as well.
    connect(m_transfer.application, &RadioButton::toggled, this,
            &BiosInterface::loadFiletransferSettings);

    auto *choices = new QHBoxLayout;
    choices->addWidget(m_transfer.application);
    choices->addWidget(firmware);
    m_transfer.files = createFileTable(FileTransferPage, 2);
    QVBoxLayout *content = createContent(Metrics::wideMargin);
    content->addLayout(choices);
    content->addWidget(m_transfer.files);
    setPageLayout(createTitleBar(tr("File Transfer"), true, true), content, page);
}

QTableWidget *BiosInterface::createFileTable(Page page, int columns)
{
    auto *table = new QTableWidget(0, columns, m_pages->widget(page));
    table->setObjectName(tableName);
    setUpFileTable(table);
    return table;
}

bool BiosInterface::loadFiletransferSettings()
{
    if (m_transfer.files.isNull() || m_transfer.application.isNull()) {
        return false;
    }
    const QString folder = searchFolder(m_settings.value(SettingsKeys::transferFolder));
    const auto type
        = m_transfer.application->isChecked() ? PackageType::Application : PackageType::Firmware;
    // A file named only like the extension would come first. Its name starts with a dot, and
    // entryList() skips hidden files.
    QStringList files = QDir(folder).entryList({packageExtension(type)},
                                               QDir::Files | QDir::NoSymLinks, QDir::Unsorted);
    files += findPackagesBelow(folder, type);
    showFiles(m_transfer.files, folder, files);
    return true;
}

bool BiosInterface::saveFiletransferSettings()
{
    const QTableWidgetItem *chosen = m_transfer.files ? m_transfer.files->currentItem() : nullptr;
    // Qt makes the first row current when the table gets the focus without a tap, and shows no
    // sign of it. Only a tapped row is selected.
    if (chosen == nullptr || !chosen->isSelected()) {
        return true;
    }
    const QString path = filePath(chosen);
    if (path.isEmpty()) {
        return false;
    }
    const PackageRefusal *refusal = findPackageRefusal(installPackage(path));
    if (refusal != nullptr) {
        warn(tr(refusal->title), tr(refusal->text));
    }
    return true;
}
