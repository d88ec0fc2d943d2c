#include "packagefiles.h"

#include "diskfiles.h"
#include "packages/packageinstaller.h"
#include "panelfiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

TemporaryFolder::TemporaryFolder(const char *path)
{
    qputenv("TMPDIR", path);
}

TemporaryFolder::~TemporaryFolder()
{
    qunsetenv("TMPDIR");
}

QByteArray archiveOf(const QString &script)
{
    const QTemporaryDir folder;
    return shellBytes(QString("cd '%1'; %2\ntar -cz *").arg(folder.path(), script));
}

QByteArray packageBytes(PackageKind kind, quint32 version, const QString &target,
                        const QByteArray &archive)
{
    return formatPackageHeader({kind, version, target}) + archive;
}

QByteArray packageBytes(PackageKind kind, quint32 version, const QString &target,
                        const PackageMembers &members)
{
    const QTemporaryDir folder;
    for (auto member = members.begin(); member != members.end(); ++member) {
        writeFile(folder.path().toUtf8() + '/' + member.key(), member.value());
    }
    return packageBytes(kind, version, target,
                        shellBytes(QString("tar -C '%1' -cz .").arg(folder.path())));
}

void writePackage(const QByteArray &path, PackageKind kind, quint32 version, const QString &target,
                  const PackageMembers &members)
{
    writeFile(path, packageBytes(kind, version, target, members));
}

void install(PackageKind kind, quint32 version, const QString &target, const QByteArray &archive,
             int expected)
{
    writeFile(packagePath, packageBytes(kind, version, target, archive));
    QCOMPARE(installPackage(packagePath), expected);
}

const QByteArray &smallArchive()
{
    static const QByteArray archive
        = archiveOf("mkdir compile bin; echo new >compile/new; echo new >both; echo run >bin/run;"
                    "chmod 755 bin/run");
    return archive;
}

const QByteArray &biosArchive()
{
    static const QByteArray archive = archiveOf("echo 4 >bios.version; echo new >program");
    return archive;
}

const QByteArray &largeArchive()
{
    static const QByteArray archive
        = archiveOf("echo first >a; head -c 300000 /dev/urandom >b; echo last >c");
    return archive;
}

bool fileExists(const QString &path)
{
    return QFileInfo::exists(path);
}

void resetInstalledFiles()
{
    shellBytes("rm -rf /home/dest /home/bin /home/compile /home/both /homde /outside"
               " /media/usb0/* /opt/talmero/bios/program;"
               "mkdir -p /home/dest/compile /homde/dest /outside /media/usb0;"
               "echo old >/home/dest/compile/old; echo old >/home/dest/both;"
               "echo old >/home/dest/kept; echo guard >/outside/guard; echo old >/homde/dest/old");
    writePanelFile("fwver", "12\n");
    writePanelFile("model", "RV-K21T\n");
    writePanelFile("oem", "TALMERO\n");
    writePanelFile("bios.version", "3\n");
}

QStringList installedState()
{
    // Ignores folders of the test program itself, countersOfOthers, and the checkout, which may lie
    // below /tmp.
    const QByteArray lines
        = shellBytes("cd /; in='home opt/talmero/bios tmp outside homde media etc/passwd';"
                     "own=$(dirname '" PANEL_SIMULATOR "');"
                     "list() { find $in \\( -path 'tmp/tst_*-*' -o -path tmp/counters -o -path "
                     "\"${own#/}\" \\) -prune -o \"$@\""
                     " | sort; };"
                     "list -printf '%p %y %l %m\\n'; list -type f -exec sha256sum {} +");
    return QString::fromLatin1(lines).split('\n');
}

QStringList temporaryFiles()
{
    return QDir("/tmp").entryList({QCoreApplication::applicationName() + ".*"},
                                  QDir::Files | QDir::Hidden);
}
