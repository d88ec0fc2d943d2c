#pragma once

#include "packages/packagetypes.h"

#include <QDialog>
#include <QTableWidget>

/// A dialog in which one of the packages below the transfer folder can be picked. It finds the
/// folder in the settings file itself. Deliberately, where there is no such file, the dialog is
/// empty and has no buttons.
class PackagePicker : public QDialog
{
    Q_OBJECT
public:
    /// Full path of the chosen package; empty if none is chosen.
    QString selectedFile() const;

protected:
    /// Lists the packages of @p type, which blocks until all folders are walked.
    PackagePicker(const QString &title, PackageType type);

private:
    void layOut();

    QTableWidget m_table;
};

/// Picks a BIOS image.
class BIOSUpdateDialog : public PackagePicker
{
    Q_OBJECT
public:
    /// The folder is not used: the settings say where images are looked for.
    explicit BIOSUpdateDialog(const QString &folder);
};

/// Picks an add-on to the HMI.
class PackageInstalling : public PackagePicker
{
    Q_OBJECT
public:
    PackageInstalling();
};
