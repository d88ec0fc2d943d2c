#include "reserve.h"

#include "storage.h"
#include "system/textcodec.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Guard {
namespace {
constexpr int slices = 4;
constexpr int plenty = 4; // times the whole size, left after the reserve is complete
constexpr char fileName[] = "/.talmero-guard-reserve";
constexpr mode_t onlyRoot = 0600;

/// Bytes that root can still write on the disk with @p folder; -1 if not known.
qint64 freeSpace(const QByteArray &folder)
{
    struct statvfs disk;
    return statvfs(folder.constData(), &disk) == 0 ? qint64(disk.f_bfree) * qint64(disk.f_frsize)
                                                   : -1;
}

qint64 sizeOf(const QByteArray &path)
{
    struct stat status;
    return lstat(path.constData(), &status) == 0 ? qint64(status.st_size) : 0;
}

/// Space that was given up can be used once that is on the disk.
bool resizeFile(const QByteArray &path, qint64 from, qint64 to)
{
    const int descriptor
        = open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, onlyRoot);
    if (descriptor < 0) {
        return false;
    }
    const bool resized = to < from ? ftruncate(descriptor, to) == 0 && fsync(descriptor) == 0
                                   : fallocate(descriptor, 0, from, to - from) == 0;
    close(descriptor);
    return resized;
}
} // namespace

qint64 wantedReserve(qint64 current, qint64 full, qint64 free, bool isUnpacking)
{
    const qint64 slice = full / slices;
    if (isUnpacking || free < 0) {
        return current;
    }
    if (current > full) {
        return full;
    }
    if (free < slice) {
        return qMax<qint64>(current - slice, 0);
    }
    return free - (full - current) > plenty * full ? full : current;
}

Reserve::Reserve(const QString &folder, qint64 size)
    : m_folder(folder)
    , m_size(size)
{
}

void Reserve::check(bool isUnpacking) const
{
    const QByteArray path = bytesFromText(m_folder) + fileName;
    const qint64 current = sizeOf(path);
    const qint64 wanted
        = wantedReserve(current, m_size, freeSpace(bytesFromText(m_folder)), isUnpacking);
    if (wanted == current || !resizeFile(path, current, wanted)) {
        return;
    }
    const QString change = QString::number(qAbs(wanted - current) / kibibyte);
    if (wanted > current) {
        say(QString("took %1 KiB in reserve in %2").arg(change, m_folder));
    } else {
        say(QString("the disk of %1 is full: gave up %2 KiB of the reserve, %3 KiB are left")
                .arg(m_folder, change, QString::number(wanted / kibibyte)));
    }
}
} // namespace Guard
