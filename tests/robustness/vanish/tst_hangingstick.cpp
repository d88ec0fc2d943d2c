#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"
#include "vanishingstick.h"

#include <QDir>
#include <QTest>

// Touches the real program while it reads a stick that hangs.

namespace {
constexpr char source[] = "/run/stick";
constexpr char mountPoint[] = "/media/usb0";
constexpr int hangTime = 60000; // ms: longer than the test takes
constexpr int quietTime = 700;  // ms in which the page must not close
constexpr int partSize = 100000;
} // namespace

class TestHangingStick : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void pageStaysUntilTheStickIsPulled();
};

void TestHangingStick::initTestCase()
{
    requirePanel();
    resetInstalledFiles();
    writePanelFile("bios.ini", "bios.filetransfer.folder=/media/usb0\n");
    writeFile(QByteArray(source) + "/new.kpc",
              packageBytes(PackageKind::Application, 12, "RV-K21T", largeArchive()));
}

/// The program ignores touches meanwhile and shows no message.
void TestHangingStick::pageStaysUntilTheStickIsPulled()
{
    const FakeTools tools({"sleep"});
    VanishingStick stick(source, mountPoint, VanishingStick::End::Hangs, {.bytes = partSize},
                         hangTime);
    const auto program = startAtPage(transferButton);
    choose(transferRow(0));
    tapScreen(okButton);
    QVERIFY(!QTest::qWaitFor(showsMainPage, quietTime));
    tapScreen(cancelButton);
    QVERIFY(!QTest::qWaitFor(showsMainPage, quietTime));
    QVERIFY(showsSettingsPage());
    QVERIFY(fileExists("/home/dest/compile"));
    stick.pull();
    QTRY_VERIFY(showsMainPage());
    QVERIFY(program->isRunning());
    QCOMPARE(readFile("/home/dest/a"), QByteArray("first\n"));
    QVERIFY(!fileExists("/home/dest/c"));
    QCOMPARE(QDir("/tmp").entryList({"talmero-bios.*"}, QDir::Files), QStringList());
}

QTEST_MAIN(TestHangingStick)
#include "tst_hangingstick.moc"
