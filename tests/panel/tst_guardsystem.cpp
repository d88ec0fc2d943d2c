// What the guard's package leaves to systemd at boot.

#include "diskfiles.h"
#include "packagefiles.h"
#include "panelguard.h"

#include <QFileInfo>
#include <QTest>

namespace {
/// What systemd does with the guard's list when a panel boots.
void boot()
{
    shellBytes("systemd-tmpfiles --create --remove --boot '" PANEL_SOURCE "/guard/tmpfiles.conf'");
}
} // namespace

class TestGuardSystem : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { requirePanel(); }
    void init() { resetInstalledFiles(); }
    void leftArchivesAreRemoved();
    void archivesInUseStay();
    void applicationFolderIsThere();
    void applicationFolderKeepsItsOwner();
    void linkInItsPlaceStays();
    void unitsAreAccepted();
};

void TestGuardSystem::leftArchivesAreRemoved()
{
    writeFile("/tmp/talmero-bios.aBc123", "archive");
    writeFile("/tmp/talmero-bios.conf", "other");
    writeFile("/tmp/other.aBc123", "other");
    boot();
    QVERIFY(!fileExists("/tmp/talmero-bios.aBc123"));
    QVERIFY(fileExists("/tmp/talmero-bios.conf"));
    QVERIFY(fileExists("/tmp/other.aBc123"));
}

/// The list is also applied when the package is installed, while the program may run.
void TestGuardSystem::archivesInUseStay()
{
    writeFile("/tmp/talmero-bios.aBc123", "archive");
    shellBytes("systemd-tmpfiles --create --remove '" PANEL_SOURCE "/guard/tmpfiles.conf'");
    QVERIFY(fileExists("/tmp/talmero-bios.aBc123"));
}

void TestGuardSystem::applicationFolderIsThere()
{
    shellBytes("rm -r /home/dest");
    boot();
    QCOMPARE(shellBytes("stat -c '%F %U %a' /home/dest"), QByteArray("directory root 755\n"));
}

/// A package or the maker may have chosen them.
void TestGuardSystem::applicationFolderKeepsItsOwner()
{
    shellBytes("chown nobody /home/dest; chmod 2775 /home/dest");
    boot();
    QCOMPARE(shellBytes("stat -c '%U %a' /home/dest; ls /home/dest"),
             QByteArray("nobody 2775\nboth\ncompile\nkept\n"));
}

void TestGuardSystem::linkInItsPlaceStays()
{
    shellBytes("mv /home/dest /home/real; ln -s real /home/dest");
    boot();
    QVERIFY(QFileInfo("/home/dest").isSymLink());
    QVERIFY(fileExists("/home/real/kept"));
    shellBytes("rm /home/dest; mv /home/real /home/dest");
}

void TestGuardSystem::unitsAreAccepted()
{
    shellBytes("cd '" PANEL_SOURCE "/guard'; mkdir /run/units /run/bin; cp '" GUARD "' /run/bin;"
               "for unit in *.service.in; do"
               " sed 's|@prefix@|/run|' $unit >/run/units/${unit%.in}; done;"
               "systemd-analyze verify --man=no /run/units/*");
}

QTEST_GUILESS_MAIN(TestGuardSystem)
#include "tst_guardsystem.moc"
