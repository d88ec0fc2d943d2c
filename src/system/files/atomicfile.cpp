#include "system/files/atomicfile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr mode_t allModeBits = 07777;

/// QSaveFile takes over no owner, and a mode with what root may do on top.
bool takeOverOwnerAndMode(const QSaveFile &file, const QString &path)
{
    struct stat old;
    return stat(QFile::encodeName(path).constData(), &old) != 0
        || (fchown(file.handle(), old.st_uid, old.st_gid) == 0
            && fchmod(file.handle(), old.st_mode & allModeBits) == 0);
}

bool replaceInOneStep(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    // Flushed here, because commit() takes no notice of a disk that is full by then, and would put
    // the part that was written in the old file's place.
    return file.open(QIODevice::WriteOnly) && takeOverOwnerAndMode(file, path)
        && file.write(content) == content.size() && file.flush() && file.commit();
}

bool writeAt(QFile &file, qint64 position, const QByteArray &bytes)
{
    return file.seek(position) && file.write(bytes) == bytes.size();
}

/// What goes beyond the old end is written first: only that needs room, so on a full disk the old
/// text is still whole when it fails, and is left as it was.
bool writeInPlace(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        return false;
    }
    const qint64 oldSize = file.size();
    if (!writeAt(file, oldSize, content.mid(oldSize))) {
        file.resize(oldSize);
        return false;
    }
    return writeAt(file, 0, content.left(oldSize)) && file.resize(content.size())
        && fsync(file.handle()) == 0;
}

bool isPlainOrMissing(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() || !file.exists();
}
} // namespace

bool replaceFile(const QString &path, const QByteArray &content)
{
    return isPlainOrMissing(path)
        && (replaceInOneStep(path, content) || writeInPlace(path, content));
}
