#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

#include <memory>

namespace {
// On a screen of 800x600.
constexpr QPoint miscButton = pageButtons[4].place;
constexpr QPoint mouseEnable(380, 79);
constexpr QPoint screenSavingBox(560, 332);
constexpr QPoint brightnessBox(560, 418);
constexpr QPoint yearSection(460, 504);
constexpr QRect secondsArea(585, 490, 42, 28);
constexpr QPoint downButton(714, 504);
constexpr QPoint upButton(758, 504);
constexpr int screenSavingRows = 6;
constexpr int brightnessRows = 11;

std::unique_ptr<PanelProgram> startAtMiscPage()
{
    auto program = std::make_unique<PanelProgram>();
    openMainPage();
    tapScreen(miscButton);
    if (!QTest::qWaitFor(showsSettingsPage)) {
        qFatal("the Miscellaneous page does not open");
    }
    return program;
}

/// The value after @p label in the output of "xset q".
QString screenSaver(const QString &label)
{
    return QRegularExpression(label + ": +([a-z0-9]+)")
        .match(toolOutput({"/usr/bin/xset", "q"}))
        .captured(1);
}

/// The time that a recorded call of date was to set.
QDateTime recordedTime(const QString &call)
{
    const QString argument = QRegularExpression("^date \\[([0-9]{12})\\]$").match(call).captured(1);
    return QDateTime::fromString(argument, "MMddhhmmyyyy");
}

QDateTime withoutSeconds(const QDateTime &time)
{
    return {time.date(), QTime(time.time().hour(), time.time().minute())};
}

void setDisplay(const QString &brightness, const QString &seconds)
{
    toolOutput({"/usr/bin/xrandr", "--output", QGuiApplication::primaryScreen()->name(),
                "--brightness", brightness});
    toolOutput({"/usr/bin/xset", "s", seconds, "s", "expose"});
}
} // namespace

class TestDisplay : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void technicianSetsTheDisplay();
    void cancelChangesNothing();
    void screenSavingOffAndFullBrightness();
    void zeroBrightnessIsAppliedAtStart();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestDisplay::initTestCase()
{
    requirePanel();
}

void TestDisplay::init()
{
    setDisplay("0.77", "77");
    m_tools = std::make_unique<FakeTools>(QStringList{"sleep", "date", "hwclock"});
}

void TestDisplay::cleanup()
{
    m_tools.reset();
}

void TestDisplay::technicianSetsTheDisplay()
{
    writePanelFile("bios.ini", "other=kept\n");
    auto program = startAtMiscPage();
    const QDateTime opened = QDateTime::currentDateTime();
    QCOMPARE(shownBrightness(), QString("1.0")); // the default
    tapScreen(mouseEnable);
    chooseRow(screenSavingBox, screenSavingRows, 2);
    chooseRow(brightnessBox, brightnessRows, 5);
    tapScreen(yearSection);
    tapScreen(upButton);
    const QImage seconds = screenImage().copy(secondsArea);
    QTRY_VERIFY(screenImage().copy(secondsArea) != seconds); // a tick keeps the chosen section
    tapScreen(upButton);
    tapScreen(upButton);
    tapScreen(downButton);
    tapScreen(okButton);
    QTRY_VERIFY(showsMainPage());
    const QDateTime saved = QDateTime::currentDateTime();

    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("app.mouse=1\napp.orientation=horizontal\napp.screensaving=10\n"
                        "bios.brightness=0.5\nother=kept\n"));
    QCOMPARE(shownBrightness(), QString("0.50"));
    QCOMPARE(screenSaver("timeout"), QString("600"));
    const QStringList calls = m_tools->calls();
    QCOMPARE(calls.size(), 3);
    QCOMPARE(calls.at(0), QString("sleep [1]"));
    const QDateTime time = recordedTime(calls.at(1));
    // The editor counts seconds with its own timer, which may lag behind the clock.
    QVERIFY2(time >= withoutSeconds(opened.addSecs(-1).addYears(2)), qPrintable(calls.at(1)));
    QVERIFY2(time <= saved.addYears(2), qPrintable(calls.at(1)));
    QCOMPARE(calls.at(2), QString("hwclock [-w]"));

    program.reset();
    setDisplay("1", "77");
    m_tools.reset();
    // The stand-ins run "window-is-there" if the program already shows its window.
    const FakeTools tools({"xset", "xrandr", "window-is-there"});
    const QString body = "xwininfo -root -tree | grep -q '\"talmero-bios\")' && window-is-there\n"
                         "exec /usr/bin/%1 \"$@\"";
    tools.setBody("xset", body.arg("xset"));
    tools.setBody("xrandr", body.arg("xrandr"));
    const PanelProgram again;
    QTRY_VERIFY_WITH_TIMEOUT(shownCount() >= 0, startLimit);
    QCOMPARE(shownBrightness(), QString("0.50"));
    QCOMPARE(screenSaver("timeout"), QString("600"));
    const QString output = QGuiApplication::primaryScreen()->name();
    QCOMPARE(tools.calls().mid(0, 4),
             (QStringList{"xrandr [-q]", "xset [s] [600]",
                          "xrandr [--output] [" + output + "] [--brightness] [0.5]",
                          "xrandr [--output] [" + output + "] [--rotate] [normal]"}));
}

void TestDisplay::cancelChangesNothing()
{
    const QByteArray settings = "# this comment stays: nothing is written\nbios.brightness=0.9\n"
                                "app.screensaving=5\n";
    writePanelFile("bios.ini", settings);
    const auto program = startAtMiscPage();
    tapScreen(mouseEnable);
    chooseRow(screenSavingBox, screenSavingRows, 5);
    chooseRow(brightnessBox, brightnessRows, 10);
    tapScreen(yearSection);
    tapScreen(upButton);
    tapScreen(cancelButton);
    QTRY_VERIFY(showsMainPage());
    QCOMPARE(readPanelFile("bios.ini"), settings);
    QCOMPARE(shownBrightness(), QString("0.90"));
    QCOMPARE(screenSaver("timeout"), QString("300"));
    QCOMPARE(m_tools->calls(), QStringList{"sleep [1]"});
}

void TestDisplay::screenSavingOffAndFullBrightness()
{
    writePanelFile("bios.ini", "app.screensaving=30\nbios.brightness=0.3\n");
    const auto program = startAtMiscPage();
    QCOMPARE(shownBrightness(), QString("0.30"));
    QCOMPARE(screenSaver("timeout"), QString("1800"));
    QCOMPARE(screenSaver("allow exposures"), QString("yes"));
    chooseRow(screenSavingBox, screenSavingRows, 0);
    chooseRow(brightnessBox, brightnessRows, 0);
    tapScreen(okButton);
    QTRY_VERIFY(showsMainPage());
    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("app.orientation=horizontal\nbios.brightness=1\n"));
    QCOMPARE(shownBrightness(), QString("1.0"));
    // "xset -dpms s noexpose" does not change the delay. This X server has no DPMS.
    QCOMPARE(screenSaver("allow exposures"), QString("no"));
    QCOMPARE(screenSaver("timeout"), QString("1800"));
}

void TestDisplay::zeroBrightnessIsAppliedAtStart()
{
    writePanelFile("bios.ini", "");
    auto program = startAtMiscPage();
    chooseRow(brightnessBox, brightnessRows, 10);
    tapScreen(okButton);
    QTRY_VERIFY(showsMainPage());
    QCOMPARE(shownBrightness(), QString("0.0"));
    QVERIFY(readPanelFile("bios.ini").contains("bios.brightness=0\n"));

    program.reset();
    setDisplay("1", "77");
    const PanelProgram again;
    QTRY_VERIFY_WITH_TIMEOUT(shownCount() >= 0, startLimit);
    QCOMPARE(shownBrightness(), QString("0.0"));
}

QTEST_MAIN(TestDisplay)
#include "tst_display.moc"
