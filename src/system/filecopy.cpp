#include "system/filecopy.h"

#include "system/textcodec.h"

#include <QFile>
#include <QTemporaryFile>

#include <array>

#include <fcntl.h>
#include <stdio.h> // renameat2
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr qint64 chunkSize = 256; // bytes; both files are buffered

bool isPlainFile(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Gives @p from the name @p to unless there is something of that name.
bool renameToNew(const QString &from, const QString &to)
{
    return renameat2(AT_FDCWD, bytesFromText(from).constData(), AT_FDCWD,
                     bytesFromText(to).constData(), RENAME_NOREPLACE)
        == 0;
}
} // namespace

bool openPlainFile(QFile &file, const QString &path)
{
    // The toolkit's own way by name would change bytes that are not UTF-8.
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
    // In the folder of the copy, so that the whole copy appears there in one step.
    QTemporaryFile copy(to.left(to.lastIndexOf('/') + 1) + ".talmero-XXXXXX");
    const bool copied = openPlainFile(source, from) && copy.open() && copyRest(source, copy)
        && source.error() == QFileDevice::NoError && copy.setPermissions(source.permissions())
        && fsync(copy.handle()) == 0 && renameToNew(copy.fileName(), to);
    if (copied) {
        copy.setAutoRemove(false);
    }
    return copied;
}
