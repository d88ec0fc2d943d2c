#include "system/files/filecopy.h"

#include "system/textcodec.h"

#include <QFile>
#include <QTemporaryFile>

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <stdio.h> // rename, renameat2
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr qint64 chunkSize = 256; // bytes; both files are buffered

bool isPlainFile(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// For file systems without hard links: an empty file of ours reserves the name until the complete
/// file replaces it.
bool renameOverOwnFile(const QByteArray &from, const QByteArray &to)
{
    const int place
        = open(to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (place < 0) {
        return false;
    }
    close(place);
    const bool renamed = rename(from.constData(), to.constData()) == 0;
    if (!renamed) {
        unlink(to.constData());
    }
    return renamed;
}

/// For file systems that do not support RENAME_NOREPLACE.
bool moveToNew(const QByteArray &from, const QByteArray &to)
{
    if (link(from.constData(), to.constData()) == 0) {
        unlink(from.constData());
        return true;
    }
    return renameOverOwnFile(from, to);
}

/// Renames @p from to @p to unless @p to exists.
bool renameToNew(const QByteArray &from, const QByteArray &to)
{
    return renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0
        || ((errno == EINVAL || errno == ENOSYS) && moveToNew(from, to));
}
} // namespace

bool openPlainFile(QFile &file, const QString &path)
{
    // Opened by descriptor: QFile would change the bytes of a name that is not UTF-8.
    const int descriptor
        = open(bytesFromText(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        return false;
    }
    if (isPlainFile(descriptor)
        && file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        return true;
    }
    close(descriptor);
    return false;
}

bool copyRest(QFile &from, QFile &to)
{
    std::array<char, chunkSize> chunk;
    qint64 size = 0;
    while ((size = from.read(chunk.data(), chunkSize)) > 0) {
        if (to.write(chunk.data(), size) != size) {
            return false;
        }
    }
    return to.flush();
}

bool copyToNewFile(const QString &from, const QString &to)
{
    QFile source;
    // In the target folder, so that one rename makes the complete copy appear.
    QTemporaryFile copy(to.left(to.lastIndexOf('/') + 1) + ".talmero-XXXXXX");
    const bool copied = openPlainFile(source, from) && copy.open() && copyRest(source, copy)
        && source.error() == QFileDevice::NoError && copy.setPermissions(source.permissions())
        && fsync(copy.handle()) == 0
        && renameToNew(bytesFromText(copy.fileName()), bytesFromText(to));
    if (copied) {
        copy.setAutoRemove(false);
    }
    return copied;
}
