// Each tool of the settings pages fails in every way while a technician goes through all pages and
// saves. Only tests/long/faults.sh runs the tests of hanging tools, which take minutes.

#include "diskfiles.h"
#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "settingspage.h"
#include "shell/biosinterface.h"
#include "system/paths.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QProcess>
#include <QStackedWidget>
#include <QTest>

#include <memory>

namespace {
const QStringList tools{"ifconfig", "dhclient", "xrandr", "xset", "xinput",
                        "date",     "hwclock",  "du",     "xCal"};
constexpr int slack = 500;       // ms that a call may take beyond its limit
constexpr int politeTime = 500;  // ms between SIGTERM and SIGKILL
constexpr int patience = 12000;  // ms; a longer wait counts as one without limit
constexpr int sleepLimit = 9000; // ms of a tour; the shortest hang takes 10 s
constexpr int pollTime = 250;    // ms; longer than the interval of the rescue poll
constexpr char stubborn[] = "trap '' TERM; while :; do /usr/bin/sleep 1; done";

struct Fault
{
    const char *name;
    const char *body; ///< nullptr: the tool is missing
};

constexpr Fault faults[] = {
    {"missing", nullptr},
    {"fails", "echo broken >&2; exit 1"},
    {"is killed", "kill -9 $$"},
    {"prints nothing", "exit 0"},
    {"prints 10 MB", "/usr/bin/head -c 10000000 /dev/zero | /usr/bin/tr '\\0' 'x'"},
    {"prints lines of 10 MB", "/usr/bin/yes 'eth0: x' | /usr/bin/head -c 10000000"},
    {"prints binary", "/usr/bin/head -c 50000 /bin/sh"},
    {"another language",
     "echo 'eth0: Fehler beim Auslesen der Schnittstelle: Gerät nicht gefunden'"},
};

/// A page and the button that leaves it.
struct Visit
{
    const char *button;
    const char *wayOut;
};

constexpr Visit visits[] = {
    {"Ethernet:3", "ok"},      {"File Transfer:4", "cancel"}, {"Miscellaneous:6", "ok"},
    {"System Status:9", "ok"}, {"Install Fonts:11", "ok"},
};

constexpr char settings[] = "app.screensaving=10\nbios.brightness=0.5\nethernet.eth0=dhcp\n";

/// Enters a fixed address for the second port on the open Ethernet page.
void chooseFixedAddress(const QWidget *page)
{
    QTest::mouseClick(page->findChild<QAbstractButton *>("manual_input_radioButton2"),
                      Qt::LeftButton);
    page->findChild<QLineEdit *>("ip_address_lineEdit2")->setText("10.0.0.9");
}

/// Whether the rescue poll has run. It blocks until xinput ends, so it has also read the answer.
bool hasPolled(const FakeTools &stand)
{
    return stand.calls().join('\n').contains("xinput [");
}

/// Opens each page and leaves it. Result: what was saved.
QByteArray tour(const FakeTools &stand)
{
    writeFile(Paths::interfacesFile, "old\n");
    stand.forgetCalls();
    const SettingsPage first("Ethernet:3", settings);
    const auto *pages = first.window()->findChild<QStackedWidget *>();
    for (const Visit &visit : visits) {
        first.window()->goToSettingsPage();
        QTest::mouseClick(first.window()->findChild<QWidget *>(visit.button), Qt::LeftButton);
        QWidget *page = pages->currentWidget();
        if (visit.button == visits[0].button) {
            chooseFixedAddress(page);
        }
        QTest::mouseClick(page->findChild<QWidget *>(visit.wayOut), Qt::LeftButton);
        if (pages->currentIndex() != BiosInterface::MainSettingsPage) {
            return QByteArray("stays on ") + visit.button;
        }
    }
    QTest::mouseClick(first.window()->findChild<QWidget *>("Calibration:7"), Qt::LeftButton);
    // The time limit is for a missing xinput, which cannot record its call.
    Q_UNUSED(QTest::qWaitFor([&stand] { return hasPolled(stand); }, pollTime))
    return readPanelFile("bios.ini") + readFile(Paths::interfacesFile);
}

/// Milliseconds that this thread has run or wanted to run. On a busy machine, reading 10 MB takes
/// as long as a hang, but a hang sleeps. From /proc/self/schedstat: two numbers of nanoseconds.
qint64 timeAwake()
{
    const QByteArrayList numbers = readFile("/proc/self/schedstat").split(' ');
    return (numbers.value(0).toLongLong() + numbers.value(1).toLongLong()) / 1'000'000;
}

/// Stand-ins for all tools, alone on PATH. @p tool runs @p body, or is missing.
std::unique_ptr<FakeTools> faultyTools(const QString &tool, const QString &body, bool isThere)
{
    QStringList names = tools;
    if (!isThere) {
        names.removeAll(tool);
    }
    auto made = std::make_unique<FakeTools>(names);
    made->setBody("xinput", "echo PenMount; echo 'button[1]=up'");
    if (isThere) {
        made->setBody(tool, body);
    }
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", path.left(path.indexOf(':')));
    return made;
}

/// A tool that hangs while a page opens, or while it saves.
struct Wait
{
    const char *name;
    const char *tool;
    const char *condition; ///< shell text that is true for the call that hangs
    const char *button;
    bool saves;
    int limit; ///< ms
    int calls; ///< how many calls hang
};

constexpr Wait waits[] = {
    {"address of a port", "ifconfig", "true", "Ethernet:3", false, 10000, 1},
    {"lease", "dhclient", "[ \"$2\" != -r ]", "Ethernet:3", true, 10000, 1},
    {"hardware addresses", "ifconfig", "true", "System Status:9", false, 3000, 2},
    {"screen saving", "xset", "true", "Miscellaneous:6", true, 30000, 1},
    {"brightness", "xrandr", "[ \"$3\" = --brightness ]", "Miscellaneous:6", true, 30000, 1},
    {"clock", "date", "true", "Miscellaneous:6", true, 30000, 1},
    {"hardware clock", "hwclock", "true", "Miscellaneous:6", true, 30000, 1},
};

/// Tools that the program waits for without a limit.
constexpr Wait endlessWaits[] = {
    {"fixed address", "ifconfig", "[ $# = 2 ]", "Ethernet:3", true, 0, 1},
    {"lease given back", "dhclient", "[ \"$2\" = -r ]", "Ethernet:3", true, 0, 1},
    {"size of the application", "du", "true", "System Status:9", false, 0, 1},
    {"calibration", "xCal", "true", "Calibration:7", false, 0, 1},
};

void addWaitRows(const Wait *first, const Wait *last)
{
    QTest::addColumn<const Wait *>("wait");
    for (const Wait *wait = first; wait != last; ++wait) {
        QTest::newRow(wait->name) << wait;
    }
}

/// The time in ms that the page needs to open or save while the tool hangs.
qint64 timeOf(const Wait &wait)
{
    const FakeTools stand(tools);
    const SettingsPage page("Ethernet:3", settings);
    page.window()->goToSettingsPage();
    QWidget *button = page.window()->findChild<QWidget *>(wait.button);
    if (wait.saves) {
        QTest::mouseClick(button, Qt::LeftButton);
        if (QByteArray(wait.tool) == "ifconfig") {
            chooseFixedAddress(page.page());
        }
        const auto *pages = page.window()->findChild<QStackedWidget *>();
        button = pages->currentWidget()->findChild<QWidget *>("ok");
    }
    stand.setBody(
        wait.tool,
        QString("if %1; then echo $$ >>/run/hanging; %2; fi").arg(wait.condition, stubborn));
    QElapsedTimer timer;
    timer.start();
    QTest::mouseClick(button, Qt::LeftButton);
    return timer.elapsed();
}
} // namespace

Q_DECLARE_METATYPE(const Wait *)

class TestToolFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void faultyTool_data();
    void faultyTool();
    void hangs_data();
    void hangs();
    void waitsWithoutLimit_data();
    void waitsWithoutLimit();

private:
    QByteArray m_healthy;
};

void TestToolFaults::initTestCase()
{
    requirePanel();
    // The program logs all that a tool prints, here 180 MB.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const FakeTools healthy(tools);
    m_healthy = tour(healthy);
    QVERIFY2(m_healthy.contains("ethernet.eth1=10.0.0.9\n"), m_healthy);
    QVERIFY2(m_healthy.contains("address 10.0.0.9\n"), m_healthy);
}

void TestToolFaults::init()
{
    writeFile("/run/hanging");
}

void TestToolFaults::faultyTool_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("body");
    QTest::addColumn<bool>("isThere");
    for (const QString &tool : tools) {
        for (const Fault &fault : faults) {
            QTest::addRow("%s %s", qPrintable(tool), fault.name)
                << tool << fault.body << (fault.body != nullptr);
        }
    }
}

void TestToolFaults::faultyTool()
{
    QFETCH(QString, tool);
    QFETCH(QString, body);
    QFETCH(bool, isThere);
    const auto stand = faultyTools(tool, body, isThere);
    QElapsedTimer timer;
    timer.start();
    const qint64 awakeBefore = timeAwake();
    QCOMPARE(tour(*stand), m_healthy);
    const qint64 asleep = timer.elapsed() - (timeAwake() - awakeBefore);
    QVERIFY2(asleep < sleepLimit, qPrintable(QString::number(asleep)));
}

void TestToolFaults::hangs_data()
{
    addWaitRows(std::begin(waits), std::end(waits));
}

void TestToolFaults::hangs()
{
    QFETCH(const Wait *, wait);
    const qint64 taken = timeOf(*wait);
    const int expected = (wait->limit + politeTime) * wait->calls;
    QVERIFY2(taken >= expected && taken <= expected + slack * wait->calls,
             qPrintable(QString::number(taken)));
    QCOMPARE(readFile("/run/hanging").count('\n'), wait->calls);
}

void TestToolFaults::waitsWithoutLimit_data()
{
    addWaitRows(std::begin(endlessWaits), std::end(endlessWaits));
}

void TestToolFaults::waitsWithoutLimit()
{
    QFETCH(const Wait *, wait);
    // This process blocks meanwhile, so another one has to end the tool.
    QProcess rescuer;
    rescuer.start(
        "/bin/sh",
        {"-c", QString("/usr/bin/sleep %1; kill -9 $(cat /run/hanging)").arg(patience / 1000.0)});
    const qint64 taken = timeOf(*wait);
    QVERIFY(rescuer.waitForFinished());
    QVERIFY2(taken >= patience - slack && taken <= patience + 2 * slack,
             qPrintable(QString::number(taken)));
}

QTEST_MAIN(TestToolFaults)
#include "tst_toolfaults.moc"
