// Behaviour that is kept although it can do harm, each with a row in docs/hazards.md. Whoever
// changes it must tell the integrators.

#include "diskfiles.h"
#include "packagefiles.h"
#include "packages/packagecheck.h"
#include "packages/packageinstaller.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "system/formats/networkfiles.h"
#include "system/paths.h"
#include "system/settings/settingsfile.h"

#include <QDir>
#include <QTest>

#include <sys/mount.h>
#include <sys/stat.h>

using namespace Kinds;

namespace {
struct stat fileStatus(const char *path)
{
    struct stat status = {};
    if (lstat(path, &status) != 0) {
        qFatal("there is no %s", path);
    }
    return status;
}
} // namespace

class TestHazards : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void linkOfAnEarlierPackageIsFollowed();
    void damagedFirmwareRaisesTheVersion();
    void setUserIdIsUnpacked();
    void deviceIsUnpacked();
    void ownersComeFromThePackage();
    void emptyAddressInvalidatesTheWholeFile();
    void settingsAreWrittenInPlace();
    void fullDiskEmptiesTheSettings();
    void namingRulesAreOrderedByAddress();
};

void TestHazards::initTestCase()
{
    requirePanel();
}

void TestHazards::init()
{
    resetInstalledFiles();
}

void TestHazards::linkOfAnEarlierPackageIsFollowed()
{
    install(application, 12, "K21T", archiveOf("ln -s /outside way; echo x >first"), Installed);
    // The archive has no member for the folder: tar would replace the link with it.
    const QByteArray through = shellBytes("rm -rf /run/make; mkdir -p /run/make/way; cd /run/make;"
                                          "echo evil >way/evil; tar -cz way/evil");
    install(application, 12, "K21T", through, Installed);
    QCOMPARE(readFile("/outside/evil"), QByteArray("evil\n"));
    QCOMPARE(readFile("/outside/guard"), QByteArray("guard\n"));
}

void TestHazards::damagedFirmwareRaisesTheVersion()
{
    install(firmware, 13, "TALMERO", "this is no archive", Installed);
    QCOMPARE(readPanelFile("fwver"), QByteArray("13"));
}

void TestHazards::setUserIdIsUnpacked()
{
    install(application, 12, "K21T", archiveOf("echo x >tool; chmod 6755 tool"), Installed);
    QCOMPARE(fileStatus("/home/dest/tool").st_mode & 07777U, 06755U);
}

void TestHazards::deviceIsUnpacked()
{
    // The simulated panel may not create devices. tar creates a named pipe the same way.
    install(application, 12, "K21T", archiveOf("mkfifo pipe"), Installed);
    QVERIFY(S_ISFIFO(fileStatus("/home/dest/pipe").st_mode));
}

void TestHazards::ownersComeFromThePackage()
{
    install(application, 12, "K21T", archiveOf("echo x >file; chown 1:1 file"), Installed);
    QCOMPARE(fileStatus("/home/dest/file").st_uid, 1U);
}

void TestHazards::emptyAddressInvalidatesTheWholeFile()
{
    const PortSetup whole{PortMode::Static, "10.0.0.1", "255.0.0.0"};
    const PortSetup empty{PortMode::Static, "", "255.0.0.0"};
    const auto readable = [](const std::array<PortSetup, 2> &ports) {
        writeFile(Paths::interfacesFile, interfacesFileText(ports).toUtf8());
        return shellBytes("ifup --no-act eth1 >/dev/null 2>&1 && echo yes || echo no");
    };
    QCOMPARE(readable({whole, whole}), QByteArray("yes\n"));
    QCOMPARE(readable({empty, whole}), QByteArray("no\n")); // although eth1 is configured correctly
}

void TestHazards::settingsAreWrittenInPlace()
{
    writePanelFile("bios.ini", "# a note\nb = 1\n");
    const auto before = fileStatus(Paths::settingsFile).st_ino;
    SettingsMap settings;
    readSettingsFile(Paths::settingsFile, settings);
    QVERIFY(writeSettingsFile(Paths::settingsFile, settings));
    QCOMPARE(fileStatus(Paths::settingsFile).st_ino, before);
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("b = 1\n")); // the comment is lost
}

void TestHazards::fullDiskEmptiesTheSettings()
{
    const char folder[] = "/run/small";
    QDir().mkpath(folder);
    QCOMPARE(mount("test", folder, "tmpfs", 0, "size=4k"), 0);
    const QByteArray path = QByteArray(folder) + "/bios.ini";
    writeFile(path, "kept=1\n");
    const bool written = writeSettingsFile(path, {{"a", QString(20000, 'x')}});
    const QByteArray left = readFile(path);
    umount(folder);
    QVERIFY(!written);
    QVERIFY(!left.contains("kept"));
    QVERIFY(left.size() <= 4096);
}

void TestHazards::namingRulesAreOrderedByAddress()
{
    // eth1 on the board becomes eth0, because it has the lower address.
    const QString rules = interfaceNamingRules({"00:00:00:00:00:02", "00:00:00:00:00:01"});
    QVERIFY(rules.indexOf("00:00:00:00:00:01") < rules.indexOf("NAME=\"eth0\""));
    QVERIFY(rules.indexOf("NAME=\"eth0\"") < rules.indexOf("00:00:00:00:00:02"));
}

QTEST_GUILESS_MAIN(TestHazards)
#include "tst_hazards.moc"
