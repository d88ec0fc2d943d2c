#include "diskfiles.h"
#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>

#include <memory>

namespace {
constexpr int holdTime = 2000;    // ms until rescue mode starts
constexpr int shortHold = 1500;   // ms
constexpr int rescueLimit = 8000; // ms until it starts on a slow machine
constexpr int quietTime = 300;    // ms beyond the hold, for a rescue that must not come
constexpr QPoint title(400, 16);  // does not react to touches
constexpr QColor calibratorColor(190, 190, 190);
constexpr char calibratorEnd[] = "/run/panel/calibrator-may-end";
constexpr char plugFile[] = "/run/panel/touch-is-plugged-in";
constexpr char rescued[] = "bios.brightness=\x01\n";

void openEthernetPage()
{
    openMainPage();
    tapScreen(pageButtons[1].place);
    QTRY_VERIFY(showsSettingsPage());
}

void openKeypad()
{
    openEthernetPage();
    tapScreen({600, 214}); // manual mode
    tapScreen({400, 258}); // the address field
    QTRY_VERIFY(windowInfo({"-root", "-tree"}).contains("\"Input Panel\""));
    QTRY_VERIFY(windowInfo({"-name", "Input Panel"}).contains("IsViewable"));
}

QStringList brightnessCall(const QString &value)
{
    const QString output = QGuiApplication::primaryScreen()->name();
    return {"xrandr [--output] [" + output + "] [--brightness] [" + value + ']'};
}

using OpenPage = void (*)();
} // namespace

class TestRescue : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void longHoldRestoresBrightness_data();
    void longHoldRestoresBrightness();
    void liftingRestartsTheHold();
    void rescueComesOncePerRun();
    void calibratorIsVisible();
    void devicePluggedInLaterIsFound();

private:
    int calls(const QString &call) const;
    QStringList callsOfRescue() const;
    void waitForPoll() const;
    int holdUntilRescue() const;
    bool rescueComes(int count) const;

    std::unique_ptr<FakeTools> m_tools;
};

void TestRescue::initTestCase()
{
    requirePanel();
}

void TestRescue::init()
{
    writePanelFile("bios.ini", "bios.brightness=0\n");
    toolOutput({"/usr/bin/xrandr", "--output", QGuiApplication::primaryScreen()->name(),
                "--brightness", "0.77"});
    m_tools = std::make_unique<FakeTools>(QStringList{"sleep", "xrandr", "xinput", "xCal"});
    m_tools->setBody("xrandr", "exec /usr/bin/xrandr \"$@\"");
    m_tools->setBody("xinput", "exec /usr/bin/xinput \"$@\"");
}

void TestRescue::cleanup()
{
    liftFinger();
    m_tools.reset();
    QFile::remove(plugFile);
}

/// How many recorded calls contain @p call.
int TestRescue::calls(const QString &call) const
{
    return int(m_tools->calls().filter(call).size());
}

/// The calls that set the brightness or calibrate, in order.
QStringList TestRescue::callsOfRescue() const
{
    QStringList all = m_tools->calls();
    all.removeIf([](const QString &call) {
        return call != QLatin1String("xCal") && !call.contains("brightness");
    });
    return all;
}

/// Waits until the program has read the device once.
void TestRescue::waitForPoll() const
{
    const int before = calls("xinput");
    QTRY_VERIFY(calls("xinput") >= before + 2);
}

/// Waits until the calibration tool has run @p count times. Result: false if it has not.
bool TestRescue::rescueComes(int count) const
{
    return QTest::qWaitFor([this, count] { return calls("xCal") == count; }, rescueLimit);
}

/// Puts the finger down. Result: ms until the calibration tool ran again; -1 if it did not.
int TestRescue::holdUntilRescue() const
{
    const int before = calls("xCal");
    QElapsedTimer timer;
    timer.start(); // before the call, which returns after the touch
    putFingerDown(title);
    return rescueComes(before + 1) ? int(timer.elapsed()) : -1;
}

void TestRescue::longHoldRestoresBrightness_data()
{
    QTest::addColumn<OpenPage>("openPage");
    QTest::newRow("countdown") << OpenPage([] {});
    QTest::newRow("main page") << OpenPage(openMainPage);
    QTest::newRow("settings page") << OpenPage(openEthernetPage);
    QTest::newRow("keypad") << OpenPage(openKeypad);
}

void TestRescue::longHoldRestoresBrightness()
{
    QFETCH(OpenPage, openPage);
    const PanelProgram program;
    QTRY_VERIFY_WITH_TIMEOUT(shownCount() >= 0, startLimit);
    QCOMPARE(shownBrightness(), QString("0.0"));
    openPage();
    waitForPoll();
    const int time = holdUntilRescue();
    QVERIFY2(time > holdTime, qPrintable(QString::number(time)));
    QCOMPARE(shownBrightness(), QString("1.0"));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray(rescued));
    QCOMPARE(callsOfRescue(), brightnessCall("0") + brightnessCall("1") + QStringList{"xCal"});
    QVERIFY(program.isRunning());
}

void TestRescue::liftingRestartsTheHold()
{
    const PanelProgram program;
    openMainPage();
    waitForPoll();
    putFingerDown(title);
    QTest::qWait(shortHold); // a short hold must not start rescue mode, neither now nor later
    liftFinger();
    waitForPoll();
    QTest::qWait(holdTime - shortHold + quietTime);
    QCOMPARE(calls("xCal"), 0);
    const int time = holdUntilRescue();
    QVERIFY2(time > holdTime, qPrintable(QString::number(time)));
}

void TestRescue::rescueComesOncePerRun()
{
    auto program = std::make_unique<PanelProgram>();
    openMainPage();
    QVERIFY(holdUntilRescue() > holdTime);
    liftFinger();
    const int polls = calls("xinput");
    putFingerDown(title);
    QTest::qWait(holdTime + quietTime); // another hold must not start it again
    QCOMPARE(calls("xCal"), 1);
    QCOMPARE(calls("xinput"), polls);
    liftFinger();

    program = std::make_unique<PanelProgram>();
    openMainPage();
    // The stored value is no number, so xrandr rejects it and keeps the brightness.
    QCOMPARE(callsOfRescue().last(), brightnessCall("\x01").constFirst());
    QCOMPARE(shownBrightness(), QString("1.0"));
    QVERIFY(holdUntilRescue() > holdTime);
}

void TestRescue::calibratorIsVisible()
{
    m_tools->setBody(
        "xCal",
        QString("/usr/bin/xCal & until [ -e %1 ]; do /usr/bin/sleep 0.05; done; kill $!")
            .arg(calibratorEnd));
    const PanelProgram program;
    openMainPage();
    QVERIFY(holdUntilRescue() > holdTime);
    liftFinger();
    QTRY_COMPARE(screenColor({790, 590}), calibratorColor); // its window has no name
    writeFile(calibratorEnd);
    QTRY_VERIFY(screenColor({790, 590}) != calibratorColor);
    QTRY_VERIFY(showsMainPage());
    tapScreen(pageButtons[1].place);
    QTRY_VERIFY(showsSettingsPage());
}

void TestRescue::devicePluggedInLaterIsFound()
{
    m_tools->setBody("xinput", QString("[ -e %1 ] && exec /usr/bin/xinput \"$@\"").arg(plugFile));
    const PanelProgram program;
    openMainPage();
    putFingerDown(title);
    QTest::qWait(holdTime + quietTime); // without the device, a hold must not start rescue mode
    QCOMPARE(calls("xCal"), 0);
    QElapsedTimer timer;
    timer.start();
    QFile plug(plugFile);
    QVERIFY(plug.open(QIODevice::WriteOnly));
    QVERIFY(rescueComes(1));
    QVERIFY2(timer.elapsed() > holdTime, qPrintable(QString::number(timer.elapsed())));
}

QTEST_MAIN(TestRescue)
#include "tst_rescue.moc"
