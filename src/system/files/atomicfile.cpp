#include "system/files/atomicfile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr mode_t allModeBits = 07777;

/// QSaveFile does not keep the owner, and it adds the rights that root has to the file's mode.
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
    // Flushed here because commit() ignores a full disk: it would replace the old file with the
    // part that could be written.
    return file.open(QIODevice::WriteOnly) && takeOverOwnerAndMode(file, path)
        && file.write(content) == content.size() && file.flush() && file.commit();
}

bool writeAt(QFile &file, qint64 position, const QByteArray &bytes)
{
    return file.seek(position) && file.write(bytes) == bytes.size();
}

/// Writes the part beyond the old end first, because only that part needs room on the disk. If it
/// fails on a full disk, the old content is still intact.
bool writeInPlace(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        return false;
    }
    const qint64 oldSize = file.size();
    const auto kept = qsizetype(std::min<qint64>(oldSize, content.size()));
    if (!writeAt(file, kept, content.mid(kept))) {
        file.resize(oldSize);
        return false;
    }
    return writeAt(file, 0, content.left(kept)) && file.resize(content.size())
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
