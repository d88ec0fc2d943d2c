#include "packages/packagepicker.h"

#include "packages/filetable.h"
#include "packages/filewalk.h"
#include "system/paths.h"
#include "system/settings/settingsfile.h"
#include "system/settings/settingskeys.h"

#include <QFile>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace {
constexpr int fontSize = 24;       // pt
constexpr int smallestWidth = 600; // px

/// High, because there may be many packages, but with the page still visible around the dialog.
int dialogHeight(const QScreen *screen)
{
    return screen->availableSize().height() * 4 / 5;
}
} // namespace

PackagePicker::PackagePicker(const QString &title, PackageType type)
    : m_table(0, 1)
{
    QFont largeFont = font();
    largeFont.setPointSize(fontSize);
    setFont(largeFont);
    setWindowTitle(title);
    m_table.setFont(largeFont); // it has no parent yet to inherit it from
    setUpFileTable(&m_table);
    m_table.setSelectionMode(QAbstractItemView::SingleSelection);
    if (!QFile::exists(Paths::settingsFile)) {
        return;
    }
    SettingsMap settings;
    readSettingsFile(Paths::settingsFile, settings);
    const QString folder = searchFolder(settings.value(SettingsKeys::transferFolder));
    showFiles(&m_table, folder, findPackagesBelow(folder, type));
    layOut();
}

QString PackagePicker::selectedFile() const
{
    const auto items = m_table.selectedItems();
    return items.isEmpty() ? QString() : filePath(items.first());
}

void PackagePicker::layOut()
{
    auto *ok = new QPushButton(tr("Ok"), this);
    auto *cancel = new QPushButton(tr("Cancel"), this);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(&m_table);
    layout->addLayout(buttons);
    m_table.resizeColumnsToContents();
    setMinimumWidth(smallestWidth);
    resize(smallestWidth, dialogHeight(screen()));
    // QDialog reserves space for a window manager's frame and would cover the title bar.
    move(screen()->availableGeometry().center() - rect().center());
}

BIOSUpdateDialog::BIOSUpdateDialog(const QString &)
    : PackagePicker(tr("Select BIOS Image"), PackageType::BiosImage)
{
}

PackageInstalling::PackageInstalling()
    : PackagePicker(tr("Select HMI Add-Ons"), PackageType::AddOn)
{
}
