#include "system/output/ifconfigoutput.h"
#include "system/run/process.h"

#include <QTest>

class TestIfconfigOutput : public QObject
{
    Q_OBJECT
private slots:
    void parses_data();
    void parses();
    void parsesHardwareAddress_data();
    void parsesHardwareAddress();
    void listsHardwareAddresses_data();
    void listsHardwareAddresses();
};

void TestIfconfigOutput::parses_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("mask");
    QTest::newRow("BusyBox") << QByteArray(
        "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:01  \n"
        "          inet addr:192.168.0.123  Bcast:192.168.0.255  "
        "Mask:255.255.255.0\n"
        "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n")
                             << "192.168.0.123"
                             << "255.255.255.0\n     "; // the mask and five more characters
    QTest::newRow("old net-tools")
        << QByteArray("eth0      Link encap:Ethernet  HWaddr 00:0c:29:3e:1d:8a  \n"
                      "          inet addr:10.0.0.7  Bcast:10.255.255.255  Mask:255.0.0.0\n"
                      "          inet6 addr: fe80::20c:29ff:fe3e:1d8a/64 Scope:Link\n")
        << "10.0.0.7"
        << "255.0.0.0\n     ";
    QTest::newRow("today's net-tools")
        << QByteArray("eth0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"
                      "        inet 192.168.0.123  netmask 255.255.255.0  "
                      "broadcast 192.168.0.255\n")
        << "NULL"
        << "";
    QTest::newRow("no address") << QByteArray(
        "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:01  \n"
        "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n")
                                << "NULL"
                                << "";
    QTest::newRow("loopback has no Bcast")
        << QByteArray("          inet addr:127.0.0.1  Mask:255.0.0.0\n")
        << "127.0.0.1  Mask:255.0.0.0\n"
        << "255.0.0.0\n"; // without "Bcast" the address is the rest of the text
    QTest::newRow("Bcast before the address")
        << QByteArray("Bcast:1 inet addr:5.6.7.8  ") << "5.6.7.8"
        << "";
    QTest::newRow("Bcast right after the label") << QByteArray("inet addr:Bcast:1\n") << ""
                                                 << "";
    QTest::newRow("blanks alone") << QByteArray("inet addr:    Bcast:1\n") << ""
                                  << "";
    QTest::newRow("blanks are cut, a tab stays")
        << QByteArray("inet addr:1.2.3.4\t  Bcast:1\n") << "1.2.3.4\t"
        << "";
    QTest::newRow("mask at the end of the text") << QByteArray("Mask:255.0.0.0") << "NULL"
                                                 << "";
    QTest::newRow("blank after the mask") << QByteArray("Mask:255.0.0.0 abcdefgh") << "NULL"
                                          << "255.0.0.0 abcde";
    QTest::newRow("CR after the mask") << QByteArray("Mask:255.0.0.0\r\nabcdefgh") << "NULL"
                                       << "255.0.0.0\r\nabcd";
    QTest::newRow("short text after the mask") << QByteArray("Mask:1\nab") << "NULL"
                                               << "1\nab";
    QTest::newRow("empty mask") << QByteArray("Mask:\nabcdefgh") << "NULL"
                                << "\nabcde";
    QTest::newRow("other case") << QByteArray("INET ADDR:1.2.3.4 mask:1\n") << "NULL"
                                << "";
    QTest::newRow("cut at a zero byte")
        << QByteArray("inet addr:1.2.3.4  Bcast:5\0Mask:255.0.0.0\n", 42) << "1.2.3.4"
        << "";
    QTest::newRow("nothing") << QByteArray() << "NULL"
                             << "";
    QTest::newRow("1 MB of something else") << QByteArray(1'000'000, 'x') << "NULL"
                                            << "";
    QTest::newRow("1 MB before the address")
        << QByteArray(1'000'000, ' ') + "inet addr:1.2.3.4  Bcast:5 Mask:6\nabcdef"
        << "1.2.3.4"
        << "6\nabcde";
}

void TestIfconfigOutput::parses()
{
    QFETCH(QByteArray, output);
    QFETCH(QString, address);
    QFETCH(QString, mask);
    const InterfaceAddress found = parseInterfaceAddress(byteText(output));
    QCOMPARE(found.address, address);
    QCOMPARE(found.mask, mask);
}

void TestIfconfigOutput::parsesHardwareAddress_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QString>("address");
    QTest::newRow("BusyBox") << QByteArray("eth0      Link encap:Ethernet  "
                                           "HWaddr 00:11:22:33:44:55  \n          UP\n")
                             << "00:11:22:33:44:55";
    QTest::newRow("today's net-tools")
        << QByteArray("eth0: flags=4163<UP>\n        ether 00:11:22:33:44:55  txqueuelen 1000\n")
        << "NULL";
    QTest::newRow("nothing") << QByteArray() << "NULL";
    QTest::newRow("no blank after HWaddr") << QByteArray("HWaddr\t00:11\n") << "NULL";
    QTest::newRow("other case") << QByteArray("hwaddr 00:11\n") << "NULL";
    QTest::newRow("30 characters") << QByteArray("HWaddr ") + QByteArray(30, 'x') + '\n'
                                   << QString(30, 'x');
    QTest::newRow("31 characters") << QByteArray("HWaddr ") + QByteArray(31, 'x') + '\n' << "";
    QTest::newRow("31 with its blanks") << QByteArray("HWaddr 00:11") + QByteArray(26, ' ') + '\n'
                                        << "";
    QTest::newRow("no line end") << QByteArray("HWaddr 00:11 ") << "00:11";
    QTest::newRow("blanks alone") << QByteArray("HWaddr    \n") << "";
    QTest::newRow("a tab stays") << QByteArray("HWaddr 00:11\t \n") << "00:11\t";
    QTest::newRow("the first one") << QByteArray("HWaddr 1\nHWaddr 2\n") << "1";
    QTest::newRow("cut at a zero byte") << QByteArray("HWaddr 00\0:11\n", 14) << "00";
    QTest::newRow("1 MB") << QByteArray("HWaddr ") + QByteArray(1'000'000, 'x') << "";
}

void TestIfconfigOutput::parsesHardwareAddress()
{
    QFETCH(QByteArray, output);
    QFETCH(QString, address);
    QCOMPARE(parseHardwareAddress(byteText(output)), address);
}

void TestIfconfigOutput::listsHardwareAddresses_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("addresses");
    QTest::newRow("nothing") << "" << QStringList{};
    QTest::newRow("BusyBox, with loopback")
        << "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:01  \n          UP\n\n"
           "eth1      Link encap:Ethernet  HWaddr 02:00:00:00:00:02  \n\n"
           "lo        Link encap:Local Loopback  \n"
        << QStringList{"02:00:00:00:00:01", "02:00:00:00:00:02"};
    QTest::newRow("trailing text") << "HWaddr  02:00 \t and  more \n"
                                   << QStringList{"02:00 and more"};
    QTest::newRow("duplicates stay") << "HWaddr 1\nHWaddr 1" << QStringList{"1", "1"};
    QTest::newRow("no address") << "x HWaddr\n" << QStringList{""};
    QTest::newRow("other case") << "HWADDR 1\n" << QStringList{};
}

void TestIfconfigOutput::listsHardwareAddresses()
{
    QFETCH(QString, output);
    QFETCH(QStringList, addresses);
    QCOMPARE(hardwareAddresses(output), addresses);
}

QTEST_GUILESS_MAIN(TestIfconfigOutput)
#include "tst_ifconfigoutput.moc"
