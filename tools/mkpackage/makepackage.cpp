#include "makepackage.h"

#include "system/files/folderlisting.h"
#include "system/run/process.h"
#include "system/textcodec.h"

#include <QFileInfo>
#include <QTemporaryFile>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include <stdio.h> // rename
#include <sys/stat.h>
#include <unistd.h>

namespace MkPackage {
namespace {
/// The names in @p listing, sorted by their bytes, each followed by a zero byte; none if not all of
/// them can be read.
QByteArray memberNames(FolderListing &listing)
{
    QByteArrayList names;
    errno = 0; // stays 0 unless the listing fails
    while (const dirent *entry = listing.next()) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") {
            names += name + '\0';
        }
        errno = 0;
    }
    if (errno != 0) {
        return {};
    }
    std::sort(names.begin(), names.end());
    return names.join();
}

Command tarCommand(const QString &namesFile, qint64 time)
{
    return {"tar",
            {"--create",
             "--file=-", // the environment may name a tape drive
             "--use-compress-program=gzip -n -9", "--format=gnu", "--sort=name", "--owner=0",
             "--group=0", "--numeric-owner",
             "--hard-dereference", // a copied folder has lost its hard links
             QString("--mtime=@%1").arg(time), "--null", "--verbatim-files-from",
             "--files-from=" + namesFile}};
}

QString folderOf(const QString &file)
{
    return QFileInfo(file).absolutePath();
}

/// A path to what is open as @p descriptor, which may have no name or one that is not text.
QString descriptorPath(int descriptor)
{
    return QString("/proc/%1/fd/%2").arg(getpid()).arg(descriptor);
}

/// Keeps bytes that are not text. Qt's own paths do not.
std::filesystem::path bytePath(const QString &path)
{
    return bytesFromText(path).toStdString();
}

/// The folder @p path without links, ending with a "/".
std::string realFolder(const std::filesystem::path &path)
{
    std::error_code failed; // then it is empty
    return std::filesystem::canonical(path, failed).string() + '/';
}

QString findFolderError(const Options &options)
{
    const std::filesystem::path folder = bytePath(options.folder);
    std::error_code failed; // then it is not a folder
    if (!std::filesystem::is_directory(folder, failed)) {
        return QString("%1 is not a folder").arg(options.folder);
    }
    const QFileInfo output(options.output);
    if (output.isDir()) {
        return QString("%1 is a folder").arg(options.output);
    }
    if (output.exists() && !output.isFile()) { // renaming would replace the device
        return QString("%1 is not a plain file").arg(options.output);
    }
    const auto outputFolder
        = std::filesystem::absolute(bytePath(options.output), failed).parent_path();
    if (realFolder(outputFolder).starts_with(realFolder(folder))) {
        return "the output is inside the folder to pack";
    }
    return {};
}

/// The permissions that this user gives to new files.
mode_t newFileMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

/// Renames @p file, which may have no name yet, to @p path. An existing file is replaced.
bool putInPlace(QTemporaryFile &file, const QString &path)
{
    const bool stored = fchmod(file.handle(), newFileMode()) == 0 && fsync(file.handle()) == 0
        && rename(QFile::encodeName(file.fileName()).constData(),
                  QFile::encodeName(path).constData())
            == 0;
    file.setAutoRemove(!stored);
    return stored;
}

/// Why tar failed, in one line.
QString toolError(const ToolResult &result)
{
    if (result.status < 0 && result.errors.isEmpty()) {
        return "tar cannot be run";
    }
    const QByteArray said = result.errors.trimmed();
    return said.isEmpty() ? QString("tar fails with status %1").arg(result.status)
                          : textFromBytes(said.split('\n').first());
}

/// Appends the archive of the members of @p folder to @p package. @p names is a file of their
/// names. Result: an error message; empty on success.
QString packMembers(const FolderListing &folder, const QString &names, qint64 time,
                    const QTemporaryFile &package, bool (*shallStop)())
{
    // By its descriptor, because the file has no name yet: if we are killed, nothing is left of it.
    const ToolResult result = runTool(tarCommand(names, time),
                                      {.folder = descriptorPath(folder.descriptor()),
                                       .outputPath = descriptorPath(package.handle()),
                                       .shallStop = [shallStop](auto &) { return shallStop(); }});
    if (shallStop()) {
        return "stopped";
    }
    const bool isComplete = result.errors.isEmpty(); // a warning means that tar left something out
    return result.status == 0 && isComplete ? QString() : toolError(result);
}
} // namespace

QString makePackage(const Options &options, qint64 time, bool (*shallStop)())
{
    QString folderError = findFolderError(options);
    if (!folderError.isEmpty()) {
        return folderError;
    }
    FolderListing folder(bytesFromText(options.folder));
    const QByteArray names = memberNames(folder);
    if (names.isEmpty()) {
        return QString("%1 is empty or cannot be read").arg(options.folder);
    }
    QTemporaryFile namesFile;
    if (!namesFile.open() || namesFile.write(names) != names.size() || !namesFile.flush()) {
        return "there is no space for temporary files";
    }
    QString cannotWrite = QString("cannot write %1").arg(options.output);
    QTemporaryFile package(folderOf(options.output) + "/.talmero-mkpackage-XXXXXX");
    const QByteArray header = formatPackageHeader(options.header);
    if (!package.open() || package.write(header) != header.size() || !package.flush()) {
        return cannotWrite;
    }
    QString error = packMembers(folder, namesFile.fileName(), time, package, shallStop);
    if (!error.isEmpty()) {
        return error;
    }
    return putInPlace(package, options.output) ? QString() : cannotWrite;
}
} // namespace MkPackage
