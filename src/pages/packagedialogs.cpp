// The dialogs that choose a package to install over the settings program, and the search for
// files by their contents.

#include "shell/biosinterface.h"

#include "packages/packageinstaller.h"
#include "packages/packagepicker.h"
#include "packages/textsearch.h"
#include "system/paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QProgressDialog>

void BiosInterface::updateBIOSDialog(const QString &filename)
{
    QString path = filename;
    if (path.isEmpty()) {
        BIOSUpdateDialog dialog(Paths::mediaFolder);
        if (dialog.exec() == QDialog::Accepted) {
            path = dialog.selectedFile();
            if (path.isEmpty()) {
                return;
            }
        }
    }
    installBIOSPackage(path); // after "Cancel" the path is empty, so nothing is installed
}

bool BiosInterface::installPackages()
{
    PackageInstalling dialog;
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFile().isEmpty()) {
        installBIOSPackage(dialog.selectedFile());
    }
    return false;
}

QStringList BiosInterface::findFiles(const QDir &directory, const QStringList &names,
                                     const QString &text)
{
    QProgressDialog progress(this);
    progress.setCancelButtonText(tr("&Cancel"));
    progress.setRange(0, int(names.size()));
    progress.setWindowTitle(tr("Find Files"));

    QStringList found;
    for (int index = 0; index < names.size() && !progress.wasCanceled(); ++index) {
        progress.setValue(index);
        progress.setLabelText(tr("Searching file number %1 of %2...").arg(index).arg(names.size()));
        QCoreApplication::processEvents();
        if (!progress.wasCanceled()
            && fileHoldsText(directory.absoluteFilePath(names.at(index)), text)) {
            found += names.at(index);
        }
    }
    return found;
}

void BiosInterface::scanDrives(QString &)
{
}
