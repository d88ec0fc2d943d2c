#include "faultfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/fsuid.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {
constexpr uid_t nobody = 65534;

void addKindRows(std::initializer_list<const char *> kinds)
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : kinds) {
        QTest::newRow(kind) << QString(kind);
    }
}

void createWithoutPermissions(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("cannot create %s", qPrintable(path));
    }
    file.write("a=2\n");
    file.setPermissions({});
}
} // namespace

FaultFile::FaultFile(const QString &kind)
    : m_path(m_folder.filePath("file"))
{
    if (kind == "directory") {
        QDir().mkdir(m_path);
    } else if (kind == "no permission") {
        createWithoutPermissions(m_path);
        setfsuid(nobody);
    } else if (kind == "folder missing") {
        m_path = m_folder.filePath("missing/file");
    } else if (kind == "full file system") {
        m_path = "/dev/full"; // every write fails with ENOSPC
    } else if (kind == "read-only file system") {
        m_path = "/sys/kernel/file";
    } else if (kind != "missing") {
        qFatal("no such kind of fault: %s", qPrintable(kind));
    }
}

FaultFile::~FaultFile()
{
    setfsuid(geteuid());
}

QString FaultFile::path() const
{
    return m_path;
}

QByteArray FaultFile::content() const
{
    const auto user = static_cast<uid_t>(setfsuid(geteuid()));
    QFile file(m_path);
    const bool ordinary = QFileInfo(m_path).isFile();
    QByteArray content = ordinary && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    setfsuid(user);
    return content;
}

SmallDisk::SmallDisk(const char *path, const char *options)
    : m_path(path)
{
    QDir().mkpath(path);
    if (mount("test", path, "tmpfs", 0, options) != 0) {
        qFatal("cannot mount %s", path);
    }
}

SmallDisk::~SmallDisk()
{
    umount(m_path);
}

void addUnreadablePathRows()
{
    addKindRows({"missing", "directory", "no permission", "folder missing"});
}

void addUnwritablePathRows()
{
    addKindRows({"directory", "no permission", "folder missing", "full file system",
                 "read-only file system"});
}
