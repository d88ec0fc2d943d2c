#include "packages/packageinstaller.h"

#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "packages/packagecheck.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "system/textcodec.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

using namespace Kinds;

namespace {
/// The calls of the tools and the folder in which tar ran. "FILE" replaces the name of the
/// temporary file, which is random.
QStringList callsOf(const FakeTools &tools)
{
    QStringList calls = tools.calls();
    calls.replaceInStrings(QRegularExpression("tst_packageinstaller\\.[A-Za-z]{6}\\]"), "FILE]");
    return calls;
}

/// Makes the stand-ins run the real tools. The one for tar also logs its folder.
void passOn(const FakeTools &tools)
{
    tools.setBody("rm", "exec /bin/rm \"$@\"");
    tools.setBody("sync", "exec /bin/sync \"$@\"");
    tools.setBody("tar",
                  "/usr/bin/printf 'in %s\\n' \"$PWD\" >>\"${0%/*}/calls.log\"\n"
                  "exec /bin/tar \"$@\"");
}
} // namespace

class TestPackageInstaller : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void installsApplication();
    void applicationByShortCode();
    void applicationTools();
    void installsFirmware();
    void firmwareTools();
    void firmwareVersions_data();
    void firmwareVersions();
    void installsBiosImageOnce();
    void biosTools();
    void refusalsChangeNothing_data();
    void refusalsChangeNothing();
    void biosRefusalsChangeNothing_data();
    void biosRefusalsChangeNothing();
    void unknownKindStaysInATemporaryFile_data();
    void unknownKindStaysInATemporaryFile();
    void firstImageIsInstalledToo();
    void missingImageIsAnError();
    void otherNamesAreNoImages();
    void fileNameOfAnyBytes_data();
    void fileNameOfAnyBytes();
    void temporaryFolderOfAnyName();
};

void TestPackageInstaller::initTestCase()
{
    requirePanel();
}

void TestPackageInstaller::init()
{
    resetInstalledFiles();
    QVERIFY(QDir::setCurrent("/"));
}

void TestPackageInstaller::cleanup()
{
    QCOMPARE(temporaryFiles(), QStringList());
}

void TestPackageInstaller::installsApplication()
{
    install(application, 12, "RV-K21T", smallArchive(), Installed);
    QCOMPARE(readFile("/home/dest/compile/new"), QByteArray("new\n"));
    QVERIFY(!fileExists("/home/dest/compile/old"));
    QCOMPARE(readFile("/home/dest/both"), QByteArray("new\n"));
    QCOMPARE(readFile("/home/dest/kept"), QByteArray("old\n"));
    QVERIFY(QFileInfo("/home/dest/bin/run").isExecutable());
    QCOMPARE(readPanelFile("fwver"), QByteArray("12\n"));
}

void TestPackageInstaller::applicationByShortCode()
{
    install(application, 12, "K21T", smallArchive(), Installed);
    QVERIFY(fileExists("/home/dest/compile/new"));
}

void TestPackageInstaller::applicationTools()
{
    const FakeTools tools({"rm", "tar", "sync"});
    passOn(tools);
    install(application, 12, "RV-K21T", smallArchive(), Installed);
    QCOMPARE(
        callsOf(tools),
        (QStringList{"rm [-rf] [/home/dest/compile]", "tar [-zxvf] [/tmp/FILE]", "in /home/dest"}));
}

void TestPackageInstaller::installsFirmware()
{
    install(firmware, 13, "TALMERO", smallArchive(), Installed);
    QCOMPARE(readFile("/home/compile/new"), QByteArray("new\n"));
    QCOMPARE(readFile("/home/dest/compile/old"), QByteArray("old\n")); // stays
    QVERIFY(!fileExists("/homde/dest"));
    QCOMPARE(readPanelFile("fwver"), QByteArray("13"));
}

void TestPackageInstaller::firmwareTools()
{
    const FakeTools tools({"rm", "tar", "sync"});
    passOn(tools);
    install(firmware, 13, "TALMERO", smallArchive(), Installed);
    QCOMPARE(
        callsOf(tools),
        (QStringList{"rm [-rf] [/homde/dest]", "tar [-zxvf] [/tmp/FILE]", "in /home", "sync"}));
}

void TestPackageInstaller::firmwareVersions_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("0") << 0U << QByteArray("0");
    QTest::newRow("older than installed") << 1U << QByteArray("1");
    QTest::newRow("same") << 12U << QByteArray("12");
    QTest::newRow("largest signed number") << 2147483647U << QByteArray("2147483647");
    QTest::newRow("largest unsigned number") << 4294967295U << QByteArray("-1");
}

void TestPackageInstaller::firmwareVersions()
{
    QFETCH(quint32, version);
    install(firmware, version, "TALMERO", smallArchive(), Installed);
    QTEST(readPanelFile("fwver"), "stored");
    install(application, version, "K21T", smallArchive(), Installed); // requires this version
}

void TestPackageInstaller::installsBiosImageOnce()
{
    writeFile(packagePath, packageBytes(biosImage, 4, "", biosArchive()));
    QCOMPARE(installBIOSPackage(packagePath), int(BiosInstalled));
    QCOMPARE(readPanelFile("program"), QByteArray("new\n"));
    QCOMPARE(readPanelFile("bios.version"), QByteArray("4\n"));
    const QStringList before = installedState();
    QCOMPARE(installBIOSPackage(packagePath), int(BiosNotNewer));
    QCOMPARE(installedState(), before);
}

void TestPackageInstaller::biosTools()
{
    const FakeTools tools({"rm", "tar", "sync"});
    passOn(tools);
    writeFile(packagePath, packageBytes(biosImage, 4, "", biosArchive()));
    QCOMPARE(installBIOSPackage(packagePath), int(BiosInstalled));
    QCOMPARE(callsOf(tools), (QStringList{"tar [-zxvf] [/tmp/FILE]", "in /opt/talmero/bios"}));
}

void TestPackageInstaller::refusalsChangeNothing_data()
{
    QTest::addColumn<PackageHeader>("header");
    QTest::addColumn<int>("result");
    QTest::newRow("newer version") << PackageHeader{application, 13, "RV-K21T"} << 2;
    QTest::newRow("older version") << PackageHeader{application, 11, "RV-K21T"} << 2;
    QTest::newRow("version 0") << PackageHeader{application, 0, "RV-K21T"} << 2;
    QTest::newRow("largest version") << PackageHeader{application, 4294967295U, "RV-K21T"} << 2;
    QTest::newRow("other model") << PackageHeader{application, 12, "RV-K25T"} << 3;
    QTest::newRow("model in lower case") << PackageHeader{application, 12, "rv-k21t"} << 3;
    QTest::newRow("other OEM") << PackageHeader{firmware, 13, "OTHER"} << 4;
    QTest::newRow("OEM in lower case") << PackageHeader{firmware, 13, "talmero"} << 4;
}

void TestPackageInstaller::refusalsChangeNothing()
{
    QFETCH(PackageHeader, header);
    QFETCH(int, result);
    writeFile(packagePath, formatPackageHeader(header) + smallArchive());
    const QStringList before = installedState();
    const FakeTools tools({"rm", "tar", "sync"});
    QCOMPARE(installPackage(packagePath), result);
    QCOMPARE(tools.calls(), QStringList());
    QCOMPARE(installedState(), before);
}

void TestPackageInstaller::biosRefusalsChangeNothing_data()
{
    QTest::addColumn<PackageHeader>("header");
    QTest::addColumn<int>("result");
    QTest::newRow("same version") << PackageHeader{biosImage, 3, ""} << -2;
    QTest::newRow("older version") << PackageHeader{biosImage, 2, ""} << -2;
    QTest::newRow("version 0") << PackageHeader{biosImage, 0, ""} << -2;
    QTest::newRow("application") << PackageHeader{application, 4, ""} << -1;
    QTest::newRow("firmware") << PackageHeader{firmware, 4, ""} << -1;
    QTest::newRow("unknown kind") << PackageHeader{PackageKind(2), 4, ""} << -1;
}

void TestPackageInstaller::biosRefusalsChangeNothing()
{
    QFETCH(PackageHeader, header);
    QFETCH(int, result);
    writeFile(packagePath, formatPackageHeader(header) + biosArchive());
    const QStringList before = installedState();
    QCOMPARE(installBIOSPackage(packagePath), result);
    QCOMPARE(installedState(), before);
}

void TestPackageInstaller::unknownKindStaysInATemporaryFile_data()
{
    QTest::addColumn<quint32>("kind");
    for (const quint32 kind : {2U, 3U, 4U, 5U, 0x01000000U, 4294967295U}) {
        QTest::addRow("kind %u", kind) << kind;
    }
}

void TestPackageInstaller::unknownKindStaysInATemporaryFile()
{
    QFETCH(quint32, kind);
    writeFile(packagePath, packageBytes(PackageKind(kind), 99, "any", largeArchive()));
    const QStringList before = installedState();
    QCOMPARE(installPackage(packagePath), int(Installed));
    const QStringList left = temporaryFiles();
    QCOMPARE(left.size(), 1);
    QVERIFY(readFile("/tmp/" + left.first().toUtf8()) == largeArchive());
    QVERIFY(QFile::remove("/tmp/" + left.first()));
    QCOMPARE(installedState(), before);
}

void TestPackageInstaller::firstImageIsInstalledToo()
{
    shellBytes("rm -rf /run/started; mkdir -p \"/run/started/'home/dest\"; cd /run/started;"
               "touch \"'home/dest/a.txt\" \"'home/dest/x.MO\" \"'home/dest/image.mo\"");
    QVERIFY(QDir::setCurrent("/run/started"));
    // The name is found in "'home/dest", but the file is opened in the current folder.
    writeFile("/run/started/image.mo", packageBytes(biosImage, 4, "", biosArchive()));
    install(firmware, 13, "TALMERO", smallArchive(), OpenFileError);
    QVERIFY(fileExists("/home/compile/new"));
    QCOMPARE(readPanelFile("bios.version"), QByteArray("4\n"));
    QCOMPARE(readPanelFile("fwver"), QByteArray("12\n")); // unchanged
}

void TestPackageInstaller::missingImageIsAnError()
{
    shellBytes("rm -rf /run/started; mkdir -p \"/run/started/'home/dest/folder.mo\"");
    QVERIFY(QDir::setCurrent("/run/started"));
    install(firmware, 13, "TALMERO", smallArchive(), OpenFileError);
    QCOMPARE(readPanelFile("bios.version"), QByteArray("3\n"));
    QCOMPARE(readPanelFile("fwver"), QByteArray("12\n"));
}

void TestPackageInstaller::otherNamesAreNoImages()
{
    shellBytes("rm -rf /run/started; mkdir -p \"/run/started/'home/dest\" /run/started/home/dest;"
               "cd /run/started; touch \"'home/dest/x.MO\" \"'home/dest/mo\" home/dest/y.mo");
    QVERIFY(QDir::setCurrent("/run/started"));
    install(firmware, 13, "TALMERO", smallArchive(), Installed);
    QCOMPARE(readPanelFile("fwver"), QByteArray("13"));
}

void TestPackageInstaller::fileNameOfAnyBytes_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("blanks") << QByteArray("line 1 new.kpc");
    QTest::newRow("quotes") << QByteArray("\"line\" '1'.kpc");
    QTest::newRow("line feed") << QByteArray("line\n1.kpc");
    QTest::newRow("UTF-8") << QByteArray("\xC3\xBC.kpc");
    QTest::newRow("invalid UTF-8") << QByteArray("\xFC\xFF.kpc");
    QTest::newRow("shell syntax") << QByteArray("$(reboot);`x`.kpc");
    QTest::newRow("looks like an option") << QByteArray("-rf.kpc");
}

void TestPackageInstaller::fileNameOfAnyBytes()
{
    QFETCH(QByteArray, name);
    const QByteArray path = "/media/usb0/" + name;
    writeFile(path, packageBytes(application, 12, "K21T", smallArchive()));
    QCOMPARE(installPackage(textFromBytes(path)), int(Installed));
    QVERIFY(fileExists("/home/dest/compile/new"));
}

void TestPackageInstaller::temporaryFolderOfAnyName()
{
    shellBytes("mkdir -p '/run/a \"b'");
    const TemporaryFolder folder("/run/a \"b");
    install(application, 12, "K21T", smallArchive(), Installed);
    QVERIFY(fileExists("/home/dest/compile/new"));
    QCOMPARE(QDir("/run/a \"b").entryList(QDir::Files | QDir::Hidden), QStringList());
}

QTEST_GUILESS_MAIN(TestPackageInstaller)
#include "tst_packageinstaller.moc"
