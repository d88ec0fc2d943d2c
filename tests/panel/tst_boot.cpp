#include "diskfiles.h"
#include "faketools.h"
#include "manualpage.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"
#include "toolrun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <memory>

namespace {
constexpr int second = 1000;   // ms
constexpr int quietTime = 300; // ms, for what must not happen
constexpr char pauseEnd[] = "/run/pause-is-over";

constexpr int countDownEnd = 8000; // ms from the start of the program, at the latest

constexpr QPoint runApplicationButton(400, 220);
constexpr QPoint runtimeCloseButton(400, 510);
const QColor runtimeColor(0xee, 0xf2, 0xf5);

bool showsRuntime()
{
    return screenColor({2, 2}) == runtimeColor;
}

QImage titleBar()
{
    return screenImage().copy(0, 0, 800, 32);
}
} // namespace

class TestBoot : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void versionNeedsNoDisplay_data();
    void versionNeedsNoDisplay();
    void otherArgumentsStartNormally();
    void pausesBeforeTheWindow();
    void countsDownAndRunsTheRuntime();
    void missingRuntimeLeadsToMainPage_data();
    void missingRuntimeLeadsToMainPage();
    void runtimeInheritsTheEnvironment();
    void startsNoMessageBus();
    void tapOpensSettings();
    void markerOpensFactoryWindow();
    void documentedExamples();
};

void TestBoot::initTestCase()
{
    requirePanel();
}

void TestBoot::init()
{
    QFile::remove("/media/usb0/talmero_setup");
    QTRY_VERIFY(!showsMainPage());
}

void TestBoot::versionNeedsNoDisplay_data()
{
    QTest::addColumn<QString>("argument");
    QTest::newRow("lower case") << "-v";
    QTest::newRow("upper case with blanks") << "  -V ";
}

void TestBoot::versionNeedsNoDisplay()
{
    QFETCH(QString, argument);
    const FakeTools tools({"sleep", "xrandr"});
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY"); // QApplication would end the program now
    PanelProgram program({argument});
    QCOMPARE(program.waitForEnd(), 0);
    qputenv("DISPLAY", display);
    QCOMPARE(program.errorText(), QString("Version:  Aug 31 2015 16:26:17\n"));
    QCOMPARE(tools.calls(), QStringList());
}

void TestBoot::otherArgumentsStartNormally()
{
    const FakeTools tools({"sleep"});
    for (const QStringList &arguments : {QStringList{"-v", "extra"}, QStringList{"--version"}}) {
        PanelProgram program(arguments);
        QTRY_VERIFY_WITH_TIMEOUT(shownCount() >= 0, startLimit);
        QVERIFY(program.isRunning());
    }
}

void TestBoot::pausesBeforeTheWindow()
{
    const FakeTools tools({"sleep", "xrandr"});
    tools.setBody("sleep", QString("until [ -e %1 ]; do /bin/sleep 0.02; done").arg(pauseEnd));
    PanelProgram program;
    QTRY_COMPARE_WITH_TIMEOUT(tools.calls(), QStringList{"sleep [1]"}, startLimit);
    QTest::qWait(quietTime); // no window and no other tool before the pause is over
    QCOMPARE(shownCount(), -1);
    QCOMPARE(tools.calls(), QStringList{"sleep [1]"});
    writeFile(pauseEnd);
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), 5, startLimit);
    QCOMPARE(tools.calls().mid(0, 2), (QStringList{"sleep [1]", "xrandr [-q]"}));
}

void TestBoot::countsDownAndRunsTheRuntime()
{
    PanelProgram program;
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), 5, startLimit);
    QElapsedTimer timer;
    timer.start();
    for (int count = 4; count >= 0; --count) {
        QTRY_COMPARE_WITH_TIMEOUT(shownCount(), count, 2 * second);
    }
    QTRY_VERIFY_WITH_TIMEOUT(showsRuntime(), startLimit);
    QVERIFY2(timer.elapsed() > 5500, qPrintable(QString::number(timer.elapsed())));
    QTest::qWait(quietTime); // the runtime must stay on top
    QVERIFY(showsRuntime());

    tapScreen(runtimeCloseButton);
    QTRY_VERIFY(showsMainPage());
    tapScreen(runApplicationButton);
    QTRY_VERIFY_WITH_TIMEOUT(showsRuntime(), startLimit);
    tapScreen(runtimeCloseButton);
    QTRY_VERIFY(showsMainPage());
    QVERIFY(program.isRunning());
}

void TestBoot::missingRuntimeLeadsToMainPage_data()
{
    QTest::addColumn<bool>("missing");
    QTest::newRow("no script") << true;
    QTest::newRow("failing script") << false;
}

void TestBoot::missingRuntimeLeadsToMainPage()
{
    QFETCH(bool, missing);
    const QByteArray script = readPanelFile("runapp.sh");
    QVERIFY(!script.isEmpty());
    if (missing) {
        removePanelFile("runapp.sh");
    } else {
        writePanelFile("runapp.sh", "echo ran >/opt/talmero/bios/ran\nexit 1\n");
    }
    const FakeTools tools({"sleep"});
    PanelProgram program;
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), 5, startLimit);
    QTRY_VERIFY_WITH_TIMEOUT(showsMainPage(), 10 * second);
    QCOMPARE(readPanelFile("ran"), missing ? QByteArray() : QByteArray("ran\n"));
    QVERIFY(program.isRunning());
    writePanelFile("runapp.sh", script);
}

void TestBoot::runtimeInheritsTheEnvironment()
{
    const QByteArrayList variables{"QT_IM_MODULE", "QT_SCALE_FACTOR", "QT_NO_GLIB",
                                   "DBUS_SESSION_BUS_ADDRESS", "QT_ENABLE_HIGHDPI_SCALING"};
    const QByteArrayList given{"keyboard-of-the-hmi", "1", QByteArray(), "unix:path=/nowhere", "1"};
    QByteArrayList before;
    for (int at = 0; at < variables.size(); ++at) {
        before += qgetenv(variables.at(at));
        given.at(at).isNull() ? qunsetenv(variables.at(at))
                              : qputenv(variables.at(at), given.at(at));
    }
    const QByteArray script = readPanelFile("runapp.sh");
    writePanelFile("runapp.sh",
                   "for name in " + variables.join(' ')
                       + "; do eval echo \"\\$$name\"; done >/opt/talmero/bios/environment\n");
    {
        const FakeTools tools({"sleep"});
        PanelProgram program;
        openMainPage();
        tapScreen(runApplicationButton);
        QTRY_COMPARE(readPanelFile("environment"), given.join('\n') + '\n');
    }
    for (int at = 0; at < variables.size(); ++at) {
        before.at(at).isNull() ? qunsetenv(variables.at(at))
                               : qputenv(variables.at(at), before.at(at));
    }
    writePanelFile("runapp.sh", script);
}

/// Nothing would stop the bus, so each start would leave another one running.
void TestBoot::startsNoMessageBus()
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    const FakeTools tools({"sleep", "dbus-launch"});
    PanelProgram program;
    openMainPage();
    QVERIFY(tools.calls().contains("sleep [1]"));
    QVERIFY(!tools.calls().join('\n').contains("dbus-launch"));
    if (!address.isNull()) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    }
}

void TestBoot::tapOpensSettings()
{
    const FakeTools tools({"sleep", "xCal"});
    QElapsedTimer timer;
    timer.start();
    PanelProgram program;
    openMainPage();
    QList<QImage> titles{titleBar()};
    for (const PageButton &button : pageButtons) {
        for (const QPoint leave : {cancelButton, okButton}) {
            tapScreen(button.place);
            QTRY_VERIFY2(showsSettingsPage(), button.name);
            if (leave == cancelButton) {
                QVERIFY2(!titles.contains(titleBar()), button.name);
                titles += titleBar();
            } else {
                QCOMPARE(titleBar(), titles.last());
            }
            tapScreen(leave);
            QTRY_VERIFY2(showsMainPage(), button.name);
        }
    }
    // The runtime must not start, not even when the countdown would have ended.
    QTest::qWait(qMax(quietTime, countDownEnd - int(timer.elapsed())));
    QVERIFY(showsMainPage());
    QVERIFY(program.isRunning());
}

void TestBoot::markerOpensFactoryWindow()
{
    QFile marker("/media/usb0/talmero_setup");
    QVERIFY(marker.open(QIODevice::WriteOnly));
    marker.close();
    const FakeTools tools({"sleep", "xrandr"});
    PanelProgram program;
    QTRY_VERIFY_WITH_TIMEOUT(windowInfo({"-root", "-tree"}).contains("talmero-bios"), startLimit);
    QTest::qWait(quietTime); // no countdown may follow
    QCOMPARE(shownCount(), -1);
    QVERIFY(!tools.calls().contains("xrandr [-q]"));
    QVERIFY(program.isRunning());
}

/// Runs the examples of the man page.
void TestBoot::documentedExamples()
{
    const QByteArray script = readPanelFile("runapp.sh");
    writePanelFile("runapp.sh", "cd /opt\nxset q\nexit 3\n");
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    QList<ToolRun> runs;
    for (const QByteArray &example : examplesOfManualPage("src/talmero-bios.1")) {
        runs += runTool("/bin/sh", {"-c", withProgram(PANEL_PROGRAM, example)});
    }
    qputenv("DISPLAY", display);
    writePanelFile("runapp.sh", script);
    QCOMPARE(runs.size(), 2);
    QCOMPARE(runs.first().errors, QByteArray("Version:  Aug 31 2015 16:26:17\n"));
    QCOMPARE(runs.first().status, 0);
    QCOMPARE(runs.last().errors, QByteArray("+ cd /opt\n+ xset q\n+ exit 3\n"));
    QVERIFY(runs.last().output.contains("Screen Saver"));
    QCOMPARE(runs.last().status, 3);
}

QTEST_MAIN(TestBoot)
#include "tst_boot.moc"
