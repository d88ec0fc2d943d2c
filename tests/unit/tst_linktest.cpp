#include "factory/linktest.h"

#include <QSet>
#include <QTest>

class TestLinkTest : public QObject
{
    Q_OBJECT
private slots:
    void characters();
    void parsesPeerAddress_data();
    void parsesPeerAddress();
    void readsLinkNumber_data();
    void readsLinkNumber();
    void serialPayload_data();
    void serialPayload();
    void etherPayload_data();
    void etherPayload();
    void judges_data();
    void judges();
};

void TestLinkTest::characters()
{
    const QString characters = linkTestCharacters;
    QCOMPARE(characters.size(), 62);
    QCOMPARE(QSet<QChar>(characters.begin(), characters.end()).size(), 62);
    QVERIFY(characters.startsWith("1234567890abc") && characters.endsWith("XYZ"));
    QCOMPARE(QString(verdictRule), QString(38, '-'));
}

void TestLinkTest::parsesPeerAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("host"); // empty if the address is refused
    QTest::addColumn<int>("port");
    QTest::newRow("default") << "192.168.0.30:33"
                             << "192.168.0.30" << 33;
    QTest::newRow("name") << "peer.local:7"
                          << "peer.local" << 7;
    QTest::newRow("blanks") << " 10.0.0.1 : 80 "
                            << "10.0.0.1" << 80;
    QTest::newRow("first port") << "h:1"
                                << "h" << 1;
    QTest::newRow("last port") << "h:65535"
                               << "h" << 65535;
    QTest::newRow("leading zero") << "h:033"
                                  << "h" << 33;
    QTest::newRow("port 0") << "h:0"
                            << "h" << 0;
    QTest::newRow("port too large") << "h:65536"
                                    << "h" << 0;
    QTest::newRow("port far too large") << "192.168.0.30:99999"
                                        << "192.168.0.30" << 0;
    QTest::newRow("port beyond 32 bits") << "h:4294967329"
                                         << "h" << 0;
    QTest::newRow("negative port") << "h:-33"
                                   << "h" << 0;
    QTest::newRow("hexadecimal port") << "h:0x21"
                                      << "h" << 0;
    QTest::newRow("port is no number") << "h:echo"
                                       << "h" << 0;
    QTest::newRow("no port") << "192.168.0.30:"
                             << "192.168.0.30" << 0;
    QTest::newRow("no colon") << "192.168.0.30" << QString() << 0;
    QTest::newRow("a number alone") << "33" << QString() << 0;
    QTest::newRow("no host") << ":33" << QString() << 0;
    QTest::newRow("blank host") << "  :33" << QString() << 0;
    QTest::newRow("empty") << "" << QString() << 0;
    QTest::newRow("colon alone") << ":" << QString() << 0;
    QTest::newRow("third part is ignored") << "127.0.0.1:7001:x"
                                           << "127.0.0.1" << 7001;
    QTest::newRow("empty third part") << "h:33:"
                                      << "h" << 33;
    QTest::newRow("empty second part") << "h::33"
                                       << "h" << 0;
    QTest::newRow("IPv6, its first part taken as the name") << "fe80::1"
                                                            << "fe80" << 0;
    QTest::newRow("IPv6 that looks like a host and a port") << "2001:33::5"
                                                            << "2001" << 33;
    QTest::newRow("IPv6 in brackets") << "[::1]:33"
                                      << "[" << 0;
}

void TestLinkTest::parsesPeerAddress()
{
    QFETCH(QString, text);
    QFETCH(QString, host);
    QFETCH(int, port);
    const auto peer = parsePeerAddress(text);
    QCOMPARE(peer.has_value(), !host.isEmpty());
    if (peer) {
        QCOMPARE(peer->host, host);
        QCOMPARE(int(peer->port), port);
    }
}

void TestLinkTest::readsLinkNumber_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("number");
    QTest::newRow("COM") << "3-232" << 3;
    QTest::newRow("Ethernet") << "2-ether" << 2;
    QTest::newRow("no dash") << "2" << 2;
    QTest::newRow("no number") << "ether" << 0;
    QTest::newRow("empty") << "" << 0;
}

void TestLinkTest::readsLinkNumber()
{
    QFETCH(QString, name);
    QFETCH(int, number);
    QCOMPARE(linkNumber(name), number);
}

void TestLinkTest::serialPayload_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("start");
    QTest::newRow("COM1") << "/dev/ttyS0"
                          << "10:/dev/ttyS0:";
    QTest::newRow("COM3") << "/dev/ttyS2"
                          << "10:/dev/ttyS2:";
    QTest::newRow("longer name") << "/dev/ttyS10"
                                 << "11:/dev/ttyS10:";
}

void TestLinkTest::serialPayload()
{
    QFETCH(QString, device);
    QFETCH(QString, start);
    QCOMPARE(::serialPayload(device, linkTestCharacters), start + linkTestCharacters);
    QCOMPARE(::serialPayload(device, {}), start);
}

void TestLinkTest::etherPayload_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("start");
    QTest::newRow("Eth0") << 1 << "5:1:";
    QTest::newRow("Eth1") << 2 << "5:2:";
}

void TestLinkTest::etherPayload()
{
    QFETCH(int, number);
    QFETCH(QString, start);
    QCOMPARE(::etherPayload(number, linkTestCharacters), start + linkTestCharacters);
}

void TestLinkTest::judges_data()
{
    QTest::addColumn<QString>("received");
    QTest::addColumn<QString>("verdict");
    QTest::newRow("the same") << "5:1:ab"
                              << "Test Ok!";
    QTest::newRow("nothing") << ""
                             << "Test Fail!";
    QTest::newRow("one more") << "5:1:abc"
                              << "Test Fail!";
    QTest::newRow("one less") << "5:1:a"
                              << "Test Fail!";
    QTest::newRow("other case") << "5:1:aB"
                                << "Test Fail!";
    QTest::newRow("line break inside") << "5:1:\nab"
                                       << "Test Fail!";
    QTest::newRow("trailing line break") << "5:1:ab\n"
                                         << "Test Fail!";
    QTest::newRow("blank before") << " 5:1:ab"
                                  << "Test Fail!";
}

void TestLinkTest::judges()
{
    QFETCH(QString, received);
    QFETCH(QString, verdict);
    QCOMPARE(linkVerdict(received, "5:1:ab"), verdict);
}

QTEST_GUILESS_MAIN(TestLinkTest)
#include "tst_linktest.moc"
