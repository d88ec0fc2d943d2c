#include "dialogdriver.h"
#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "packages/packagecheck.h"
#include "packages/packageinstaller.h"
#include "panelguard.h"
#include "panelmain.h"
#include "settingspage.h"
#include "vanishingstick.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QStackedWidget>

#include <memory>

// Takes sticks away while the program reads them: pulled, unmounted or hanging. STICK_STEP sets the
// distance in bytes between two places where a package is cut, STICK_HANG the ms that a stick
// hangs.

using End = VanishingStick::End;

namespace {
constexpr char source[] = "/run/stick";
constexpr char mountPoint[] = "/media/usb0";
constexpr char package[] = "/media/usb0/new.kpc";
constexpr char fontFolder[] = "/usr/share/fonts/truetype/freefont";
constexpr int noiseSize = 1000000;
constexpr int installLimit = 5000; // ms for a package of 1 MB
constexpr int hangSlack = 500;     // ms

int fromEnvironment(const char *name, int usual)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
}

/// Incompressible bytes.
const QByteArray &noise()
{
    static const QByteArray bytes = [] {
        QByteArray made(noiseSize, '\0');
        QRandomGenerator random(1);
        random.generate(reinterpret_cast<quint32 *>(made.begin()),
                        reinterpret_cast<quint32 *>(made.end()));
        return made;
    }();
    return bytes;
}

/// An application package of 1 MB for this panel.
const QByteArray &largePackage()
{
    static const QByteArray bytes
        = packageBytes(PackageKind::Application, 12, "RV-K21T", PackageMembers{{"a", noise()}});
    return bytes;
}

/// The file transfer page or the font page.
class Page : public SettingsPage
{
public:
    explicit Page(const QString &button = "File Transfer:4", const QByteArray &settings = {})
        : SettingsPage(button, settings)
    {
    }

    void choose(const QString &name) const { tapRow(table(), rowOf(table(), name)); }

    /// Whether the main page is shown.
    bool isLeft() const
    {
        return window()->findChild<QStackedWidget *>()->currentIndex()
            == BiosInterface::MainSettingsPage;
    }
};

QStringList installedFonts()
{
    return QDir(fontFolder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}
} // namespace

class TestVanishingStick : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void packageIsCutAnywhere_data();
    void packageIsCutAnywhere();
    void openPackageOutlivesItsMount();
    void messageAfterAPackage_data();
    void messageAfterAPackage();
    void fontIsCompleteOrMissing_data();
    void fontIsCompleteOrMissing();
    void listingEndsWhereTheStickDoes_data();
    void listingEndsWhereTheStickDoes();
    void deadMountDoesNotHideOtherSticks();
    void hangingReadIsWaitedFor();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestVanishingStick::initTestCase()
{
    requirePanel();
    QVERIFY(largePackage().size() > noiseSize);
}

void TestVanishingStick::init()
{
    resetInstalledFiles();
    emptyFolder(fontFolder);
    emptyFolder(source);
    writeFile(QByteArray(source) + "/new.kpc", largePackage());
    m_tools
        = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "ifconfig", "du"});
}

void TestVanishingStick::cleanup()
{
    m_tools.reset();
    QCOMPARE(temporaryFiles(), QStringList());
}

void TestVanishingStick::packageIsCutAnywhere_data()
{
    QTest::addColumn<End>("end");
    QTest::newRow("pulled") << End::Pulled;
    QTest::newRow("torn off") << End::TornOff;
}

void TestVanishingStick::packageIsCutAnywhere()
{
    QFETCH(End, end);
    QList<qint64> places{1, packageHeaderSize - 1, packageHeaderSize, largePackage().size()};
    const int step = fromEnvironment("STICK_STEP", 65536);
    for (qint64 place = 0; place < largePackage().size(); place += step) {
        places += place;
    }
    for (const qint64 place : std::as_const(places)) {
        resetInstalledFiles();
        int result = -1;
        {
            const VanishingStick stick(source, mountPoint, end, {.bytes = place});
            QElapsedTimer timer;
            timer.start();
            result = installPackage(package);
            QVERIFY(timer.elapsed() < installLimit);
            QVERIFY(
                !fileExists(package)); // gone even after the last byte: the program reads once more
        }
        const bool hasHeader = place >= packageHeaderSize;
        QCOMPARE(result, int(hasHeader ? Installed : OpenFileError));
        QCOMPARE(temporaryFiles(), QStringList());
        QCOMPARE(fileExists("/home/dest/compile"), !hasHeader);
        QCOMPARE(readFile("/home/dest/kept"), QByteArray("old\n"));
        const QByteArray unpacked = readFile("/home/dest/a");
        QVERIFY(unpacked == "none" || noise().startsWith(unpacked));
        QCOMPARE(unpacked == noise(), place == largePackage().size());
    }
}

void TestVanishingStick::openPackageOutlivesItsMount()
{
    for (const qint64 place : {qint64(0), packageHeaderSize, qint64(noiseSize / 2)}) {
        resetInstalledFiles();
        {
            const VanishingStick stick(source, mountPoint, End::Unmounted, {.bytes = place});
            QCOMPARE(installPackage(package), int(Installed));
            QCOMPARE(installPackage(package), int(OpenFileError));
        }
        QCOMPARE(readFile("/home/dest/a"), noise());
    }
}

void TestVanishingStick::messageAfterAPackage_data()
{
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("place");
    QTest::addColumn<QString>("box");
    const QString openError = "File Transter: Open File Error"; // misspelt; must stay
    QTest::newRow("pulled in the header") << End::Pulled << 10 << openError;
    QTest::newRow("pulled after the header") << End::Pulled << 70000 << QString();
    QTest::newRow("torn off in the header") << End::TornOff << 10 << openError;
    QTest::newRow("torn off after the header") << End::TornOff << 70000 << QString();
    QTest::newRow("unmounted") << End::Unmounted << 10 << QString();
}

void TestVanishingStick::messageAfterAPackage()
{
    QFETCH(End, end);
    QFETCH(int, place);
    QFETCH(QString, box);
    const VanishingStick stick(source, mountPoint, end, {.bytes = place});
    QString shown;
    const DialogDriver user([&shown](QDialog &dialog) {
        shown = dialog.windowTitle() + ": " + dialog.property("text").toString();
        clickButton(dialog, "OK");
    });
    const Page page;
    page.choose("usb0/new.kpc");
    page.leave("ok");
    QCOMPARE(shown, box);
    QVERIFY(page.isLeft());
    page.open();
    QCOMPARE(rowTexts(page.table()), QStringList());
}

void TestVanishingStick::fontIsCompleteOrMissing_data()
{
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("place");
    QTest::addColumn<bool>("isThere");
    for (const int place : {0, 1, 4096, 16384, 500000, noiseSize - 1, noiseSize}) {
        QTest::addRow("pulled at %d", place) << End::Pulled << place << false;
        QTest::addRow("torn off at %d", place) << End::TornOff << place << false;
        QTest::addRow("unmounted at %d", place) << End::Unmounted << place << true;
    }
}

/// Even a stick that vanishes after the last byte loses the font: the copy reads once more.
void TestVanishingStick::fontIsCompleteOrMissing()
{
    QFETCH(End, end);
    QFETCH(int, place);
    QFETCH(bool, isThere);
    const QByteArray other = "/media/other/b.ttf";
    writeFile(other, "font");
    writeFile(QByteArray(source) + "/a.ttf", noise());
    {
        const VanishingStick stick(source, mountPoint, end, {.bytes = place});
        const Page page("Install Fonts:11");
        page.choose("usb0/a.ttf");
        page.choose("other/b.ttf");
        page.leave("ok");
        QVERIFY(page.isLeft());
    }
    shellBytes("rm -r /media/other");
    QCOMPARE(installedFonts(), isThere ? QStringList({"a.ttf", "b.ttf"}) : QStringList("b.ttf"));
    QCOMPARE(readFile(QByteArray(fontFolder) + "/a.ttf"), isThere ? noise() : QByteArray("none"));
}

void TestVanishingStick::listingEndsWhereTheStickDoes_data()
{
    QTest::addColumn<End>("end");
    QTest::newRow("pulled") << End::Pulled;
    QTest::newRow("torn off") << End::TornOff;
    QTest::newRow("unmounted") << End::Unmounted;
}

void TestVanishingStick::listingEndsWhereTheStickDoes()
{
    QFETCH(End, end);
    writeFile(QByteArray(source) + "/one/new.kpc");
    writeFile(QByteArray(source) + "/two/new.kpc");
    for (int folders = 0; folders < 3; ++folders) {
        const VanishingStick stick(source, mountPoint, end, {.folders = folders});
        const Page page;
        // After "umount -l", a folder that is already open can be listed to its end.
        QCOMPARE(page.table()->rowCount(), end == End::Unmounted ? folders + 1 : folders);
    }
}

void TestVanishingStick::deadMountDoesNotHideOtherSticks()
{
    writeFile("/media/other/b.ttf", "font");
    {
        VanishingStick stick(source, mountPoint, End::Pulled, {});
        stick.pull();
        const Page page("Install Fonts:11");
        QCOMPARE(rowTexts(page.table()), QStringList{"other/b.ttf"});
        const Page configured("File Transfer:4", "bios.filetransfer.folder=/media/usb0\n");
        QCOMPARE(rowTexts(configured.table()), QStringList());
    }
    shellBytes("rm -r /media/other");
}

/// The program cannot interrupt a read that hangs.
void TestVanishingStick::hangingReadIsWaitedFor()
{
    const int hangTime = fromEnvironment("STICK_HANG", 700);
    {
        const VanishingStick stick(source, mountPoint, End::Hangs, {.bytes = 70000}, hangTime);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(installPackage(package), int(Installed));
        QVERIFY(timer.elapsed() >= hangTime);
        QVERIFY(timer.elapsed() < hangTime + hangSlack);
    }
    QVERIFY(noise().startsWith(readFile("/home/dest/a")));
}

PANEL_QTEST_MAIN(TestVanishingStick)
#include "tst_vanishingstick.moc"
