// What the stored choices of mouse and buzzer mean for the X server.

#include "diskfiles.h"
#include "faketools.h"
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
} // namespace

class TestSession : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void pointerAndBellFollowTheSettings_data();
    void pointerAndBellFollowTheSettings();
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

QTEST_GUILESS_MAIN(TestSession)
#include "tst_session.moc"
