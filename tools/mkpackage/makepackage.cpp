#include "makepackage.h"

#include "system/folderlisting.h"
#include "system/process.h"
#include "system/textcodec.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <algorithm>
#include <cerrno>

#include <stdio.h> // rename
#include <sys/stat.h>
#include <unistd.h>

namespace {
/// The names in @p folder, sorted by their bytes, each ended by a zero byte; none if they cannot
/// all be read.
QByteArray memberNames(const QString &folder)
{
    QByteArrayList names;
    FolderListing listing(bytesFromText(folder));
    errno = 0; // tells a listing that fails from one that is over
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

QString findFolderError(const Options &options)
{
    const QFileInfo folder(options.folder);
    if (!folder.isDir()) {
        return QString("%1 is no folder").arg(options.folder);
    }
    const QFileInfo output(options.output);
    if (output.isDir()) {
        return QString("%1 is a folder").arg(options.output);
    }
    if (output.exists() && !output.isFile()) { // would be a device no more
        return QString("%1 is no plain file").arg(options.output);
    }
    const QString top = folder.canonicalFilePath() + '/';
    if ((QFileInfo(folderOf(options.output)).canonicalFilePath() + '/').startsWith(top)) {
        return "the output lies in the folder that goes into it";
    }
    return {};
}

/// How other new files of this user may be used.
mode_t newFileMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

/// Puts @p file, which has no name so far or another one, in the place of the file @p path.
bool putInPlace(QTemporaryFile &file, const QString &path)
{
    const bool stored = fchmod(file.handle(), newFileMode()) == 0 && fsync(file.handle()) == 0
        && rename(QFile::encodeName(file.fileName()).constData(),
                  QFile::encodeName(path).constData())
            == 0;
    file.setAutoRemove(!stored);
    return stored;
}

/// Why tar has failed, in one line.
QString toolError(const ToolResult &result)
{
    if (result.status < 0 && result.errors.isEmpty()) {
        return "tar cannot be run";
    }
    const QByteArray said = result.errors.trimmed();
    return said.isEmpty() ? QString("tar fails with status %1").arg(result.status)
                          : textFromBytes(said.split('\n').first());
}
} // namespace

QString makePackage(const Options &options, qint64 time, bool (*shallStop)())
{
    QString folderError = findFolderError(options);
    if (!folderError.isEmpty()) {
        return folderError;
    }
    const QByteArray names = memberNames(options.folder);
    if (names.isEmpty()) {
        return QString("%1 is empty or cannot be read").arg(options.folder);
    }
    QTemporaryFile namesFile;
    if (!namesFile.open() || namesFile.write(names) != names.size() || !namesFile.flush()) {
        return "there is no room for temporary files";
    }
    QString cannotWrite = QString("cannot write %1").arg(options.output);
    QTemporaryFile package(folderOf(options.output) + "/.talmero-mkpackage-XXXXXX");
    const QByteArray header = formatPackageHeader(options.header);
    if (!package.open() || package.write(header) != header.size() || !package.flush()) {
        return cannotWrite;
    }
    // By its descriptor, because the file shall have no name yet: killed, nothing is left of it.
    const QString packagePath = QString("/proc/%1/fd/%2").arg(getpid()).arg(package.handle());
    const ToolResult result = runTool(tarCommand(namesFile.fileName(), time),
                                      {.folder = options.folder,
                                       .outputPath = packagePath,
                                       .shallStop = [shallStop](auto &) { return shallStop(); }});
    if (shallStop()) {
        return "stopped";
    }
    if (result.status != 0 || !result.errors.isEmpty()) { // it only warns of what it leaves out
        return toolError(result);
    }
    return putInPlace(package, options.output) ? QString() : cannotWrite;
}
