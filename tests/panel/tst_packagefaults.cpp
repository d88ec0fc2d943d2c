#include "packages/packageinstaller.h"

#include "diskfiles.h"
#include "failingreads.h"
#include "faketools.h"
#include "faultfiles.h"
#include "packagefiles.h"
#include "packages/packagecheck.h"
#include "panelfiles.h"
#include "panelguard.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

#include <unistd.h>

using namespace Kinds;
using namespace std::chrono_literals;

namespace {
constexpr char smallFolder[] = "/run/small";
constexpr char smallSize[] = "size=64k";
} // namespace

class TestPackageFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void unreadablePackages_data();
    void unreadablePackages();
    void packageWithoutArchive();
    void damagedArchives_data();
    void damagedArchives();
    void nothingLeavesTheFolder_data();
    void nothingLeavesTheFolder();
    void missingTargetFolder();
    void noRoomForTheArchive();
    void noRoomInTheTarget();
    void missingVersionFiles();
    void targetWithoutNulByte();
    void stickPulledWhileRead_data();
    void stickPulledWhileRead();
    void stickPulledAtEachBlock();
    void toolsMissing();
    void toolsFail();
    void hangingTarIsKilled();
};

void TestPackageFaults::initTestCase()
{
    requirePanel();
}

void TestPackageFaults::init()
{
    resetInstalledFiles();
}

void TestPackageFaults::cleanup()
{
    QCOMPARE(temporaryFiles(), QStringList());
}

void TestPackageFaults::unreadablePackages_data()
{
    QTest::addColumn<QString>("script"); // creates the package "$1"
    QTest::newRow("missing") << "true";
    QTest::newRow("folder") << "mkdir \"$1\"";
    QTest::newRow("named pipe") << "mkfifo \"$1\"";
    QTest::newRow("dangling link") << "ln -s nowhere \"$1\"";
    QTest::newRow("device") << "ln -s /dev/zero \"$1\"";
    QTest::newRow("0 bytes") << ": >\"$1\"";
    QTest::newRow("1 byte") << "printf x >\"$1\"";
    QTest::newRow("35 bytes") << "head -c 35 /dev/zero >\"$1\"";
    QTest::newRow("no permission, read as another user")
        << "head -c 99 /dev/zero >\"$1\"; chmod 0 \"$1\"";
}

void TestPackageFaults::unreadablePackages()
{
    QFETCH(QString, script);
    shellBytes(QString("rm -rf '%1'; set -- '%1'; %2").arg(packagePath, script));
    const QStringList before = installedState();
    QElapsedTimer timer;
    timer.start();
    const bool asUser = QByteArray(QTest::currentDataTag()).startsWith("no permission");
    QCOMPARE(seteuid(asUser ? 65534 : 0), 0);
    const int result = installPackage(packagePath);
    const int biosResult = installBIOSPackage(packagePath);
    QCOMPARE(seteuid(0), 0);
    QCOMPARE(result, int(OpenFileError));
    QCOMPARE(biosResult, int(NoBiosImage));
    QVERIFY(timer.elapsed() < 10000);
    QCOMPARE(installedState(), before);
    shellBytes(QString("rm -rf '%1'").arg(packagePath));
    QCOMPARE(installPackage(""), int(OpenFileError));
    QCOMPARE(installBIOSPackage(""), int(NoBiosImage));
}

void TestPackageFaults::packageWithoutArchive()
{
    install(application, 12, "RV-K21T", QByteArray(), Installed);
    QVERIFY(!fileExists("/home/dest/compile")); // removed before tar runs
    QCOMPARE(readFile("/home/dest/both"), QByteArray("old\n"));
    writeFile(packagePath, packageBytes(biosImage, 4, "", QByteArray()));
    QCOMPARE(installBIOSPackage(packagePath), int(BiosInstalled));
    QCOMPARE(readPanelFile("bios.version"), QByteArray("3\n"));
}

void TestPackageFaults::damagedArchives_data()
{
    QTest::addColumn<QByteArray>("archive");
    const QByteArray &whole = largeArchive();
    QTest::newRow("cut in the middle") << whole.left(whole.size() / 2);
    QTest::newRow("cut in the gzip header") << whole.left(5);
    QTest::newRow("last byte missing") << whole.chopped(1);
    QByteArray flipped = whole;
    flipped[whole.size() / 2] = char(flipped.at(whole.size() / 2) ^ 1);
    QTest::newRow("flipped bit") << flipped;
    QTest::newRow("gzip of text") << shellBytes("echo no tar | gzip");
    QTest::newRow("gzip of an empty file") << shellBytes("gzip </dev/null");
    QTest::newRow("tar without gzip") << shellBytes("tar -c /etc/passwd 2>/dev/null");
    QTest::newRow("text") << QByteArray("this is no archive");
    QTest::newRow("zero bytes") << QByteArray(100000, '\0');
}

void TestPackageFaults::damagedArchives()
{
    QFETCH(QByteArray, archive);
    install(application, 12, "K21T", archive, Installed);
    QVERIFY(!fileExists("/home/dest/compile"));
    QCOMPARE(readFile("/home/dest/kept"), QByteArray("old\n"));
    install(application, 12, "K21T", smallArchive(), Installed); // a good one still works
    QVERIFY(fileExists("/home/dest/compile/new"));
}

void TestPackageFaults::nothingLeavesTheFolder_data()
{
    QTest::addColumn<QString>("script"); // writes a tar archive
    const QString member = "mkdir -p x/y; echo evil >x/evil; ";
    QTest::newRow("..") << member + "cd x/y; tar -cP ../evil";
    QTest::newRow("../../../../outside")
        << member + "tar -cP --transform 's,^x,../../../../outside,' x/evil";
    QTest::newRow("absolute path") << member + "tar -cP --transform 's,^x,/outside,' x/evil";
    QTest::newRow("link to outside, then a file below it")
        << "mkdir a b b/out; ln -s /outside a/out; echo evil >b/out/evil;"
           "tar -cf t -C a out; tar -rf t -C b out/evil; cat t";
    QTest::newRow("relative link to outside, then a file below it")
        << "mkdir a b b/out; ln -s ../../outside a/out; echo evil >b/out/evil;"
           "tar -cf t -C a out; tar -rf t -C b out/evil; cat t";
    QTest::newRow("link to an outside file, then a file of its name")
        << "mkdir a b; ln -s /outside/guard a/f; echo evil >b/f;"
           "tar -cf t -C a f; tar -rf t -C b f; cat t";
    QTest::newRow("hard link to an outside file, then a file of its name")
        << "mkdir a b; echo x >a/g; ln a/g a/h; echo evil >b/h;"
           "tar -cPf t --transform 's,^g$,/outside/guard,;' -C a g h; tar -rf t -C b h; cat t";
}

void TestPackageFaults::nothingLeavesTheFolder()
{
    QFETCH(QString, script);
    const QByteArray archive
        = shellBytes("rm -rf /run/make; mkdir /run/make; cd /run/make; { " + script + "; } | gzip");
    install(application, 12, "K21T", archive, Installed);
    QCOMPARE(shellBytes("find /outside | sort; cat /outside/guard"),
             QByteArray("/outside\n/outside/guard\nguard\n"));
    QVERIFY(!fileExists("/home/evil"));
    QVERIFY(!fileExists("/evil"));
}

void TestPackageFaults::missingTargetFolder()
{
    shellBytes("rm -rf /home/dest");
    const FakeTools tools({"tar"});
    writeFile(packagePath, packageBytes(application, 12, "K21T", smallArchive()));
    QCOMPARE(installPackage(packagePath), int(Installed));
    QCOMPARE(tools.calls(), QStringList());
    QVERIFY(!fileExists("/home/dest"));
}

void TestPackageFaults::noRoomForTheArchive()
{
    writeFile(packagePath, packageBytes(application, 12, "K21T", largeArchive()));
    writeFile("/media/usb0/image", packageBytes(biosImage, 4, "", largeArchive()));
    const QStringList before = installedState();
    {
        const SmallDisk disk(smallFolder, smallSize);
        const TemporaryFolder folder(smallFolder);
        QCOMPARE(installPackage(packagePath), int(OpenFileError));
        QCOMPARE(installBIOSPackage("/media/usb0/image"), int(BiosNotStored));
        QCOMPARE(QDir(smallFolder).entryList(QDir::Files | QDir::Hidden), QStringList());
    }
    const TemporaryFolder folder("/sys/kernel"); // read-only
    QCOMPARE(installPackage(packagePath), int(OpenFileError));
    QCOMPARE(installBIOSPackage("/media/usb0/image"), int(BiosNotStored));
    QCOMPARE(installedState(), before);
}

void TestPackageFaults::noRoomInTheTarget()
{
    const SmallDisk disk("/home/dest", smallSize);
    install(application, 12, "K21T", largeArchive(), Installed);
    QCOMPARE(readFile("/home/dest/a"), QByteArray("first\n")); // unpacked before the disk was full
    shellBytes("rm -rf /home/dest/*");
    install(application, 12, "K21T", smallArchive(), Installed);
    QVERIFY(fileExists("/home/dest/compile/new"));
}

void TestPackageFaults::missingVersionFiles()
{
    for (const char *name : {"fwver", "model", "oem", "bios.version"}) {
        removePanelFile(name);
    }
    install(application, 0, "K21T", smallArchive(), WrongModel);
    install(application, 1, "", smallArchive(), WrongVersion);
    install(firmware, 5, "TALMERO", smallArchive(), WrongFirmwareOem);
    writeFile(packagePath, packageBytes(biosImage, 1, "", biosArchive()));
    QCOMPARE(installBIOSPackage(packagePath), int(BiosInstalled));
    // A missing model file equals an empty target in the package.
    install(application, 0, "", smallArchive(), Installed);
    install(firmware, 5, "", smallArchive(), Installed);
    QCOMPARE(readPanelFile("fwver"), QByteArray("5"));
}

void TestPackageFaults::targetWithoutNulByte()
{
    QByteArray package = packageBytes(application, 12, "123456789012345", smallArchive());
    package[packageHeaderSize - 1] = '6';
    writeFile(packagePath, package);
    QCOMPARE(installPackage(packagePath), int(WrongModel));
    writePanelFile("model", "1234567890123456");
    QCOMPARE(installPackage(packagePath), int(Installed));
}

void TestPackageFaults::stickPulledWhileRead_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("result");
    QTest::newRow("at once") << 0 << int(OpenFileError);
    QTest::newRow("after the first block") << 4096 << int(Installed);
    QTest::newRow("in the middle") << 200000 << int(Installed);
}

void TestPackageFaults::stickPulledWhileRead()
{
    QFETCH(int, offset);
    QFETCH(int, result);
    writeFile(packagePath, packageBytes(application, 12, "K21T", largeArchive()));
    const bool readable = result == Installed;
    {
        const FailingReads failing(offset);
        QCOMPARE(installPackage(packagePath), result);
    }
    QCOMPARE(fileExists("/home/dest/compile"), !readable);
    QVERIFY(!fileExists("/home/dest/c")); // lies after that offset
    QCOMPARE(readFile("/home/dest/kept"), QByteArray("old\n"));
    QCOMPARE(installPackage(packagePath), int(Installed)); // the stick is back
    QVERIFY(fileExists("/home/dest/c"));
}

void TestPackageFaults::stickPulledAtEachBlock()
{
    constexpr int blockSize = 4096;  // the program never reads less of a stick at a time
    QByteArray noise(1000000, '\0'); // incompressible
    QRandomGenerator random(1);
    random.generate(reinterpret_cast<quint32 *>(noise.begin()),
                    reinterpret_cast<quint32 *>(noise.end()));
    const QByteArray package = packageBytes(application, 12, "K21T", PackageMembers{{"a", noise}});
    QVERIFY(package.size() > noise.size());
    writeFile(packagePath, package);
    for (qsizetype offset = 0; offset < package.size() + blockSize; offset += blockSize) {
        int result = -1;
        {
            const FailingReads failing(offset);
            result = installPackage(packagePath);
        }
        QCOMPARE(result, offset == 0 ? int(OpenFileError) : int(Installed));
        QCOMPARE(temporaryFiles(), QStringList());
        const QByteArray unpacked = readFile("/home/dest/a");
        QVERIFY(unpacked == "none" || noise.startsWith(unpacked));
        QCOMPARE(readFile("/home/dest/kept"), QByteArray("old\n"));
    }
    QCOMPARE(readFile("/home/dest/a"), noise);
}

void TestPackageFaults::toolsMissing()
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/no/such/folder");
    writeFile(packagePath, packageBytes(application, 12, "K21T", smallArchive()));
    const int result = installPackage(packagePath);
    writeFile(packagePath, packageBytes(firmware, 13, "TALMERO", smallArchive()));
    const int firmwareResult = installPackage(packagePath);
    qputenv("PATH", path);
    QCOMPARE(result, int(Installed));
    QCOMPARE(firmwareResult, int(Installed));
    QVERIFY(fileExists("/home/dest/compile/old"));
    QVERIFY(!fileExists("/home/dest/compile/new"));
    QCOMPARE(readPanelFile("fwver"), QByteArray("13")); // tar's status is ignored
}

void TestPackageFaults::toolsFail()
{
    const FakeTools tools({"rm", "tar", "sync"});
    tools.setBody("rm", "exit 1");
    tools.setBody("tar", "head -c 10000000 /dev/zero; echo broken >&2; exit 2");
    tools.setBody("sync", "kill -9 $$");
    install(firmware, 13, "TALMERO", smallArchive(), Installed);
    install(application, 13, "K21T", smallArchive(), Installed);
    QCOMPARE(tools.calls().size(), 5);
    QVERIFY(fileExists("/home/dest/compile/old"));
}

void TestPackageFaults::hangingTarIsKilled()
{
    const FakeTools tools({"tar"});
    tools.setBody("tar", "trap '' TERM; echo $$ >/run/tar.pid; while :; do sleep 1; done");
    writeFile(packagePath, packageBytes(biosImage, 4, "", biosArchive()));
    QElapsedTimer timer;
    timer.start();
    QTest::failOnWarning(QRegularExpression("QProcess"));
    QCOMPARE(installBIOSPackage(packagePath, 1000ms), int(BiosInstalled));
    QVERIFY2(timer.elapsed() >= 1500 && timer.elapsed() < 10000, // 1 s, then SIGTERM, then SIGKILL
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(kill(readFile("/run/tar.pid").trimmed().toInt(), 0), -1);
}

QTEST_GUILESS_MAIN(TestPackageFaults)
#include "tst_packagefaults.moc"
