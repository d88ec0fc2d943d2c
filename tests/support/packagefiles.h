#pragma once

#include "packages/packageheader.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

// Package files, and the files that an installation changes on the panel.

/// Short names for data rows.
namespace Kinds {
inline constexpr PackageKind application = PackageKind::Application;
inline constexpr PackageKind firmware = PackageKind::Firmware;
inline constexpr PackageKind biosImage = PackageKind::BiosImage;
} // namespace Kinds

/// Path of the package that tests write.
inline constexpr char packagePath[] = "/media/usb0/package";

/// Replaces the folder for temporary files during its lifetime.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(const char *path);
    ~TemporaryFolder();
    Q_DISABLE_COPY_MOVE(TemporaryFolder)
};

/// Runs the shell text @p script in an empty folder. Result: a tar.gz archive of the folder.
QByteArray archiveOf(const QString &script);

/// An archive with "compile/new", "both" and an executable "bin/run".
const QByteArray &smallArchive();

/// An archive with a "bios.version" of 4 and a "program".
const QByteArray &biosArchive();

/// An archive with "a", "b" and "c". It has 300,000 bytes, packed and unpacked.
const QByteArray &largeArchive();

/// The files in a package: names, with folders, and contents.
using PackageMembers = QMap<QByteArray, QByteArray>;

/// A package file: the header and @p archive.
QByteArray packageBytes(PackageKind kind, quint32 version, const QString &target,
                        const QByteArray &archive);

/// A package file: the header and a tar archive of @p members.
QByteArray packageBytes(PackageKind kind, quint32 version, const QString &target,
                        const PackageMembers &members);

/// Writes such a package to @p path. Creates its folders.
void writePackage(const QByteArray &path, PackageKind kind, quint32 version, const QString &target,
                  const PackageMembers &members = {});

/// Writes a package and calls installPackage(). The test fails unless the result is @p expected.
void install(PackageKind kind, quint32 version, const QString &target, const QByteArray &archive,
             int expected);

bool fileExists(const QString &path);

/// Restores a panel with an application: model RV-K21T, OEM TALMERO, runtime version 12, BIOS
/// version 3. "/outside" holds files that an installation must not change.
void resetInstalledFiles();

/// An environment variable for tools that another user runs, who cannot write the counters of a
/// coverage build to their usual folder.
inline constexpr char countersOfOthers[] = "GCOV_PREFIX=/tmp/counters";

/// All files that an installation may change, and "/outside": one line per entry and one per
/// content.
QStringList installedState();

/// Temporary files that the test program has left.
QStringList temporaryFiles();
