#pragma once

#include "system/run/toollimits.h"

class QString;

// Both functions block while the tools run, and show nothing. They do not detect a tool that fails,
// nor an unpacking that is stopped because it takes longer than @p limit. They do nothing while
// another program installs a package.

/// Installs the application or firmware package at @p path. An application is unpacked in
/// "/home/dest" and replaces the old compiled one. A firmware is unpacked in "/home", and its
/// version becomes the runtime version. The archive of a package of an unknown kind stays in the
/// folder for temporary files, as it always has.
/// Result: an InstallResult. A package that is refused changes nothing on the disk.
int installPackage(const QString &path, std::chrono::milliseconds limit = unpackLimit);

/// Unpacks the BIOS image package at @p path in "/opt/talmero/bios" if its version is higher than
/// that of the installed BIOS. The archive contains the new version file.
/// Result: a BiosInstallResult. A package that is refused changes nothing on the disk.
int installBIOSPackage(const QString &path, std::chrono::milliseconds limit = unpackLimit);
