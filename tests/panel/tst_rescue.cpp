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
constexpr int holdTime = 2000;    // ms after which rescue comes
constexpr int shortHold = 1500;   // ms
constexpr int rescueLimit = 8000; // ms until it has come, however slow the machine is
constexpr QPoint title(400, 16);  // does not react to a finger
constexpr QColor calibratorColor(190, 190, 190);
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
    tapScreen({600, 214}); // manual input
    tapScreen({400, 258}); // its address
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
    void longHoldGivesTheLightBack_data();
    void longHoldGivesTheLightBack();
    void liftingStartsTheTimeAnew();
    void comesOnceInARun();
    void calibrationIsOnTheScreen();
    void deviceIsPluggedInLater();

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

/// How often a tool was run so, or with more arguments.
int TestRescue::calls(const QString &call) const
{
    return int(m_tools->calls().filter(call).size());
}

/// The calls that brightness and calibration are about, in order.
QStringList TestRescue::callsOfRescue() const
{
    QStringList all = m_tools->calls();
    all.removeIf([](const QString &call) {
        return call != QLatin1String("xCal") && !call.contains("brightness");
    });
    return all;
}

/// Waits until the program has asked for the device and has got its answer.
void TestRescue::waitForPoll() const
{
    const int before = calls("xinput");
    QTRY_VERIFY(calls("xinput") >= before + 2);
}

/// Waits until the calibration tool has been run so many times. Result: false if it is not.
bool TestRescue::rescueComes(int count) const
{
    return QTest::qWaitFor([this, count] { return calls("xCal") == count; }, rescueLimit);
}

/// Puts the finger down. Result: ms until the calibration tool was run once more, -1 if it was not.
int TestRescue::holdUntilRescue() const
{
    const int before = calls("xCal");
    QElapsedTimer timer;
    timer.start(); // first: the finger is down before the call is over
    putFingerDown(title);
    return rescueComes(before + 1) ? int(timer.elapsed()) : -1;
}

void TestRescue::longHoldGivesTheLightBack_data()
{
    QTest::addColumn<OpenPage>("openPage");
    QTest::newRow("countdown") << OpenPage([] {});
    QTest::newRow("main page") << OpenPage(openMainPage);
    QTest::newRow("settings page") << OpenPage(openEthernetPage);
    QTest::newRow("keypad") << OpenPage(openKeypad);
}

void TestRescue::longHoldGivesTheLightBack()
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

void TestRescue::liftingStartsTheTimeAnew()
{
    const PanelProgram program;
    openMainPage();
    waitForPoll();
    putFingerDown(title);
    QTest::qWait(shortHold);
    liftFinger();
    waitForPoll();
    QTest::qWait(holdTime - shortHold + 300); // a hold that ended in time is forgotten
    QCOMPARE(calls("xCal"), 0);
    const int time = holdUntilRescue();
    QVERIFY2(time > holdTime, qPrintable(QString::number(time)));
}

void TestRescue::comesOnceInARun()
{
    auto program = std::make_unique<PanelProgram>();
    openMainPage();
    QVERIFY(holdUntilRescue() > holdTime);
    liftFinger();
    const int polls = calls("xinput");
    putFingerDown(title);
    QTest::qWait(holdTime + 1000);
    QCOMPARE(calls("xCal"), 1);
    QCOMPARE(calls("xinput"), polls);
    liftFinger();

    program = std::make_unique<PanelProgram>();
    openMainPage();
    // What is stored is no number; the tool refuses it and leaves the light alone.
    QCOMPARE(callsOfRescue().last(), brightnessCall("\x01").constFirst());
    QCOMPARE(shownBrightness(), QString("1.0"));
    QVERIFY(holdUntilRescue() > holdTime);
}

void TestRescue::calibrationIsOnTheScreen()
{
    m_tools->setBody("xCal", "exec timeout 3 /usr/bin/xCal");
    const PanelProgram program;
    openMainPage();
    QVERIFY(holdUntilRescue() > holdTime);
    liftFinger();
    QTRY_COMPARE(screenColor({790, 590}), calibratorColor); // its window has no name
    QTRY_VERIFY(screenColor({790, 590}) != calibratorColor);
    QTRY_VERIFY(showsMainPage());
    tapScreen(pageButtons[1].place);
    QTRY_VERIFY(showsSettingsPage());
}

void TestRescue::deviceIsPluggedInLater()
{
    m_tools->setBody("xinput", QString("[ -e %1 ] && exec /usr/bin/xinput \"$@\"").arg(plugFile));
    const PanelProgram program;
    openMainPage();
    putFingerDown(title);
    QTest::qWait(holdTime + 500);
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
