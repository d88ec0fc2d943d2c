#include "factory/softwaresetup.h"

#include "factorywindow.h"
#include "panelguard.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

namespace {

QString payload(int number)
{
    return QString("5:%1:").arg(number) + alphabet;
}

void network(const QStringList &arguments)
{
    QCOMPARE(QProcess::execute(PANEL_SIMULATOR "/network", arguments), 0);
}

void ip(const QString &arguments)
{
    QCOMPARE(QProcess::execute("ip", arguments.split(' ')), 0);
}

void setPeer(const FactoryWindow &factory, const QString &address)
{
    factory.window()->findChild<QLineEdit *>("peerAddressEdit")->setText(address);
}
} // namespace

class TestEtherTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void eachPort_data();
    void eachPort();
    void echoes_data();
    void echoes();
    void splitEchoFails();
    void longEchoIsReadToItsEnd();
    void markupIsShownAsItIs();
    void silentPeer();
    void notConnected_data();
    void notConnected();
    void noPeerAddress_data();
    void noPeerAddress();
    void noPort_data();
    void noPort();
    void anotherPeer_data();
    void anotherPeer();
    void startedAgain();
    void echoOfAnEarlierTestGivesNoVerdict();
    void serialTestMeanwhile();
    void verdictEndsTheConnection();
    void windowClosedMeanwhile();
};

void TestEtherTest::initTestCase()
{
    requirePanel();
    ip("address add 192.168.0.10/24 dev eth0");
    ip("ntable change name arp_cache dev eth0 retrans 100"); // ms; missing hosts fail sooner
}

void TestEtherTest::init()
{
    network({"peer", "eth0", "whole"});
}

void TestEtherTest::eachPort_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("Eth0") << 1;
    QTest::newRow("Eth1") << 2;
}

void TestEtherTest::eachPort()
{
    QFETCH(int, number);
    const FactoryWindow factory;
    factory.click("Test");
    factory.click(QString("Eth%1").arg(number - 1));
    QTRY_COMPARE(factory.result(), payload(number) + okLines);
    QCOMPARE(factory.calls(), QStringList()); // unlike a serial test, this one does not pause
}

void TestEtherTest::echoes_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("result");
    const QString sent = payload(1);
    QTest::newRow("late") << "late:700" << sent + okLines;
    QTest::newRow("one byte changed")
        << "changed" << sent.left(40) + '#' + sent.mid(41) + failLines;
    QTest::newRow("one byte more") << "extra" << sent + '#' + failLines;
    QTest::newRow("one byte less") << "missing" << sent.left(40) + sent.mid(41) + failLines;
    QTest::newRow("trailing zero byte") << "zero" << sent + okLines;
    QTest::newRow("closed after a part") << "cut:30" << sent.left(30) + failLines;
    QTest::newRow("closed at once") << "cut:0" << QString();
    QTest::newRow("closed after the echo") << "cut:66" << sent + okLines;
    QTest::newRow("in parts") << "chunks:250" << sent.left(17) + failLines;
}

void TestEtherTest::echoes()
{
    QFETCH(QString, mode);
    QFETCH(QString, result);
    network({"peer", "eth0", mode});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTRY_COMPARE(factory.result(), result);
    QTest::qWait(300); // a further part, 250 ms later, must find no reader
    QCOMPARE(factory.result(), result);
}

/// The program prints each part that it reads on a line of its own and compares each with the text.
void TestEtherTest::splitEchoFails()
{
    network({"peer", "eth0", "bytes"});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTRY_VERIFY(factory.result().endsWith(failLines));
    QVERIFY(payload(1).startsWith(factory.result().section('\n', 0, 0)));
}

void TestEtherTest::longEchoIsReadToItsEnd()
{
    network({"peer", "eth0", "long"});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTRY_VERIFY(factory.result().endsWith(failLines));
    const QString whole = payload(1).repeated(20);
    QCOMPARE(factory.result(), whole.left(1024) + '\n' + whole.mid(1024) + failLines);
}

void TestEtherTest::markupIsShownAsItIs()
{
    network({"peer", "eth0", "markup"});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTRY_COMPARE(factory.result(), "<b>5</b>&amp;<img src='/dev/null'>" + failLines);
}

void TestEtherTest::silentPeer()
{
    network({"peer", "eth0", "silent"});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTest::qWait(200); // no verdict may come
    QCOMPARE(factory.result(), QString());
}

void TestEtherTest::notConnected_data()
{
    QTest::addColumn<QStringList>("fault");
    QTest::addColumn<QString>("address");
    QTest::newRow("refused") << QStringList{"peer", "eth0", "refusing"} << "192.168.0.30:33";
    QTest::newRow("no such network") << QStringList() << "10.9.8.7:33";
    QTest::newRow("no such name") << QStringList() << "no.such.host.invalid:33";
    QTest::newRow("no such host in the network") << QStringList() << "192.168.0.77:33";
}

void TestEtherTest::notConnected()
{
    QFETCH(QStringList, fault);
    QFETCH(QString, address);
    if (!fault.isEmpty()) {
        network(fault);
    }
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    setPeer(factory, address);
    QElapsedTimer timer;
    timer.start();
    factory.click("Eth1");
    QVERIFY2(timer.elapsed() < 31000, qPrintable(QString::number(timer.elapsed())));
    QTest::qWait(50); // no verdict may come
    QCOMPARE(factory.result(), QString());
    init();
    setPeer(factory, "192.168.0.30:33");
    factory.click("Eth1");
    QTRY_COMPARE(factory.result(), payload(2) + okLines);
}

void TestEtherTest::noPeerAddress_data()
{
    QTest::addColumn<QString>("address");
    for (const char *address : {"", ":", ":33", "  :33", "192.168.0.30"}) {
        QTest::addRow("'%s'", address) << address;
    }
}

/// The result of the last test stays on the screen as well.
void TestEtherTest::noPeerAddress()
{
    QFETCH(QString, address);
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTRY_COMPARE(factory.result(), payload(1) + okLines);
    setPeer(factory, address);
    factory.click("Eth1");
    QCOMPARE(factory.result(), payload(1) + okLines);
    QTRY_COMPARE(factory.window()->findChildren<QTcpSocket *>().size(), 0);
    setPeer(factory, "192.168.0.30:33");
    factory.click("Eth1");
    QTRY_COMPARE(factory.result(), payload(2) + okLines);
}

void TestEtherTest::noPort_data()
{
    QTest::addColumn<QString>("address");
    for (const char *address : {"127.0.0.1:", "127.0.0.1:0", "127.0.0.1:65569", "127.0.0.1:-1",
                                "127.0.0.1:echo", "127.0.0.1::33"}) {
        QTest::addRow("'%s'", address) << address;
    }
}

void TestEtherTest::noPort()
{
    QFETCH(QString, address);
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTRY_COMPARE(factory.result(), payload(1) + okLines);
    setPeer(factory, address);
    factory.click("Eth1");
    QCOMPARE(factory.result(), QString()); // the test has started, but cannot connect
}

void TestEtherTest::anotherPeer_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("host and port") << "127.0.0.1:%1";
    QTest::newRow("further parts") << "127.0.0.1:%1:x:7";
}

void TestEtherTest::anotherPeer()
{
    QFETCH(QString, address);
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const FactoryWindow factory;
    factory.click("Test");
    setPeer(factory, address.arg(server.serverPort()));
    factory.click("Eth1");
    QVERIFY(server.hasPendingConnections() || server.waitForNewConnection(1000));
    QTcpSocket *peer = server.nextPendingConnection();
    QTRY_COMPARE(peer->bytesAvailable(), 66);
    QCOMPARE(peer->readAll(), payload(2).toLatin1());
    peer->write(payload(2).toLatin1());
    QTRY_COMPARE(factory.result(), payload(2) + okLines);
    QTRY_COMPARE(peer->state(), QAbstractSocket::UnconnectedState);
}

void TestEtherTest::startedAgain()
{
    network({"peer", "eth0", "silent"});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    factory.click("Eth0");
    init();
    factory.click("Eth1");
    QTRY_COMPARE(factory.result(), payload(2) + okLines);
}

void TestEtherTest::echoOfAnEarlierTestGivesNoVerdict()
{
    network({"peer", "eth0", "late:400"});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    QTest::qWait(200); // so the echo of Eth0 comes first
    factory.click("Eth1");
    QTRY_COMPARE(factory.result(), payload(2) + okLines);
    factory.click("Eth0");
    QTest::qWait(200); // the peer reads this text before another peer replaces it
    init();
    factory.click("Eth1");
    QTRY_COMPARE(factory.result(), payload(2) + okLines);
    QTest::qWait(300); // the echo of Eth0 comes late and must give no verdict
    QCOMPARE(factory.result(), payload(2) + okLines);
}

void TestEtherTest::serialTestMeanwhile()
{
    network({"peer", "eth0", "silent"});
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    factory.click("COM1 RS232");
    QTRY_COMPARE(factory.result(), "10:/dev/ttyS0:" + alphabet + okLines);
}

void TestEtherTest::verdictEndsTheConnection()
{
    const FactoryWindow factory;
    factory.click("Test");
    for (int round = 0; round < 3; ++round) {
        factory.click("Eth0");
        QTRY_COMPARE(factory.result(), payload(1) + okLines);
        QTRY_COMPARE(factory.window()->findChildren<QTcpSocket *>().size(), 0);
    }
}

void TestEtherTest::windowClosedMeanwhile()
{
    network({"peer", "eth0", "late:100"});
    FactoryWindow factory;
    factory.click("Test");
    factory.click("Eth0");
    factory.click("Eth1");
    factory.close();
    QTest::qWait(200); // late echoes must not reach the destroyed window
}

QTEST_MAIN(TestEtherTest)
#include "tst_ethertest.moc"
