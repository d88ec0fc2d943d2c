#include "shell/biosinterface.h"

#include "packages/filetable.h"
#include "packages/filewalk.h"
#include "packages/packageinstaller.h"
#include "packages/packagerefusal.h"
#include "packages/packagetypes.h"
#include "system/settingskeys.h"
#include "widgets/radiobutton.h"

#include <QDir>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QStackedWidget>
#include <QTableWidget>

namespace {
constexpr int contentMargin = 29;                // px
constexpr int warningFontSize = 24;              // px, readable at arm's length
constexpr char tableName[] = "show_files_table"; // of both pages that have one
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
    auto *application = new RadioButton(tr("Application"), page);
    application->setObjectName(applicationName);
    application->setChecked(true);
    auto *firmware = new RadioButton(tr("Firmware"), page);
    firmware->setObjectName(firmwareName);
    // Alone: choosing the other one takes the choice off this one.
    connect(application, &RadioButton::toggled, this, &BiosInterface::loadFiletransferSettings);

    auto *choices = new QHBoxLayout;
    for (RadioButton *choice : {application, firmware}) {
        choices->addWidget(choice);
    }
    QVBoxLayout *content = createContent(contentMargin);
    content->addLayout(choices);
    content->addWidget(createFileTable(FileTransferPage, 2));
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
    const QWidget *page = m_pages->widget(FileTransferPage);
    auto *table = page->findChild<QTableWidget *>();
    const auto *application = page->findChild<RadioButton *>(applicationName);
    if (table == nullptr || application == nullptr) {
        return false;
    }
    const QString folder = searchFolder(m_settings.value(SettingsKeys::transferFolder));
    const auto type = application->isChecked() ? PackageType::Application : PackageType::Firmware;
    // A file whose whole name is the extension comes first. Such a name is a hidden one, so the
    // toolkit has listed none so far.
    QStringList files = QDir(folder).entryList({packageExtension(type)},
                                               QDir::Files | QDir::NoSymLinks, QDir::Unsorted);
    files += findPackagesBelow(folder, type);
    showFiles(table, folder, files);
    return true;
}

bool BiosInterface::saveFiletransferSettings()
{
    const auto *table = m_pages->widget(FileTransferPage)->findChild<QTableWidget *>();
    const QTableWidgetItem *chosen = table != nullptr ? table->currentItem() : nullptr;
    if (chosen == nullptr) {
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
