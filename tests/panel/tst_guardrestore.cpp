// What "talmero-guard restore" does at boot, with real files and the real ifupdown.

#include "diskfiles.h"
#include "faketools.h"
#include "panelguard.h"
#include "system/paths.h"
#include "toolrun.h"

#include <QFile>
#include <QTest>

#include <sys/stat.h>

namespace {
const QByteArray copies = "/var/lib/talmero-guard";
const QByteArray loopback = "auto lo \niface lo inet loopback\n\n";
const QByteArray dhcp0 = "auto eth0\niface eth0 inet dhcp\n\n";
const QByteArray fixed1
    = "auto eth1\niface eth1 inet static\naddress 10.0.0.9\nnetmask 255.0.0.0\n\n";
const QByteArray bothPorts = "app.mouse=1\nethernet.eth0=dhcp\nethernet.eth1=10.0.0.9\n"
                             "ethernet.eth1.mask=255.0.0.0\n";
const QByteArray wholeFile = loopback + dhcp0 + fixed1;

constexpr char putBack[] = ": put its last good copy back\n";
constexpr char writtenAgain[] = "/etc/network/interfaces did not say what "
                                "/opt/talmero/bios/bios.ini says: wrote it again\n";

/// Sets the files with settings and their copies.
void setUp(const QByteArray &settings, const QByteArray &interfaces)
{
    writeFile(Paths::settingsFile, settings);
    writeFile(Paths::interfacesFile, interfaces);
    writeFile(copies + "/bios.ini", settings);
    writeFile(copies + "/interfaces", interfaces);
}

ToolRun restore()
{
    return runTool(GUARD, {"restore"});
}

/// Identity of everything that a needless write would change.
QByteArray traceOf(const QByteArray &files)
{
    return shellBytes("stat -c '%n %i %z %Y' " + files);
}
} // namespace

class TestGuardRestore : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void damagedFileGetsItsCopy_data();
    void damagedFileGetsItsCopy();
    void goodFilesAreNotTouched();
    void damageWithoutCopyIsTold();
    void missingFileStaysMissing();
    void damagedCopyIsNone();
    void interfacesFollowTheSettings_data();
    void interfacesFollowTheSettings();
    void disabledPortsSurvive();
    void lostSettingsDisableNoPort();
    void textThatIfupdownRefusesIsNotWritten();
    void missingIfupdownIsNoFault();
    void fileThatCannotBeWrittenIsAnError();
    void statusTellsTheLastRepair();
    void usage();
};

void TestGuardRestore::initTestCase()
{
    requirePanel();
}

void TestGuardRestore::init()
{
    emptyFolder(copies);
    for (const char *path : {Paths::modelFile, Paths::runtimeOemFile, Paths::runtimeVersionFile,
                             Paths::biosVersionFile}) {
        writeFile(path, "7");
    }
    setUp("app.mouse=1\n", "auto lo\niface lo inet loopback\n");
}

void TestGuardRestore::damagedFileGetsItsCopy_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("damaged");
    QTest::addColumn<QByteArray>("copy");
    QTest::addColumn<QByteArray>("found");
    const auto row = [](const char *name, const char *path, const QByteArray &damaged,
                        const QByteArray &copy, const char *found) {
        QTest::newRow(name) << QByteArray(path) << damaged << copy << QByteArray(found);
    };
    const QByteArray refused = "iface eth0 nonsense dhcp\n";
    row("empty settings", Paths::settingsFile, "", "a=1\nb=2\n", "empty");
    row("settings of zero bytes", Paths::settingsFile, QByteArray(512, '\0'), "a=1\n", "empty");
    row("cut settings", Paths::settingsFile, "a=1\nb", "a=1\nb=2\n", "cut off");
    row("settings cut at a line end", Paths::settingsFile, "a=1\n", "a=1\nb=2\n", "cut off");
    row("empty model", Paths::modelFile, "", "RV-K21T", "empty");
    row("empty OEM", Paths::runtimeOemFile, "\n", "TALMERO\n", "empty");
    row("empty runtime version", Paths::runtimeVersionFile, "", "12", "empty");
    row("BIOS version with a zero byte", Paths::biosVersionFile, QByteArray("3\0", 2), "3",
        "cut off");
    row("empty interfaces", Paths::interfacesFile, "", loopback, "empty");
    row("cut interfaces", Paths::interfacesFile, "auto lo", "auto lo\niface lo inet loopback\n",
        "cut off");
    row("refused interfaces", Paths::interfacesFile, refused, "auto lo\niface lo inet loopback\n",
        "refused by ifupdown");
}

void TestGuardRestore::damagedFileGetsItsCopy()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, damaged);
    QFETCH(QByteArray, copy);
    QFETCH(QByteArray, found);
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    writeFile(path, damaged);
    QCOMPARE(chmod(path.constData(), 0640), 0);
    writeFile(copies + '/' + name, copy);
    const ToolRun run = restore();
    QCOMPARE(run.output, path + " was " + found + putBack);
    QCOMPARE(run.status, 0);
    QCOMPARE(readFile(path), copy);
    QCOMPARE(shellBytes("stat -c %a " + path), QByteArray("640\n"));
    QCOMPARE(readFile(copies + '/' + name + ".replaced"), damaged.isEmpty() ? "none" : damaged);

    const QByteArray before = traceOf(path + ' ' + copies + "/*");
    const ToolRun second = restore();
    QCOMPARE(second.output, QByteArray());
    QCOMPARE(second.status, 0);
    QCOMPARE(traceOf(path + ' ' + copies + "/*"), before);
}

void TestGuardRestore::goodFilesAreNotTouched()
{
    setUp(bothPorts, wholeFile);
    writeFile(Paths::settingsFile, "# by hand\nethernet.eth0 = dhcp"); // unlike the copy
    writeFile(Paths::interfacesFile, "source /etc/network/interfaces.d/*\n");
    writeFile(Paths::modelFile, "another\n");
    const QByteArray files = "/opt/talmero/bios/* /etc/network/* " + copies + "/*";
    const QByteArray before = traceOf(files);
    const ToolRun run = restore();
    QCOMPARE(run.output + run.errors, QByteArray());
    QCOMPARE(run.status, 0);
    QCOMPARE(traceOf(files), before);
}

void TestGuardRestore::damageWithoutCopyIsTold()
{
    emptyFolder(copies);
    writeFile(Paths::settingsFile);
    writeFile(Paths::interfacesFile, "nonsense\n");
    const ToolRun run = restore();
    QCOMPARE(run.output,
             QByteArray("/opt/talmero/bios/bios.ini was empty, and there is no good copy of it\n"
                        "/etc/network/interfaces was refused by ifupdown, and there is no good "
                        "copy of it\n"));
    QCOMPARE(run.status, 0);
    QCOMPARE(readFile(Paths::settingsFile), QByteArray());
    QCOMPARE(readFile(Paths::interfacesFile), QByteArray("nonsense\n"));
}

void TestGuardRestore::missingFileStaysMissing()
{
    writeFile(copies + "/model", "RV-K21T");
    QVERIFY(QFile::remove(Paths::modelFile));
    QVERIFY(QFile::remove(Paths::settingsFile));
    QVERIFY(QFile::remove(Paths::interfacesFile));
    QCOMPARE(restore().output, QByteArray());
    QVERIFY(!QFile::exists(Paths::modelFile));
    QVERIFY(!QFile::exists(Paths::settingsFile));
    QVERIFY(!QFile::exists(Paths::interfacesFile));
}

void TestGuardRestore::damagedCopyIsNone()
{
    writeFile(Paths::settingsFile);
    writeFile(copies + "/bios.ini", "a=1\nb");
    QCOMPARE(restore().output,
             QByteArray("/opt/talmero/bios/bios.ini was empty, and there is no good copy of it\n"));
}

void TestGuardRestore::interfacesFollowTheSettings_data()
{
    QTest::addColumn<QByteArray>("interfaces");
    QTest::addColumn<bool>("hasCopy");
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const QByteArray &interfaces, bool hasCopy,
                        const QByteArray &settings, const QByteArray &after) {
        QTest::newRow(name) << interfaces << hasCopy << settings << after;
    };
    const QByteArray own = "auto lo\niface lo inet loopback\n\n" + dhcp0;
    row("cut between the files", loopback + dhcp0, true, bothPorts, wholeFile);
    row("cut in the first save", loopback, true, bothPorts, wholeFile);
    row("port disabled", wholeFile, true, "ethernet.eth0=dhcp\n", loopback + dhcp0);
    row("cut in the second file", wholeFile.left(100), false, bothPorts, wholeFile);
    row("empty without a copy", "", false, bothPorts, wholeFile);
    row("refused without a copy", "nonsense\n", false, bothPorts, wholeFile);
    row("empty address", loopback + dhcp0 + "auto eth1\niface eth1 inet static\naddress \n\n",
        false, "ethernet.eth0=dhcp\nethernet.eth1=\n", loopback + dhcp0);
    row("the maker's own", own, true, bothPorts, own);
    row("never saved", loopback + dhcp0, true, "app.mouse=1\n", loopback + dhcp0);
    row("own addition", wholeFile + "gateway 10.0.0.1\n", true, "ethernet.eth0=dhcp\n",
        wholeFile + "gateway 10.0.0.1\n");
}

void TestGuardRestore::interfacesFollowTheSettings()
{
    QFETCH(QByteArray, interfaces);
    QFETCH(bool, hasCopy);
    QFETCH(QByteArray, settings);
    QFETCH(QByteArray, after);
    setUp(settings, interfaces);
    if (!hasCopy) {
        QVERIFY(QFile::remove(copies + "/interfaces"));
    }
    const ToolRun run = restore();
    QCOMPARE(run.status, 0);
    QCOMPARE(readFile(Paths::interfacesFile), after);
    QCOMPARE(run.output.endsWith(writtenAgain), after != interfaces);

    const QByteArray before = traceOf("/etc/network/* /opt/talmero/bios/* " + copies + "/*");
    QCOMPARE(restore().output, QByteArray());
    QCOMPARE(restore().output, QByteArray());
    QVERIFY(traceOf("/etc/network/* /opt/talmero/bios/*").size() > 0);
    QVERIFY(before.startsWith(traceOf("/etc/network/* /opt/talmero/bios/*")));
}

/// Disabling every port removes the keys, but the settings still count.
void TestGuardRestore::disabledPortsSurvive()
{
    setUp(bothPorts, wholeFile);
    QCOMPARE(restore().output, QByteArray()); // sees that the two go together
    setUp("app.mouse=1\n", wholeFile);
    QCOMPARE(restore().output, QByteArray(writtenAgain));
    QCOMPARE(readFile(Paths::interfacesFile), loopback);
}

void TestGuardRestore::lostSettingsDisableNoPort()
{
    setUp(bothPorts, wholeFile);
    QCOMPARE(restore().output, QByteArray());
    writeFile(Paths::settingsFile);
    QVERIFY(QFile::remove(copies + "/bios.ini"));
    restore();
    QCOMPARE(readFile(Paths::interfacesFile), wholeFile);
}

void TestGuardRestore::textThatIfupdownRefusesIsNotWritten()
{
    const FakeTools tools({"ifquery"});
    tools.setBody("ifquery",
                  "grep -qv '10[.]0[.]0[.]9' \"$3\" && ! grep -q '10[.]0[.]0[.]9' \"$3\"");
    setUp(bothPorts, loopback);
    QCOMPARE(restore().output,
             QByteArray("/etc/network/interfaces stays as it is: ifupdown would refuse what "
                        "/opt/talmero/bios/bios.ini says\n"));
    QCOMPARE(readFile(Paths::interfacesFile), loopback);
}

void TestGuardRestore::missingIfupdownIsNoFault()
{
    writeFile(Paths::interfacesFile, "nonsense\n");
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    const ToolRun run = restore();
    qputenv("PATH", path);
    QCOMPARE(run.output, QByteArray());
}

void TestGuardRestore::fileThatCannotBeWrittenIsAnError()
{
    writeFile(Paths::settingsFile);
    shellBytes("mount --bind /opt/talmero/bios /opt/talmero/bios;"
               "mount -o remount,bind,ro /opt/talmero/bios");
    const ToolRun run = restore();
    shellBytes("umount /opt/talmero/bios");
    QCOMPARE(run.output,
             QByteArray("/opt/talmero/bios/bios.ini cannot be written: it is not repaired\n"));
    QCOMPARE(run.status, 1);
}

void TestGuardRestore::statusTellsTheLastRepair()
{
    QVERIFY(!runTool(GUARD, {"status"}).output.contains("act="));
    writeFile(Paths::settingsFile);
    restore();
    const QByteArray status = runTool(GUARD, {"status"}).output;
    QVERIFY(status.contains("act=/opt/talmero/bios/bios.ini was empty: put its last good copy "
                            "back\n"));
    QVERIFY(status.contains("\ncopy.bios.ini=20"));
    QVERIFY(status.contains("\ntime=20"));
    QVERIFY(status.endsWith("\nwatch=no\n"));
}

void TestGuardRestore::usage()
{
    QVERIFY(runTool(GUARD, {"--help"}).output.startsWith("Usage: talmero-guard watch"));
    QCOMPARE(runTool(GUARD, {"--version"}).output, QByteArray("talmero-guard 1.0\n"));
    const ToolRun wrong = runTool(GUARD, {"restore", "now\x1b"});
    QCOMPARE(wrong.status, 64);
    QCOMPARE(wrong.errors,
             QByteArray("talmero-guard: unknown command: restore now\\x1b; see "
                        "talmero-guard --help\n"));
    const ToolRun lost = runTool("/bin/sh", {"-c", "'" GUARD "' status >/dev/full"});
    QCOMPARE(lost.status, 74);
}

QTEST_GUILESS_MAIN(TestGuardRestore)
#include "tst_guardrestore.moc"
