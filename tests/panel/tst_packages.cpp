#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"

#include <QDir>
#include <QImage>
#include <QTest>

#include <memory>

using namespace Kinds;

namespace {
// On a screen of 800x600.
constexpr QPoint fontsButton = pageButtons[0].place;
constexpr QPoint statusButton = pageButtons[3].place;
constexpr QPoint updateButton(700, 517);
constexpr QRect firmwareRow(400, 200, 300, 40);
constexpr QRect listArea(40, 125, 680, 420);
constexpr char pickerTitle[] = "Select BIOS Image";
constexpr int rowHeight = 45;
constexpr int firstFontRow = 91;
constexpr char fontFolder[] = "/usr/share/fonts/truetype/freefont";

QPoint fontRow(int row)
{
    return {600, firstFontRow + row * rowHeight};
}

int chosenRows()
{
    int count = 0;
    for (int row = 0; row < 8; ++row) {
        count += isChosen(transferRow(row)) ? 1 : 0;
    }
    return count;
}

void pullFinger(QPoint from, QPoint to)
{
    constexpr int steps = 12;
    putFingerDown(from);
    for (int step = 1; step <= steps; ++step) {
        moveFinger(from + (to - from) * step / steps);
    }
    liftFinger();
}

/// Opens the picker, taps @p row and then the left button. If @p row is -1, taps the right button.
void pickImage(int row)
{
    tapScreen(updateButton);
    QTRY_VERIFY(showsDialog(pickerTitle));
    const QRect picker = dialogPlace(pickerTitle);
    if (row >= 0) {
        tapScreen(picker.topLeft() + QPoint(150, 35 + row * 50));
    }
    const int across = row >= 0 ? picker.width() / 4 : picker.width() * 3 / 4;
    tapScreen({picker.left() + across, picker.bottom() - 35});
    QTRY_VERIFY(!showsDialog(pickerTitle));
}
} // namespace

class TestPackages : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void technicianInstallsAnApplication();
    void otherVersionIsRefused();
    void firmwareRaisesTheShownVersion();
    void updatesTheBiosOnce();
    void cancelledPickerInstallsNothing();
    void installsThreeFonts();
    void listScrollsByFinger();
    void pulledStickLeavesAnEmptyList();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestPackages::initTestCase()
{
    requirePanel();
}

void TestPackages::init()
{
    m_tools = std::make_unique<FakeTools>(QStringList{"sleep"});
    resetInstalledFiles();
    writePanelFile("bios.ini", "bios.filetransfer.folder=/media/usb0\n");
    QVERIFY(QDir("/media/usb0").mkdir("apps"));
}

void TestPackages::cleanup()
{
    m_tools.reset();
}

void TestPackages::technicianInstallsAnApplication()
{
    writeFile("/media/usb0/old.kpc", packageBytes(application, 11, "RV-K21T", largeArchive()));
    writeFile("/media/usb0/apps/new.kpc", packageBytes(application, 12, "RV-K21T", smallArchive()));
    const auto program = startAtPage(transferButton);
    choose(transferRow(1)); // files in folders come after those of the stick itself
    returnToMainPage(okButton);
    QCOMPARE(readFile("/home/dest/compile/new"), QByteArray("new\n"));
    QVERIFY(!fileExists("/home/dest/compile/old"));
    QCOMPARE(readFile("/home/dest/kept"), QByteArray("old\n"));
    QVERIFY(!fileExists("/home/dest/a"));
}

void TestPackages::otherVersionIsRefused()
{
    writeFile("/media/usb0/other.kpc", packageBytes(application, 13, "RV-K21T", smallArchive()));
    const QStringList before = installedState();
    const auto program = startAtPage(transferButton);
    choose(transferRow(0));
    tapScreen(okButton);
    acceptWarning("File Transfer");
    QCOMPARE(installedState(), before);
}

void TestPackages::firmwareRaisesTheShownVersion()
{
    const auto shown = [] { return screenImage().copy(firmwareRow); };
    writePanelFile("fwver", "250\n");
    auto program = startAtPage(statusButton);
    const QImage expected = shown();
    program.reset();
    writePanelFile("fwver", "12\n");
    program = startAtPage(statusButton);
    QVERIFY(shown() != expected);
    returnToMainPage(cancelButton);

    writeFile("/media/usb0/new.fmw", packageBytes(firmware, 250, "TALMERO", smallArchive()));
    writeFile("/media/usb0/app.kpc", packageBytes(application, 250, "RV-K21T", largeArchive()));
    tapScreen(transferButton);
    QTRY_VERIFY(showsSettingsPage());
    tapScreen(firmwareChoice);
    choose(transferRow(0));
    returnToMainPage(okButton);
    QCOMPARE(readPanelFile("fwver"), QByteArray("250"));
    QVERIFY(fileExists("/home/compile/new"));
    tapScreen(statusButton);
    QTRY_VERIFY(showsSettingsPage());
    QCOMPARE(shown(), expected);
}

void TestPackages::updatesTheBiosOnce()
{
    writeFile("/media/usb0/older.mo", packageBytes(biosImage, 2, "", largeArchive()));
    writeFile("/media/usb0/apps/NEW.MO", packageBytes(biosImage, 4, "", biosArchive()));
    const auto program = startAtPage(statusButton);
    pickImage(1);
    QTRY_COMPARE(readPanelFile("bios.version"), QByteArray("4\n"));
    QCOMPARE(readPanelFile("program"), QByteArray("new\n"));
    QVERIFY(showsSettingsPage());

    const QStringList before = installedState();
    pickImage(1);
    pickImage(0);
    returnToMainPage(okButton);
    QCOMPARE(installedState(), before);
}

void TestPackages::cancelledPickerInstallsNothing()
{
    writeFile("/media/usb0/new.mo", packageBytes(biosImage, 4, "", biosArchive()));
    const QStringList before = installedState();
    const auto program = startAtPage(statusButton);
    pickImage(-1);
    returnToMainPage(okButton);
    QCOMPARE(installedState(), before);
}

void TestPackages::installsThreeFonts()
{
    shellBytes(QString("rm -rf %1; mkdir -p %1; cd /media/usb0; mkdir -p a/b;"
                       "echo 1 >One.TTF; echo 2 >apps/two.ttc; echo 3 >a/b/three.ttf;"
                       "echo x >none.otf")
                   .arg(fontFolder));
    const auto program = startAtPage(fontsButton);
    choose(fontRow(0));
    choose(fontRow(1));
    tapScreen(fontRow(1));
    QTRY_VERIFY(!isChosen(fontRow(1))); // a second tap deselects it
    choose(fontRow(1));
    choose(fontRow(2));
    QVERIFY(isChosen(fontRow(0)));
    returnToMainPage(okButton);
    QCOMPARE(shellBytes(QString("cd %1; grep . *").arg(fontFolder)),
             QByteArray("One.TTF:1\nthree.ttf:3\ntwo.ttc:2\n"));
}

void TestPackages::listScrollsByFinger()
{
    for (int number = 0; number < 40; ++number) {
        writeFile("/media/usb0/line " + QByteArray::number(number) + ".kpc", "x");
    }
    const QStringList before = installedState();
    const auto program = startAtPage(transferButton);
    const QImage top = screenImage().copy(listArea);
    pullFinger({400, 500}, {400, 200});
    QTRY_VERIFY(screenImage().copy(listArea) != top);
    QCOMPARE(chosenRows(), 0);
    returnToMainPage(okButton); // installs nothing
    QCOMPARE(installedState(), before);
}

void TestPackages::pulledStickLeavesAnEmptyList()
{
    writeFile("/media/usb0/app.kpc", packageBytes(application, 12, "RV-K21T", smallArchive()));
    const auto program = startAtPage(transferButton);
    choose(transferRow(0));
    shellBytes("mkdir -p /run/pulled; mount --move /media/usb0 /run/pulled");
    tapScreen(okButton);
    acceptWarning("File Transter"); // misspelt; the title must stay
    QVERIFY(fileExists("/home/dest/compile/old"));
    tapScreen(transferButton);
    QTRY_VERIFY(showsSettingsPage());
    shellBytes("mount --move /run/pulled /media/usb0");
    tapScreen(transferRow(0));
    QVERIFY(!isChosen(transferRow(0))); // the page listed the files without the stick
    returnToMainPage(cancelButton);
}

QTEST_MAIN(TestPackages)
#include "tst_packages.moc"
