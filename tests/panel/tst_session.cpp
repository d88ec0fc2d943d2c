// What the stored choices of mouse and buzzer mean for the X server, and how scripts read settings.

#include "diskfiles.h"
#include "faketools.h"
#include "manualpage.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "toolrun.h"

#include <QTest>

namespace {
constexpr char prefix[] = "/run/installed";
constexpr char startSession[] = "/run/installed/start-session";

constexpr int bellTime = 300; // ms in which a session sets the bell

/// The stand-in for xinit runs the client in the display of this test.
constexpr char runClient[] = "exec \"$1\" \"$2\" \"$3\"";

ToolRun settingsTool(const QStringList &arguments)
{
    return runTool(SETTINGS, arguments);
}
} // namespace

class TestSession : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void pointerAndBellFollowTheSettings_data();
    void pointerAndBellFollowTheSettings();
    void settingIsPrinted_data();
    void settingIsPrinted();
    void missingFileHasNoValues();
    void usage_data();
    void usage();
    void lostOutputIsAnError();
    void documentedExamples();
};

void TestSession::initTestCase()
{
    requirePanel();
    shellBytes(QString("mkdir -p %1/bin %1/lib/talmero-bios; cp '%2' %1/bin/talmero-settings;"
                       "ln -s /bin/true %1/lib/talmero-bios/wait-for-devices;"
                       "sed 's|@prefix@|%1|' '%3/session/start-session.in' >%4; chmod +x %4")
                   .arg(prefix, SETTINGS, PANEL_SOURCE, startSession));
    writeFile("/root/.xinitrc", "echo started >/run/session\n");
}

void TestSession::pointerAndBellFollowTheSettings_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<bool>("hasPointer");
    QTest::addColumn<bool>("hasBell");
    QTest::newRow("nothing stored") << QByteArray() << false << false;
    QTest::newRow("both") << QByteArray("app.buzzer=1\napp.mouse=1\n") << true << true;
    QTest::newRow("mouse") << QByteArray("app.mouse=1\n") << true << false;
    QTest::newRow("buzzer") << QByteArray("app.buzzer=1\n") << false << true;
    QTest::newRow("switched off again")
        << QByteArray("app.mouse=1\napp.mouse=\n") << false << false;
    QTest::newRow("any text, as on the page")
        << QByteArray("app.mouse=yes\napp.buzzer=0\n") << true << true;
    QTest::newRow("comment") << QByteArray("#app.mouse=1\n") << false << false;
    QTest::newRow("another key") << QByteArray("app.mouse =1\n") << false << false;
}

void TestSession::pointerAndBellFollowTheSettings()
{
    QFETCH(QByteArray, settings);
    QFETCH(bool, hasPointer);
    QFETCH(bool, hasBell);
    const FakeTools tools({"xinit"});
    tools.setBody("xinit", runClient);
    writePanelFile("bios.ini", settings);
    shellBytes("xset b on; rm -f /run/session");
    QCOMPARE(runTool(startSession, {"/usr/bin/X", ":0", "vt7"}).status, 0);
    const QString server
        = QString(" [--] [/usr/bin/X] [:0] [vt7]") + (hasPointer ? "" : " [-nocursor]");
    QVERIFY2(tools.calls().first().endsWith(server), qPrintable(tools.calls().first()));
    QCOMPARE(readFile("/run/session"), QByteArray("started\n"));
    if (hasBell) {
        QTest::qWait(bellTime);
        QVERIFY(shellBytes("xset q").contains("bell percent:  50"));
    } else {
        QTRY_VERIFY(shellBytes("xset q").contains("bell percent:  0"));
    }
}

void TestSession::settingIsPrinted_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<int>("status");
    QTest::newRow("value") << "a" << QByteArray("1 2\n") << 0;
    QTest::newRow("last line wins") << "b" << QByteArray("new\n") << 0;
    QTest::newRow("bytes that are not UTF-8") << "c" << QByteArray("\xff\n") << 0;
    QTest::newRow("removed") << "d" << QByteArray() << 1;
    QTest::newRow("missing") << "e" << QByteArray() << 1;
    QTest::newRow("empty key") << "" << QByteArray() << 1;
}

void TestSession::settingIsPrinted()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, output);
    writePanelFile("bios.ini", "\xEF\xBB\xBF a=1 \t 2 \r\nb=old\nb=new\nc=\xff\nd=1\nd=\n");
    const ToolRun run = settingsTool({"get", key});
    QCOMPARE(run.output, output);
    QCOMPARE(run.errors, QByteArray());
    QTEST(run.status, "status");
}

void TestSession::missingFileHasNoValues()
{
    removePanelFile("bios.ini");
    const ToolRun run = settingsTool({"get", "app.mouse"});
    QCOMPARE(run.status, 1);
    QCOMPARE(run.output + run.errors, QByteArray());
}

void TestSession::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("nothing") << QStringList() << QByteArray("a command is missing");
    QTest::newRow("no key") << QStringList{"get"} << QByteArray("\"get\" needs one key");
    QTest::newRow("two keys") << QStringList{"get", "a", "b"}
                              << QByteArray("\"get\" needs one key");
    QTest::newRow("other command")
        << QStringList{"put\x1b", "a"} << QByteArray("unknown command: put\\x1b");
}

void TestSession::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, reason);
    const ToolRun wrong = settingsTool(arguments);
    QCOMPARE(wrong.status, 64);
    QCOMPARE(wrong.output, QByteArray());
    QCOMPARE(wrong.errors, "talmero-settings: " + reason + "; see talmero-settings --help\n");
    QVERIFY(settingsTool({"--help"}).output.startsWith("Usage: talmero-settings get KEY\n"));
    QCOMPARE(settingsTool({"--version"}).output, QByteArray("talmero-settings 1.0\n"));
}

void TestSession::lostOutputIsAnError()
{
    writePanelFile("bios.ini", "a=1\n");
    const ToolRun run = runTool("/bin/sh", {"-c", "'" SETTINGS "' get a >/dev/full"});
    QCOMPARE(run.status, 74);
    QCOMPARE(run.errors, QByteArray("talmero-settings: cannot write to standard output\n"));
}

/// Runs the examples of the man page.
void TestSession::documentedExamples()
{
    writePanelFile("bios.ini", "app.buzzer=1\n");
    const QByteArrayList examples = examplesOfManualPage("tools/settings/talmero-settings.1");
    QCOMPARE(examples.size(), 1);
    const ToolRun run = runTool("/bin/sh", {"-c", withProgram(SETTINGS, examples.first())});
    QCOMPARE(run.output, QByteArray("the buzzer is enabled\n"));
}

QTEST_GUILESS_MAIN(TestSession)
#include "tst_session.moc"
