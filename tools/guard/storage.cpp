#include "storage.h"

#include "guardedfiles.h"
#include "system/debugtext.h"
#include "system/files/filecopy.h"
#include "system/settings/settingsfile.h"
#include "system/textcodec.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace Guard {
namespace {
constexpr qint64 contentLimit = 1 << 20; // bytes
constexpr char pairedName[] = "paired";

bool syncPath(const QString &path, int flags)
{
    const int descriptor
        = open(bytesFromText(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | flags);
    if (descriptor < 0) {
        return false;
    }
    const bool synced = fsync(descriptor) == 0;
    close(descriptor);
    return synced;
}

QString folderOf(const QString &path)
{
    return path.section('/', 0, -2);
}
} // namespace

std::optional<QByteArray> contentOf(const QString &path)
{
    QFile file;
    if (!openPlainFile(file, path) || file.size() > contentLimit) {
        return std::nullopt;
    }
    const QByteArray content = file.read(contentLimit);
    return file.error() == QFileDevice::NoError ? std::optional(content) : std::nullopt;
}

bool makeDurable(const QString &path)
{
    // A link may lead elsewhere, and the entry of the file itself is in that folder.
    const QString real = QFileInfo(path).canonicalFilePath();
    return syncPath(path, 0) && syncPath(folderOf(real.isEmpty() ? path : real), O_DIRECTORY);
}

bool storeSafely(const QString &path, const QByteArray &content)
{
    QDir().mkpath(folderOf(path));
    QSaveFile file(path);
    // Flushed before commit(), which ignores a full disk.
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush()
        && file.commit() && syncPath(folderOf(path), O_DIRECTORY);
}

QString copyPath(const QString &name)
{
    return QString(copyFolder) + '/' + name;
}

void notePairing()
{
    if (!wasPaired()) {
        storeSafely(copyPath(pairedName), {});
    }
}

bool wasPaired()
{
    return QFile::exists(copyPath(pairedName));
}

void recordActs(const QStringList &acts)
{
    if (acts.isEmpty()) {
        return;
    }
    for (const QString &act : acts) {
        say(act);
    }
    const SettingsMap record{{"time", QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
                             {"act", acts.join("; ")}};
    storeSafely(copyPath(actsName), formatSettings(record));
}

void say(const QString &line)
{
    std::printf("%s\n", printable(line).constData());
    std::fflush(stdout);
}
} // namespace Guard
