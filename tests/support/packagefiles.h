#pragma once

#include "packages/packageheader.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

// Package files, and what installing them changes on the panel.

/// Short names for the rows of tables.
namespace Kinds {
inline constexpr PackageKind application = PackageKind::Application;
inline constexpr PackageKind firmware = PackageKind::Firmware;
inline constexpr PackageKind biosImage = PackageKind::BiosImage;
} // namespace Kinds

/// A package is written here.
inline constexpr char packagePath[] = "/media/usb0/package";

/// Another folder for temporary files for as long as this lives.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(const char *path);
    ~TemporaryFolder();
    Q_DISABLE_COPY_MOVE(TemporaryFolder)
};

/// A gzip-compressed tar archive of what the shell text @p script makes in an empty folder.
QByteArray archiveOf(const QString &script);

/// An archive with "compile/new", "both" and an executable "bin/run".
const QByteArray &smallArchive();

/// An archive with a "bios.version" of 4 and a "program".
const QByteArray &biosArchive();

/// An archive with "a", "b" and "c" that takes 300,000 bytes, packed and unpacked.
const QByteArray &largeArchive();

/// The files in a package: names, with folders, and contents.
using PackageMembers = QMap<QByteArray, QByteArray>;

/// A package file: its header, then @p archive.
QByteArray packageBytes(PackageKind kind, quint32 version, const QString &target,
                        const QByteArray &archive);

/// A whole package file: the header, and behind it what the system's tar makes of @p members.
QByteArray packageBytes(PackageKind kind, quint32 version, const QString &target,
                        const PackageMembers &members);

/// Makes such a package at @p path, and the folders that it lies in.
void writePackage(const QByteArray &path, PackageKind kind, quint32 version, const QString &target,
                  const PackageMembers &members = {});

/// Writes a package and installs it with installPackage(). The test fails unless that gives
/// @p expected.
void install(PackageKind kind, quint32 version, const QString &target, const QByteArray &archive,
             int expected);

bool fileExists(const QString &path);

/// Puts a panel with an application in place, of the model RV-K21T, the OEM TALMERO, the runtime
/// version 12 and the BIOS version 3. Files that must not be touched are in "/outside".
void resetInstalledFiles();

/// Everything that an installation may touch, and what it must not touch: one line per entry and
/// one per content.
QStringList installedState();

/// The temporary files that the test program has left behind.
QStringList temporaryFiles();
