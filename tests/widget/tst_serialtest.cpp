#include "factory/softwaresetup.h"

#include "debuglog.h"
#include "factorywindow.h"
#include "panelguard.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSerialPort>
#include <QTest>

#include <ctime>
#include <sys/fsuid.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {
constexpr uid_t nobody = 65534;

QString payload(int port)
{
    return QString("10:/dev/ttyS%1:").arg(port) + alphabet;
}

void plug(const QString &com1, const QString &com2, const QString &com3)
{
    QCOMPARE(QProcess::execute(PANEL_SIMULATOR "/serial", {com1, com2, com3}), 0);
}

int verdicts(const FactoryWindow &factory)
{
    return int(factory.result().count("Test "));
}

qint64 openFiles()
{
    return QDir("/proc/self/fd").count();
}
} // namespace

class TestSerialTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void eachPort_data();
    void eachPort();
    void echoes_data();
    void echoes();
    void lateChunksFailOnce();
    void chunkInThePauseCounts();
    void pauseHasNoLimit();
    void longEchoIsReadToItsEnd();
    void markupIsShownAsItIs();
    void silentPortGivesNoVerdict();
    void portSettings();
    void pressedAgain();
    void otherPortMeanwhile();
    void echoOfAnEarlierTestGivesNoVerdict();
    void verdictFreesThePort();
    void cannotOpen_data();
    void cannotOpen();
    void noPermission();
    void slotsWithoutASender();
    void busy();
    void unplugged_data();
    void unplugged();
    void windowClosedMeanwhile();
    void noPauseTool();
};

void TestSerialTest::initTestCase()
{
    requirePanel();
}

void TestSerialTest::cleanup()
{
    plug("whole", "whole", "whole");
}

void TestSerialTest::eachPort_data()
{
    QTest::addColumn<int>("port");
    for (int port = 0; port < 3; ++port) {
        QTest::addRow("COM%d", port + 1) << port;
    }
}

void TestSerialTest::eachPort()
{
    QFETCH(int, port);
    plug(port == 0 ? "whole" : "none", port == 1 ? "whole" : "none", port == 2 ? "whole" : "none");
    const FactoryWindow factory;
    factory.click("Test");
    const DebugLog log;
    QElapsedTimer timer;
    timer.start();
    factory.click(QString("COM%1 RS232").arg(port + 1));
    QTRY_COMPARE(factory.result(), payload(port) + okLines);
    QVERIFY2(timer.elapsed() < 8000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(factory.calls(), QStringList{"sleep [0.2]"});
    const QString function = "void SoftwareSetup::slotCOM232Test()";
    QCOMPARE(
        log.lines(),
        (QStringList{function + QString(" \"/dev/ttyS%1\" true").arg(port), function + " 76"}));
}

void TestSerialTest::echoes_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("result");
    const QString sent = payload(0);
    QTest::newRow("byte by byte") << "bytes" << sent + okLines;
    QTest::newRow("chunks, 50 ms") << "chunks:50" << sent + okLines;
    QTest::newRow("chunks, 120 ms") << "chunks:120" << sent + okLines;
    QTest::newRow("one second late") << "late:1000" << sent + okLines;
    QTest::newRow("one byte changed")
        << "changed" << sent.left(40) + '#' + sent.mid(41) + failLines;
    QTest::newRow("one byte more") << "extra" << sent + '#' + failLines;
    QTest::newRow("one byte less") << "missing" << sent.left(40) + sent.mid(41) + failLines;
    // The program reads a chunk up to its first zero byte, so this echo passes.
    QTest::newRow("trailing zero byte") << "zero" << sent + okLines;
}

void TestSerialTest::echoes()
{
    QFETCH(QString, mode);
    QFETCH(QString, result);
    plug(mode, "none", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), result);
    QTest::qWait(50); // no second verdict may follow
    QCOMPARE(factory.result(), result);
}

void TestSerialTest::lateChunksFailOnce()
{
    plug("chunks:400", "none", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0).left(19) + failLines);
    QTest::qWait(500); // the next chunk must find no reader
    QCOMPARE(factory.result(), payload(0).left(19) + failLines);
}

/// The kernel keeps bytes that arrive during the pause; the program reads them afterwards.
void TestSerialTest::chunkInThePauseCounts()
{
    plug("chunks:60", "none", "none");
    const FactoryWindow factory;
    factory.tools().setBody("sleep", "exec /usr/bin/sleep 0.1");
    factory.click("Test");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0) + okLines);
    QVERIFY2(factory.calls().size() >= 2, qPrintable(factory.calls().join(' ')));
}

void TestSerialTest::pauseHasNoLimit()
{
    plug("whole", "none", "none");
    const FactoryWindow factory({}, {.tool = 100ms});
    factory.tools().setBody("sleep", "/usr/bin/sleep 0.7; touch /run/paused");
    factory.click("Test");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0) + okLines);
    QVERIFY(QFile::remove("/run/paused"));
}

void TestSerialTest::longEchoIsReadToItsEnd()
{
    plug("long", "none", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0).repeated(20) + failLines);
}

void TestSerialTest::markupIsShownAsItIs()
{
    plug("markup", "none", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), "<b>5</b>&amp;<img src='/dev/null'>" + failLines);
}

void TestSerialTest::silentPortGivesNoVerdict()
{
    plug("silent", "none", "none");
    const FactoryWindow factory;
    factory.click("Test");
    QElapsedTimer timer;
    timer.start();
    factory.click("COM1 RS232");
    QVERIFY2(timer.elapsed() < 8000, qPrintable(QString::number(timer.elapsed())));
    QTest::qWait(300); // longer than the pause: neither a verdict nor a pause may come
    QCOMPARE(factory.result(), QString());
    QCOMPARE(factory.calls(), QStringList());
}

void TestSerialTest::portSettings()
{
    plug("silent", "none", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    QProcess stty;
    stty.start("stty", {"-F", "/dev/ttyS0", "-a"});
    QVERIFY(stty.waitForFinished());
    const QString settings = stty.readAllStandardOutput();
    QVERIFY2(settings.startsWith("speed 115200 baud"), qPrintable(settings));
    const QStringList words = settings.split(QRegularExpression("[ ;\n]+"));
    for (const char *word : {"cs8", "-parenb", "-cstopb", "ixon", "ixoff", "-crtscts", "-echo"}) {
        QVERIFY2(words.contains(word), word);
    }
}

void TestSerialTest::pressedAgain()
{
    plug("silent", "none", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    QCoreApplication::processEvents();
    const DebugLog log;
    factory.click("COM1 RS232");
    factory.click("COM1 RS232"); // at once, before the event loop runs
    QCOMPARE(log.lines().filter(" true").size(), 2);
    QCOMPARE(log.lines().filter(" 76").size(), 2);
    plug("whole", "none", "none");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0) + okLines);
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0) + okLines);
}

void TestSerialTest::otherPortMeanwhile()
{
    plug("silent", "whole", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    factory.click("COM2 RS232");
    QTRY_COMPARE(factory.result(), payload(1) + okLines);
}

void TestSerialTest::echoOfAnEarlierTestGivesNoVerdict()
{
    plug("late:300", "late:900", "late:600");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    factory.click("COM2 RS232");
    QTRY_COMPARE(factory.result(), payload(1) + okLines);
    factory.click("COM2 RS232");
    factory.click("COM3 RS232");
    QTRY_COMPARE(factory.result(), payload(2) + okLines);
    QTest::qWait(300); // the echo of COM2 comes late and must give no verdict
    QCOMPARE(factory.result(), payload(2) + okLines);
}

void TestSerialTest::verdictFreesThePort()
{
    FactoryWindow factory;
    factory.click("Test");
    const qint64 before = openFiles();
    for (int round = 0; round < 3; ++round) {
        factory.click("COM1 RS232");
        QTRY_COMPARE(verdicts(factory), 1);
    }
    QTRY_COMPARE(openFiles(), before);
    QSerialPort port("ttyS0");
    QVERIFY(port.open(QIODevice::ReadWrite)); // its lock is free
}

void TestSerialTest::cannotOpen_data()
{
    QTest::addColumn<QString>("make");
    QTest::newRow("missing") << "true";
    QTest::newRow("folder") << "mkdir /dev/ttyS0";
    QTest::newRow("ordinary file") << "echo text >/dev/ttyS0";
    QTest::newRow("link to nothing") << "ln -s /nonexistent /dev/ttyS0";
}

void TestSerialTest::cannotOpen()
{
    QFETCH(QString, make);
    plug("none", "none", "none");
    QCOMPARE(QProcess::execute("sh", {"-c", make}), 0);
    const FactoryWindow factory;
    factory.click("Test");
    const DebugLog log;
    factory.click("COM1 RS232");
    factory.click("COM1 RS232");
    QTest::qWait(50); // no verdict may come
    QProcess::execute("rm", {"-rf", "/dev/ttyS0"});
    QCOMPARE(factory.result(), QString());
    const QString line = "void SoftwareSetup::slotCOM232Test() \"/dev/ttyS0\" false";
    QCOMPARE(log.lines(), (QStringList{line, line}));
}

void TestSerialTest::noPermission()
{
    const FactoryWindow factory;
    factory.click("Test");
    const DebugLog log;
    setfsuid(nobody); // permissions do not stop root
    factory.click("COM1 RS232");
    setfsuid(geteuid());
    QCOMPARE(log.lines(), QStringList{"void SoftwareSetup::slotCOM232Test() \"/dev/ttyS0\" false"});
    QCOMPARE(factory.result(), QString());
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0) + okLines);
}

void TestSerialTest::slotsWithoutASender()
{
    const FactoryWindow factory;
    factory.window()->slotCOM232Test();
    factory.window()->slotCOMEcho();
    factory.window()->slotBuzzerTest3();
    QCOMPARE(factory.result(), QString());
    QCOMPARE(factory.calls(), QStringList());
}

void TestSerialTest::busy()
{
    const FactoryWindow factory;
    factory.click("Test");
    QSerialPort other("ttyS0");
    QVERIFY(other.open(QIODevice::ReadWrite));
    factory.click("COM2 RS232");
    QTRY_COMPARE(verdicts(factory), 1);
    factory.click("COM1 RS232");
    QTest::qWait(50);                      // no verdict may come
    QCOMPARE(factory.result(), QString()); // the view is cleared even if the port does not open
    other.close();
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), payload(0) + okLines);
}

void TestSerialTest::unplugged_data()
{
    QTest::addColumn<QString>("mode");
    QTest::newRow("before the echo") << "cut:0";
    QTest::newRow("in the middle") << "cut:30";
}

void TestSerialTest::unplugged()
{
    QFETCH(QString, mode);
    plug(mode, "whole", "none");
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    QTest::qWait(400); // longer than the pause: at most one verdict may come, and not "Ok"
    QVERIFY(!factory.result().contains("Ok"));
    QVERIFY(verdicts(factory) <= 1);
    const std::clock_t before = std::clock();
    QTest::qWait(300); // the program must not spin on the dead line
    const double busy = double(std::clock() - before) / CLOCKS_PER_SEC;
    QVERIFY2(busy < 0.1, qPrintable(QString::number(busy)));
    factory.click("COM1 RS232"); // its device is gone
    QTest::qWait(50);            // no verdict may come
    QCOMPARE(factory.result(), QString());
    factory.click("COM2 RS232");
    QTRY_COMPARE(factory.result(), payload(1) + okLines);
}

void TestSerialTest::windowClosedMeanwhile()
{
    plug("late:100", "silent", "late:100");
    const qint64 before = openFiles();
    FactoryWindow factory;
    factory.click("Test");
    factory.click("COM1 RS232");
    factory.click("COM2 RS232");
    factory.click("COM3 RS232");
    factory.close();
    QTest::qWait(200); // late echoes must not reach the destroyed window
    QVERIFY(openFiles() <= before);
}

void TestSerialTest::noPauseTool()
{
    const FactoryWindow factory;
    factory.click("Test");
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    factory.click("COM1 RS232");
    QTRY_COMPARE(verdicts(factory), 1);
    qputenv("PATH", path);
    QCOMPARE(factory.result(), payload(0) + okLines);
}

QTEST_MAIN(TestSerialTest)
#include "tst_serialtest.moc"
