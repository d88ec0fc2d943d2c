#pragma once

#include "packages/packageheader.h"

#include <QStringList>

// Which packages a panel accepts. Nothing here reads a file.

/// Result of installing an application or firmware package.
enum InstallResult : int {
    Installed = 0,        ///< also for an unknown kind, although nothing is installed
    OpenFileError = 1,    ///< cannot read or store the package; also if a firmware has an image
    WrongVersion = 2,     ///< an application for another version of the runtime
    WrongModel = 3,       ///< an application for another panel model
    WrongFirmwareOem = 4, ///< a firmware for another OEM
    InstallerBusy = 5,    ///< another program is installing a package
};

/// Result of installing a BIOS image package.
enum BiosInstallResult : int {
    BiosInstalled = 1,
    NoBiosImage = -1,       ///< of another kind, or shorter than a header
    BiosNotNewer = -2,      ///< the installed BIOS has this version or a higher one
    BiosNotStored = -3,     ///< the archive cannot be stored in the folder for temporary files
    BiosInstallerBusy = -4, ///< another program is installing a package
};

/// What is installed on a panel, as read from its version files.
struct InstalledVersions
{
    QString runtimeVersion;
    QString runtimeOem;
    QStringList models; ///< names of the panel's model
};

/// Parses the decimal number in a version file as an unsigned 32-bit number. A negative number
/// keeps its bits, because the file is written from a signed number. Result: 0 for any other text.
quint32 versionNumber(const QString &text);

/// Decides whether an application or firmware package may be installed. An application must be for
/// exactly the installed version of the runtime and for one of the panel's model names. A firmware
/// must be for the panel's OEM; its version does not matter. Texts are compared whole and
/// case-sensitively.
/// Result: Installed if it may be installed or its kind is not checked; otherwise the reason.
InstallResult checkPackage(const PackageHeader &header, const InstalledVersions &installed);

/// Decides whether a BIOS image package may be installed over the BIOS of the version
/// @p biosVersion. Result: BiosInstalled if it may be; otherwise the reason.
BiosInstallResult checkBiosPackage(const PackageHeader &header, const QString &biosVersion);
