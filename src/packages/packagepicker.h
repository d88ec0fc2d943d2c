#pragma once

#include "packages/packagetypes.h"

#include <QDialog>
#include <QTableWidget>

/// A dialog for picking one of the packages below the transfer folder, which it reads from the
/// settings file. Without that file the dialog is empty and has no buttons; it has always been so.
class PackagePicker : public QDialog
{
    Q_OBJECT
public:
    /// Full path of the selected package; empty if none is selected.
    QString selectedFile() const;

protected:
    /// Lists the packages of @p type. Blocks until all folders are searched.
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
    /// @p folder is not used: the settings name the folder of the images.
    explicit BIOSUpdateDialog(const QString &folder);
};

/// Picks an add-on to the HMI.
class PackageInstalling : public PackagePicker
{
    Q_OBJECT
public:
    PackageInstalling();
};
