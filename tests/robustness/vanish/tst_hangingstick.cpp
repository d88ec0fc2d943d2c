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

// The real program, touched while it reads a stick that gives no answer.

namespace {
constexpr char source[] = "/run/stick";
constexpr char mountPoint[] = "/media/usb0";
constexpr int hangTime = 60000; // ms: longer than the test looks
constexpr int endless = 1000;   // ms after which a wait counts as one without limit
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

/// No touch counts meanwhile, and nothing says why.
void TestHangingStick::pageStaysUntilTheStickIsPulled()
{
    const FakeTools tools({"sleep"});
    VanishingStick stick(source, mountPoint, VanishingStick::End::Hangs, {.bytes = partSize},
                         hangTime);
    const auto program = startAtPage(transferButton);
    choose(transferRow(0));
    tapScreen(okButton);
    QVERIFY(!QTest::qWaitFor(showsMainPage, endless));
    tapScreen(cancelButton);
    QVERIFY(!QTest::qWaitFor(showsMainPage, endless));
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
