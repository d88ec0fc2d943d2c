#include "system/formats/networkfiles.h"

#include "commandtext.h"
#include "system/run/commandline.h"

#include <QTest>

Q_DECLARE_METATYPE(PortSetup)

namespace {
const QString loopback = "auto lo \niface lo inet loopback\n\n";
} // namespace

class TestInterfacesFile : public QObject
{
    Q_OBJECT
private slots:
    void text_data();
    void text();
    void commands();
};

void TestInterfacesFile::text_data()
{
    QTest::addColumn<PortSetup>("first");
    QTest::addColumn<PortSetup>("second");
    QTest::addColumn<QString>("stanzas");
    const PortSetup off;
    const PortSetup dhcp{PortMode::Dhcp, "ignored", "ignored"};
    const PortSetup fixed{PortMode::Static, "192.168.0.10", "255.255.255.0"};
    const QString dhcp0 = "auto eth0\niface eth0 inet dhcp\n\n";
    const QString dhcp1 = "auto eth1\niface eth1 inet dhcp\n\n";
    const QString fixed0 = "auto eth0\niface eth0 inet static\n"
                           "address 192.168.0.10\nnetmask 255.255.255.0\n\n";
    const QString fixed1 = "auto eth1\niface eth1 inet static\n"
                           "address 192.168.0.10\nnetmask 255.255.255.0\n\n";
    QTest::newRow("off, off") << off << off << QString();
    QTest::newRow("off, dhcp") << off << dhcp << dhcp1;
    QTest::newRow("off, static") << off << fixed << fixed1;
    QTest::newRow("dhcp, off") << dhcp << off << dhcp0;
    QTest::newRow("dhcp, dhcp") << dhcp << dhcp << dhcp0 + dhcp1;
    QTest::newRow("dhcp, static") << dhcp << fixed << dhcp0 + fixed1;
    QTest::newRow("static, off") << fixed << off << fixed0;
    QTest::newRow("static, dhcp") << fixed << dhcp << fixed0 + dhcp1;
    QTest::newRow("static, static") << fixed << fixed << fixed0 + fixed1;
    QTest::newRow("empty texts") << PortSetup{PortMode::Static, "", ""} << off
                                 << "auto eth0\niface eth0 inet static\naddress \nnetmask \n\n";
    QTest::newRow("placeholders in a text")
        << PortSetup{PortMode::Static, "%4%1", "%2"} << off
        << "auto eth0\niface eth0 inet static\naddress %4%1\nnetmask %2\n\n";
}

void TestInterfacesFile::text()
{
    QFETCH(PortSetup, first);
    QFETCH(PortSetup, second);
    QFETCH(QString, stanzas);
    QCOMPARE(interfacesFileText({first, second}), loopback + stanzas);
}

void TestInterfacesFile::commands()
{
    QCOMPARE(addressQueryCommand("eth1"), (Command{"ifconfig", {"eth1"}}));
    QCOMPARE(setAddressCommand("eth0", "10.0.0.1"), (Command{"ifconfig", {"eth0", "10.0.0.1"}}));
    QCOMPARE(setAddressCommand("eth0", ""), (Command{"ifconfig", {"eth0", ""}}));
    QCOMPARE(obtainLeaseCommand("eth1"), (Command{"dhclient", {"eth1"}}));
    QCOMPARE(releaseLeaseCommand(), (Command{"dhclient", {"eth0", "-r"}}));
}

QTEST_GUILESS_MAIN(TestInterfacesFile)
#include "tst_interfacesfile.moc"
