// What "talmero-guard watch" does about installations, links and full disks, with the real kernel
// and the real tar.

#include "diskfiles.h"
#include "faultfiles.h"
#include "packagefiles.h"
#include "packages/packagecheck.h"
#include "panelguard.h"
#include "runningguard.h"
#include "system/paths.h"
#include "system/settings/settingsfile.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

namespace {
using namespace Kinds;

constexpr int flushTime = 2000; // ms until an installation is on the disk
constexpr char configurationFile[] = "/etc/talmero-guard.conf";
} // namespace

class TestGuardDisk : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { requirePanel(); }
    void init() { resetGuardedPanel(); }
    void installationIsFlushed();
    void longUnpackingIsFlushedMeanwhile();
    void otherWritersAreLeftAlone();
    void linksThatLeadOutAreRemoved();
    void linksAreOnlyReported();
    void settingsFitOnAFullDisk();
};

void TestGuardDisk::installationIsFlushed()
{
    const RunningGuard guard;
    forgetFlushes();
    install(application, 12, "K21T", smallArchive(), Installed);
    QTRY_VERIFY_WITH_TIMEOUT(flushes().contains("syncfs /home/dest\n"), flushTime);
}

/// tar waits for the rest of its archive.
void TestGuardDisk::longUnpackingIsFlushedMeanwhile()
{
    const RunningGuard guard;
    shellBytes("mkfifo /run/archive");
    QProcess tar;
    tar.setWorkingDirectory(Paths::applicationFolder);
    tar.start("tar", {"-xf", "/run/archive"});
    QFile archive("/run/archive");
    QVERIFY(archive.open(QIODevice::WriteOnly));
    forgetFlushes();
    QTRY_VERIFY_WITH_TIMEOUT(flushes().count("syncfs /home/dest\n") >= 2, 4000);
    archive.close();
    tar.waitForFinished();
    QFile::remove("/run/archive");
}

/// Flushing more than needed wears out flash memory. This tar lives long enough to be looked at:
/// one that has ended by then might have unpacked a package.
void TestGuardDisk::otherWritersAreLeftAlone()
{
    shellBytes("tar -cf /srv/archive /home/dest");
    const RunningGuard guard;
    forgetFlushes();
    shellBytes("echo 1 >/home/dest/kept; cp /home/dest/kept /home/dest/copy; cd /srv;"
               "(sleep 0.5; cat archive) | tar -xf -; rm -r archive home");
    writeFile(Paths::modelFile, "RV-K25T"); // is noticed later than what happened before
    QTRY_COMPARE(readFile("/var/lib/talmero-guard/model"), QByteArray("RV-K25T"));
    QVERIFY2(!flushes().contains("syncfs"), flushes().constData());
}

void TestGuardDisk::linksThatLeadOutAreRemoved()
{
    writeFile(configurationFile, "allow.link=/home/dest/recipes\n");
    shellBytes("ln -s /outside /home/dest/early; ln -s /outside /home/dest/recipes");
    const RunningGuard guard;
    QTRY_VERIFY(!QFileInfo("/home/dest/early").isSymLink());
    install(application, 12, "K21T", archiveOf("ln -s /outside way; ln -s /etc/passwd file"),
            Installed);
    QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo("/home/dest/way").isSymLink(), flushTime);
    QVERIFY(QFileInfo("/home/dest/file").isSymLink());
    QVERIFY(QFileInfo("/home/dest/recipes").isSymLink());
    QCOMPARE(readFile("/outside/guard"), QByteArray("guard\n"));
    QTRY_VERIFY(guard.output().contains("removed the link /home/dest/way to /outside, which leads "
                                        "out of /home/dest\n"));
}

void TestGuardDisk::linksAreOnlyReported()
{
    writeFile(configurationFile, "links=report\nlinks=maybe\n");
    shellBytes("ln -s /outside /home/dest/way");
    const RunningGuard guard;
    QTRY_VERIFY(guard.output().contains(
        "found the link /home/dest/way to /outside, which leads out of /home/dest\n"));
    QVERIFY(QFileInfo("/home/dest/way").isSymLink());
    QVERIFY(guard.output().contains("/etc/talmero-guard.conf: not understood: links=maybe\n"));
}

void TestGuardDisk::settingsFitOnAFullDisk()
{
    writeFile(configurationFile, "reserve.kib=64\n");
    const SmallDisk disk(Paths::biosFolder, "size=1m");
    writeFile(Paths::runtimeOemFile, "TALMERO");
    const RunningGuard guard;
    QTRY_VERIFY(guard.output().contains("took 64 KiB in reserve in /opt/talmero/bios\n"));
    shellBytes("cat /dev/zero >/opt/talmero/bios/filler 2>/dev/null || true");
    QVERIFY(!writeSettingsFile(Paths::settingsFile, {{"a", "1"}}));
    QTRY_VERIFY(guard.output().contains("the disk of /opt/talmero/bios is full: gave up 16 KiB of "
                                        "the reserve, 48 KiB are left\n"));
    QVERIFY(writeSettingsFile(Paths::settingsFile, {{"a", "1"}}));
    QVERIFY(QFile::remove("/opt/talmero/bios/filler"));
    QTRY_VERIFY(guard.output().contains("took 16 KiB in reserve in /opt/talmero/bios\n"));
}

QTEST_GUILESS_MAIN(TestGuardDisk)
#include "tst_guarddisk.moc"
