#include "shell/biosinterface.h"

#include "debuglog.h"
#include "faketools.h"
#include "movedclock.h"
#include "pages/calibration.h"
#include "panelfiles.h"
#include "panelmain.h"
#include "widgets/settingsbutton.h"

#include <QDir>
#include <QElapsedTimer>
#include <QScreen>
#include <QStackedWidget>
#include <QTimer>

#include <memory>

using namespace std::chrono_literals;

namespace {
constexpr ToolLimits shortLimits{.tool = 1000ms};
const QString list = "xinput [--list] [--name-only]";
const QString query = "xinput [query-state] [PenMount USB]";
const QString nullQuery = "xinput [query-state] [null]";

/// Shell text of a stand-in for xinput. @p devices runs for the list of devices, @p state for the
/// state of one.
QString touchController(const QString &devices, const QString &state)
{
    return QString("case $1 in --list) %1;; *) %2;; esac").arg(devices, state);
}

QTimer *pollTimer(const BiosInterface &window)
{
    for (auto *timer : window.findChildren<QTimer *>()) {
        if (timer->interval() == 200) {
            return timer;
        }
    }
    return nullptr;
}
} // namespace

class TestRescueMode : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void looksForTheControllerUntilFound();
    void passesTheDeviceNameAsOneArgument_data();
    void passesTheDeviceNameAsOneArgument();
    void holdStartsRescue();
    void releaseRestartsTheHold();
    void missingAnswerKeepsTheHold();
    void emptyListFindsNoDevice();
    void hangingListIsTheOnlyToolOfItsTick();
    void hangingQueryIsCutOff();
    void hangingBrightnessToolDoesNotStopRescue();
    void toolsThatFail_data();
    void toolsThatFail();
    void calibrationPageRunsTheTool();
    void calibrationNeedsAPanel();
    void calibrationDialogCoversTheDesktop();

private:
    /// A window whose poll timer does not tick during a test; the tests poll themselves.
    std::unique_ptr<BiosInterface> makeWindow(const ToolLimits &limits = {}) const;
    QStringList callsSince(qsizetype before) const { return m_tools->calls().mid(before); }

    std::unique_ptr<FakeTools> m_tools;
};

void TestRescueMode::init()
{
    m_tools = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "xCal"});
    m_tools->setBody("xrandr", "[ \"$1\" != -q ] || echo 'LVDS1 connected 1'");
    writePanelFile("bios.ini", "bios.brightness=0\n");
}

void TestRescueMode::cleanup()
{
    m_tools.reset();
}

std::unique_ptr<BiosInterface> TestRescueMode::makeWindow(const ToolLimits &limits) const
{
    auto window = std::make_unique<BiosInterface>(nullptr, limits);
    pollTimer(*window)->setInterval(100000000);
    return window;
}

void TestRescueMode::looksForTheControllerUntilFound()
{
    m_tools->setBody("xinput", touchController("echo 'Virtual core pointer'", "exit 1"));
    const auto window = makeWindow();
    const qsizetype before = m_tools->calls().size();
    window->slotRescueTimesup();
    window->slotRescueTimesup();
    QCOMPARE(callsSince(before), (QStringList{list, nullQuery, list, nullQuery}));
    // Now the controller is plugged in.
    m_tools->setBody("xinput",
                     touchController("printf 'Mouse\\nPenMount USB\\n'", "echo 'button[1]=up'"));
    const qsizetype plugged = m_tools->calls().size();
    window->slotRescueTimesup();
    window->slotRescueTimesup();
    QCOMPARE(callsSince(plugged), (QStringList{list, query, query}));
}

void TestRescueMode::passesTheDeviceNameAsOneArgument_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << "  PenMount  6000 ";
    QTest::newRow("double quotes") << "\"PenMount\" \"\"\"";
    QTest::newRow("shell") << "PenMount $(reboot); `x` *";
    QTest::newRow("begins with a hyphen") << "--PenMount";
}

void TestRescueMode::passesTheDeviceNameAsOneArgument()
{
    QFETCH(QString, name);
    m_tools->setBody("xinput", touchController("cat <<'E'\n" + name + "\nE\n", "true"));
    const auto window = makeWindow();
    window->slotRescueTimesup();
    QCOMPARE(m_tools->calls().last(), QString("xinput [query-state] [%1]").arg(name));
}

void TestRescueMode::holdStartsRescue()
{
    m_tools->setBody("xinput", touchController("echo 'PenMount USB'", "echo 'button[1]=down'"));
    const auto window = makeWindow();
    const qsizetype before = m_tools->calls().size();
    QElapsedTimer timer;
    timer.start();
    const QTimer *poll = nullptr;
    for (auto *candidate : window->findChildren<QTimer *>()) {
        poll = candidate->interval() == 100000000 ? candidate : poll;
    }
    QVERIFY(poll != nullptr && poll->isActive());
    while (poll->isActive() && timer.elapsed() < 10000) {
        window->slotRescueTimesup();
        QTest::qWait(100); // the pause between two polls
    }
    QVERIFY2(timer.elapsed() > 2000 && timer.elapsed() < 3500,
             qPrintable(QString::number(timer.elapsed())));
    const QStringList calls = callsSince(before);
    QCOMPARE(calls.filter("xCal"), QStringList{"xCal"});
    QCOMPARE(calls.mid(calls.size() - 3),
             (QStringList{query, "xrandr [--output] [LVDS1] [--brightness] [1]", "xCal"}));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("bios.brightness=\x01\n"));
    QVERIFY(!poll->isActive()); // rescue ends the polling
}

void TestRescueMode::releaseRestartsTheHold()
{
    const auto window = makeWindow();
    const MovedClock clock;
    const auto tick = [&](const char *state) {
        m_tools->setBody(
            "xinput",
            touchController("echo 'PenMount USB'", QString("echo 'button[1]=%1'").arg(state)));
        window->slotRescueTimesup();
    };
    tick("down");
    MovedClock::advance(1500ms);
    tick("up");
    tick("down");
    MovedClock::advance(1500ms);
    tick("down");
    QVERIFY(m_tools->calls().filter("xCal").isEmpty());
    MovedClock::advance(700ms);
    tick("down");
    QCOMPARE(m_tools->calls().filter("xCal").size(), 1);
}

void TestRescueMode::missingAnswerKeepsTheHold()
{
    const MovedClock clock;
    const auto window = makeWindow();
    m_tools->setBody("xinput", touchController("echo 'PenMount USB'", "echo 'button[1]=down'"));
    window->slotRescueTimesup();
    m_tools->setBody("xinput", touchController("true", "exit 1"));
    window->slotRescueTimesup();
    MovedClock::advance(2100ms);
    m_tools->setBody("xinput", touchController("true", "echo 'button[1]=down'"));
    window->slotRescueTimesup();
    QCOMPARE(m_tools->calls().filter("xCal").size(), 1);
}

void TestRescueMode::emptyListFindsNoDevice()
{
    m_tools->setBody("xinput", touchController("printf '\\n\\n'", "true"));
    const auto window = makeWindow();
    const DebugLog log;
    window->slotRescueTimesup();
    QCOMPARE(m_tools->calls().last(), nullQuery);
    QCOMPARE(log.lines(), QStringList());
}

void TestRescueMode::hangingListIsTheOnlyToolOfItsTick()
{
    m_tools->setBody("xinput", touchController("exec sleep 300", "true"));
    const auto window = makeWindow(shortLimits);
    const qsizetype before = m_tools->calls().size();
    QElapsedTimer timer;
    timer.start();
    window->slotRescueTimesup();
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(callsSince(before), QStringList{list});
}

void TestRescueMode::hangingQueryIsCutOff()
{
    m_tools->setBody("xinput",
                     touchController("echo 'PenMount USB'", "echo 'button[1]=up'; exec sleep 300"));
    const auto window = makeWindow(shortLimits);
    QElapsedTimer timer;
    timer.start();
    window->slotRescueTimesup();
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
}

void TestRescueMode::hangingBrightnessToolDoesNotStopRescue()
{
    const MovedClock clock;
    const auto window = makeWindow(shortLimits);
    m_tools->setBody("xinput", touchController("echo 'PenMount USB'", "echo 'button[1]=down'"));
    m_tools->setBody("xrandr", "exec sleep 300");
    window->slotRescueTimesup();
    MovedClock::advance(2100ms);
    window->slotRescueTimesup();
    QCOMPARE(m_tools->calls().last(), QString("xCal"));
}

void TestRescueMode::toolsThatFail_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("exit status") << "exit 1";
    QTest::newRow("killed") << "kill -KILL $$";
    QTest::newRow("10 MB") << "head -c 10000000 /dev/zero";
    QTest::newRow("binary") << "head -c 100000 /dev/urandom";
    QTest::newRow("another language") << "echo 'Taste[1]=unten'";
}

void TestRescueMode::toolsThatFail()
{
    QFETCH(QString, body);
    const auto window = makeWindow();
    m_tools->setBody("xinput", body);
    for (int tick = 0; tick < 3; ++tick) {
        window->slotRescueTimesup();
    }
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    window->slotRescueTimesup();
    qputenv("PATH", path);
    QVERIFY(m_tools->calls().filter("xCal").isEmpty());
    // The tool works again.
    m_tools->setBody("xinput", touchController("echo 'PenMount USB'", "echo 'button[1]=up'"));
    window->slotRescueTimesup();
    QCOMPARE(m_tools->calls().last(), query);
}

void TestRescueMode::calibrationPageRunsTheTool()
{
    const auto window = makeWindow();
    auto *pages = window->findChild<QStackedWidget *>();
    for (int visit = 1; visit <= 2; ++visit) {
        window->goToSettingsPage();
        QTest::mouseClick(window->findChild<SettingsButton *>("Calibration:7"), Qt::LeftButton);
        QCOMPARE(pages->currentIndex(), 7);
        QCOMPARE(m_tools->calls().filter("xCal").size(), visit);
    }
    QVERIFY(window->saveCalibrationSettings());
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("bios.brightness=0\n"));
}

void TestRescueMode::calibrationNeedsAPanel()
{
    const auto window = makeWindow();
    QVERIFY(QDir().rename("/opt/talmero/bios", "/opt/talmero/away"));
    const bool loaded = window->loadCalibrationSettings();
    QVERIFY(QDir().rename("/opt/talmero/away", "/opt/talmero/bios"));
    QVERIFY(loaded);
    QVERIFY(m_tools->calls().filter("xCal").isEmpty());
}

void TestRescueMode::calibrationDialogCoversTheDesktop()
{
    Calibration dialog;
    QVERIFY(dialog.parentWidget() == nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog)); // painting works
    const QRect desktop = QGuiApplication::primaryScreen()->virtualGeometry();
    QCOMPARE(dialog.geometry(), QRect(0, 0, desktop.width() - 1, desktop.height() - 1));
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.focusPolicy(), Qt::StrongFocus);
    QTest::mouseClick(&dialog, Qt::LeftButton); // a click must not close it
    dialog.saveCalibration();
    QVERIFY(dialog.isVisible());
}

PANEL_QTEST_MAIN(TestRescueMode)
#include "tst_rescuemode.moc"
