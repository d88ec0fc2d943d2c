#pragma once

#include "system/run/toollimits.h"

class QString;

// Both functions block while the tools run, and show nothing. A tool that fails is not
// noticed, nor is one that is cut off because it takes longer than @p limit to unpack.

/// Installs the application or firmware package at @p path. An application is unpacked in
/// "/home/dest" in place of the old compiled one; a firmware is unpacked in "/home", and its
/// version becomes the runtime version. The archive of a package of an unknown kind is
/// deliberately left in the folder for temporary files.
/// Result: an InstallResult. A package that is refused changes nothing on the disk.
int installPackage(const QString &path, std::chrono::milliseconds limit = unpackLimit);

/// Unpacks the BIOS image package at @p path in "/opt/talmero/bios" if its version is above that
/// of the installed BIOS. The archive itself brings the file that says its version.
/// Result: a BiosInstallResult. A package that is refused changes nothing on the disk.
int installBIOSPackage(const QString &path, std::chrono::milliseconds limit = unpackLimit);
