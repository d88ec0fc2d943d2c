#include "diskfiles.h"
#include "faketools.h"
#include "manualpage.h"
#include "packagefiles.h"
#include "packages/installlock.h"
#include "packages/packagecheck.h"
#include "packages/packageinstaller.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "toolrun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <csignal>

// Runs talmero-install from the command line.

using namespace Kinds;

namespace {
QString put(const QString &name, PackageKind kind, quint32 version, const QString &target,
            const QByteArray &archive = smallArchive())
{
    const QString path = "/media/usb0/" + name;
    writeFile(path.toUtf8(), packageBytes(kind, version, target, archive));
    return path;
}

QString putApplication()
{
    return put("a.kpc", application, 12, "RV-K21T");
}

ToolRun installFile(const QString &path, const QStringList &options = {})
{
    return runTool(INSTALL, options + QStringList(path));
}

QJsonObject object(const ToolRun &run)
{
    return QJsonDocument::fromJson(run.output).object();
}
} // namespace

class TestInstall : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void leavesWhatThePageLeaves_data();
    void leavesWhatThePageLeaves();
    void refusals_data();
    void refusals();
    void unreadable_data();
    void unreadable();
    void fullDisk();
    void jsonOfAnInstallation();
    void dryRunWritesNothing_data();
    void dryRunWritesNothing();
    void dryRunReportsFindings();
    void oneInstallationAtATime();
    void killedInstallationHoldsTheLockUntilTarEnds();
    void interruptedInstallationLeavesWhatThePageWould();
    void wrongUsage_data();
    void wrongUsage();
    void onlyRootInstalls();
    void lostOutput();
    void outputIsSafeForATerminal();
    void examplesOfTheManualPage();
};

void TestInstall::initTestCase()
{
    requirePanel();
    QCoreApplication::setApplicationName("talmero-bios"); // temporaryFiles() looks for its files
}

void TestInstall::init()
{
    resetInstalledFiles();
    emptyFolder("/media/usb0");
    shellBytes("rm -f /tmp/talmero-bios.*");
}

void TestInstall::cleanup()
{
    QCOMPARE(temporaryFiles(), QStringList());
}

void TestInstall::leavesWhatThePageLeaves_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<PackageHeader>("header");
    QTest::newRow("application") << "a.kpc" << PackageHeader{application, 12, "RV-K21T"};
    QTest::newRow("firmware") << "a.fmw" << PackageHeader{firmware, 13, "TALMERO"};
    QTest::newRow("firmware named like an application")
        << "a.kpc" << PackageHeader{firmware, 13, "TALMERO"};
    QTest::newRow("bios") << "a.mo" << PackageHeader{biosImage, 4, ""};
    QTest::newRow("bios in capitals") << "a.MO" << PackageHeader{biosImage, 4, ""};
    QTest::newRow("add-on") << "a.pkg" << PackageHeader{biosImage, 4, ""};
}

void TestInstall::leavesWhatThePageLeaves()
{
    QFETCH(QString, name);
    QFETCH(PackageHeader, header);
    const bool isBios = header.kind == biosImage;
    const auto putPackage = [&] {
        return put(name, header.kind, header.version, header.target,
                   isBios ? biosArchive() : smallArchive());
    };
    const QString path = putPackage();
    const QStringList before = installedState();
    isBios ? installBIOSPackage(path) : installPackage(path);
    const QStringList byThePage = installedState();
    QVERIFY(byThePage != before);
    resetInstalledFiles();
    putPackage();

    const ToolRun run = installFile(path);
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.output, path.toUtf8() + ": installed\n");
    QCOMPARE(run.status, 0);
    QCOMPARE(installedState(), byThePage);
}

void TestInstall::refusals_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<PackageHeader>("header");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("other runtime") << "a.kpc" << PackageHeader{application, 13, "RV-K21T"} << 2
                                   << QByteArray("File Transfer: Error Firmware Version while "
                                                 "Install KPC");
    QTest::newRow("other model") << "a.kpc" << PackageHeader{application, 12, "RV-K25T"} << 3
                                 << QByteArray("File Transfer: Error Panel Model while Install "
                                               "KPC");
    QTest::newRow("other OEM") << "a.fmw" << PackageHeader{firmware, 13, "OTHER"} << 4
                               << QByteArray("File Transfer: Error Panel Model while Install "
                                             "Firmware");
    QTest::newRow("application as bios")
        << "a.mo" << PackageHeader{application, 4, ""} << 5 << QByteArray("not a bios package");
    QTest::newRow("same bios") << "a.pkg" << PackageHeader{biosImage, 3, ""} << 6
                               << QByteArray("not newer than the installed bios");
    QTest::newRow("bios as application") << "a.kpc" << PackageHeader{biosImage, 4, ""} << 8
                                         << QByteArray("neither an application nor a firmware");
    QTest::newRow("unknown kind") << "a.fmw" << PackageHeader{PackageKind(7), 4, ""} << 8
                                  << QByteArray("neither an application nor a firmware");
}

void TestInstall::refusals()
{
    QFETCH(QString, name);
    QFETCH(PackageHeader, header);
    QFETCH(QByteArray, text);
    const QString path = put(name, header.kind, header.version, header.target);
    const QStringList before = installedState();
    const ToolRun run = installFile(path);
    QTEST(run.status, "status");
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, "talmero-install: " + path.toUtf8() + ": " + text + '\n');
    const ToolRun dryRun = installFile(path, {"--dry-run"});
    QTEST(dryRun.status, "status");
    QVERIFY2(dryRun.output.endsWith('\n' + path.toUtf8() + ": " + text + '\n'), dryRun.output);
    QCOMPARE(installedState(), before);
}

void TestInstall::unreadable_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("missing") << "true";
    QTest::newRow("empty") << ": >a.kpc";
    QTest::newRow("shorter than a header") << "head -c 35 /dev/zero >a.kpc";
    QTest::newRow("folder") << "mkdir a.kpc";
    QTest::newRow("pipe") << "mkfifo a.kpc"; // without a writer
}

void TestInstall::unreadable()
{
    QFETCH(QString, command);
    shellBytes("cd /media/usb0; " + command);
    const QStringList before = installedState();
    for (const QStringList &options : {QStringList(), QStringList("--dry-run")}) {
        const ToolRun run = installFile("/media/usb0/a.kpc", options);
        QCOMPARE(run.status, 1);
        const QByteArray all = run.output + run.errors;
        QVERIFY2(all.endsWith("/media/usb0/a.kpc: File Transter: Open File Error\n"), all);
    }
    QCOMPARE(installedState(), before);
}

void TestInstall::fullDisk()
{
    const QString path = put("a.mo", biosImage, 4, "", largeArchive());
    shellBytes("mkdir -p /run/full; mount -t tmpfs -o size=64k full /run/full");
    const QStringList before = installedState();
    const ToolRun run = [&path] {
        const TemporaryFolder folder("/run/full");
        return installFile(path);
    }();
    shellBytes("umount /run/full");
    QCOMPARE(run.status, 7);
    QCOMPARE(run.errors, "talmero-install: " + path.toUtf8() + ": no room for the archive\n");
    QCOMPARE(installedState(), before);
}

void TestInstall::jsonOfAnInstallation()
{
    const QString path = putApplication();
    const ToolRun good = installFile(path, {"--json"});
    QCOMPARE(good.status, 0);
    QCOMPARE(
        object(good),
        (QJsonObject{{"file", path}, {"dryRun", false}, {"status", 0}, {"text", "installed"}}));
    put("a.kpc", application, 13, "RV-K21T");
    const ToolRun bad = installFile(path, {"--json"});
    QCOMPARE(bad.status, 2);
    QCOMPARE(bad.errors, QByteArray());
    QCOMPARE(object(bad).value("status").toInt(), 2);
    QCOMPARE(object(bad).value("text").toString(),
             QString("File Transfer: Error Firmware Version while Install KPC"));
}

void TestInstall::dryRunWritesNothing_data()
{
    leavesWhatThePageLeaves_data();
}

void TestInstall::dryRunWritesNothing()
{
    QFETCH(QString, name);
    QFETCH(PackageHeader, header);
    const QString path = put(name, header.kind, header.version, header.target);
    const QStringList before = installedState();
    const ToolRun run = installFile(path, {"--dry-run"});
    QCOMPARE(run.status, 0);
    QVERIFY2(run.output.endsWith('\n' + path.toUtf8() + ": would be installed\n"), run.output);
    QCOMPARE(installedState(), before);
}

void TestInstall::dryRunReportsFindings()
{
    const QString path = put("a.kpc", application, 12, "RV-K21T",
                             archiveOf("mkdir compile; echo x >compile/x; chmod 4755 compile/x"));
    const ToolRun run = installFile(path, {"--dry-run", "--json"});
    const QJsonObject report = object(run);
    const QJsonObject verification = report.value("verification").toObject();
    QVERIFY(!verification.value("good").toBool());
    QVERIFY(!verification.value("findings").toArray().isEmpty());
    QCOMPARE(report.value("text").toString(), QString("would be installed and do harm"));
    QVERIFY(report.value("dryRun").toBool());
    QCOMPARE(run.status, 9);
}

void TestInstall::oneInstallationAtATime()
{
    const QString path = putApplication();
    const QString bios = put("a.mo", biosImage, 4, "", biosArchive());
    const QStringList before = installedState();
    {
        const InstallLock lock;
        QVERIFY(lock.isHeld());
        for (const QString &file : {path, bios}) {
            const ToolRun run = installFile(file);
            QCOMPARE(run.status, 75);
            QCOMPARE(run.errors,
                     "talmero-install: " + file.toUtf8()
                         + ": another program is installing a package\n");
        }
        // The pages as well, because two locks of one process exclude each other too.
        QCOMPARE(installPackage(path), int(InstallerBusy));
        QCOMPARE(installBIOSPackage(bios), int(BiosInstallerBusy));
        QCOMPARE(installFile(path, {"--dry-run"}).status, 0);
        QCOMPARE(installedState(), before);
    }
    QCOMPARE(installFile(path).status, 0);
    QCOMPARE(installFile(bios).status, 0);
}

/// Starts an installation and waits until its tar runs, which lasts until /run/go exists.
static std::unique_ptr<QProcess> startSlowInstallation(const FakeTools &tools, const QString &path)
{
    QFile::remove("/run/go");
    tools.setBody("tar", "until [ -e /run/go ]; do /bin/sleep 0.05; done");
    auto process = std::make_unique<QProcess>();
    process->start(INSTALL, {path});
    QElapsedTimer timer;
    timer.start();
    while (tools.calls().filter("tar").isEmpty() && timer.elapsed() < 20000) {
        QTest::qSleep(20);
    }
    return process;
}

void TestInstall::killedInstallationHoldsTheLockUntilTarEnds()
{
    const QString path = putApplication();
    const FakeTools tools({"tar"});
    const auto process = startSlowInstallation(tools, path);
    QCOMPARE(tools.calls().size(), 1);
    process->kill();
    QVERIFY(process->waitForFinished());
    QVERIFY(!InstallLock().isHeld());
    writeFile("/run/go");
    QTRY_VERIFY(InstallLock().isHeld());
    shellBytes("rm /tmp/talmero-bios.*");
}

void TestInstall::interruptedInstallationLeavesWhatThePageWould()
{
    const QString path = putApplication();
    const FakeTools tools({"tar"});
    const auto process = startSlowInstallation(tools, path);
    ::kill(pid_t(process->processId()), SIGINT);
    QVERIFY(process->waitForFinished());
    writeFile("/run/go");
    // The old application is gone and the archive is not unpacked: guard and doctor know both.
    QVERIFY(!fileExists("/home/dest/compile/old"));
    QVERIFY(!fileExists("/home/dest/compile/new"));
    QCOMPARE(shellBytes("ls /tmp/talmero-bios.* | wc -l"), QByteArray("1\n"));
    shellBytes("rm /tmp/talmero-bios.*");
}

void TestInstall::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("no file") << QStringList() << QByteArray("one file is installed at a time");
    QTest::newRow("two files") << QStringList{"a.kpc", "b.kpc"}
                               << QByteArray("one file is installed at a time");
    QTest::newRow("unknown option")
        << QStringList{"--force", "a.kpc"} << QByteArray("Unknown option 'force'.");
    QTest::newRow("other extension")
        << QStringList{"a.zip"}
        << QByteArray("a.zip: no page of a panel lists a file of this name");
    QTest::newRow("application in capitals")
        << QStringList{"a.KPC"}
        << QByteArray("a.KPC: no page of a panel lists a file of this name");
}

void TestInstall::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, reason);
    const ToolRun run = runTool(INSTALL, arguments);
    QCOMPARE(run.status, 64);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, "talmero-install: " + reason + "; see talmero-install --help\n");
}

void TestInstall::onlyRootInstalls()
{
    const QString path = putApplication();
    const QStringList before = installedState();
    const QStringList asOther{"--reuid=65534", "--regid=65534",  "--clear-groups",
                              "env",           countersOfOthers, INSTALL};
    const ToolRun run = runTool("setpriv", asOther + QStringList(path));
    QCOMPARE(run.status, 77);
    QCOMPARE(run.errors, QByteArray("talmero-install: only root can install a package\n"));
    QCOMPARE(runTool("setpriv", asOther + QStringList{"--dry-run", path}).status, 0);
    QCOMPARE(installedState(), before);
}

void TestInstall::lostOutput()
{
    const QString path = putApplication();
    const ToolRun run
        = runTool("sh", {"-c", QString("%1 --dry-run %2 >/dev/full").arg(INSTALL, path)});
    QCOMPARE(run.status, 74);
    QCOMPARE(run.errors, QByteArray("talmero-install: cannot write to standard output\n"));
}

void TestInstall::outputIsSafeForATerminal()
{
    const QString path = put("\x1b[2J\n.kpc", application, 12, "\x1b]0;x\x07");
    for (const QStringList &options :
         {QStringList(), QStringList("--dry-run"), QStringList{"--dry-run", "--json"}}) {
        const ToolRun run = installFile(path, options);
        QCOMPARE(run.status, 3);
        for (const char c : run.output + run.errors) {
            QVERIFY(c == '\n' || (c >= ' ' && c <= '~'));
        }
    }
}

void TestInstall::examplesOfTheManualPage()
{
    const QByteArrayList examples = examplesOfManualPage("tools/install/talmero-install.1");
    QCOMPARE(examples.size(), 2);
    put("line1.kpc", application, 12, "RV-K21T");
    shellBytes("cd /media/usb0 && " + withProgram(INSTALL, examples.at(0)));
    QVERIFY(!fileExists("/home/dest/compile/new"));
    shellBytes("cd /media/usb0 && " + withProgram(INSTALL, examples.at(1)));
    QVERIFY(fileExists("/home/dest/compile/new"));
}

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
