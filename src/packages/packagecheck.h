#pragma once

#include "packages/packageheader.h"

#include <QStringList>

// What a panel takes, decided from values alone.

/// What becomes of an application or firmware package.
enum InstallResult : int {
    Installed = 0,        ///< also a package of an unknown kind, of which nothing is installed
    OpenFileError = 1,    ///< the package cannot be read or stored; also after a handed-over image
    WrongVersion = 2,     ///< an application for another version of the runtime
    WrongModel = 3,       ///< an application for another panel model
    WrongFirmwareOem = 4, ///< a firmware for another OEM
};

/// What becomes of a BIOS image package.
enum BiosInstallResult : int {
    BiosInstalled = 1,
    NoBiosImage = -1,   ///< another kind, or shorter than a header
    BiosNotNewer = -2,  ///< the installed BIOS has this version or a higher one
    BiosNotStored = -3, ///< the archive cannot be stored in the folder for temporary files
};

/// What is installed on a panel, each as its version file says.
struct InstalledVersions
{
    QString runtimeVersion;
    QString runtimeOem;
    QStringList models; ///< names of the panel's model
};

/// The decimal number in a version file as an unsigned 32-bit number. A negative one gives the
/// same bits: the file's writer takes a signed number. Result: 0 for any other text.
quint32 versionNumber(const QString &text);

/// Decides whether an application or firmware package may be installed. An application has to be
/// for exactly the runtime's version and for one of the panel's names, a firmware for its OEM, of
/// whatever version. Texts are compared whole and with case.
/// Result: Installed for yes, and for kinds that are not checked; otherwise what is wrong.
InstallResult checkPackage(const PackageHeader &header, const InstalledVersions &installed);

/// Decides whether a BIOS image package may be installed over the BIOS of the version
/// @p biosVersion. Result: BiosInstalled for yes, otherwise what is wrong.
BiosInstallResult checkBiosPackage(const PackageHeader &header, const QString &biosVersion);
