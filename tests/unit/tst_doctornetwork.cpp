#include "healthypanel.h"

#include <QTest>

using End = ToolResult::End;

using namespace Doctor;

namespace {
constexpr char today[]
    = "eth0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"
      "        inet 192.168.0.5  netmask 255.255.255.0  broadcast 192.168.0.255\n"
      "        ether 02:00:00:00:00:01  txqueuelen 1000  (Ethernet)\n";
constexpr char rule[] = R"(SUBSYSTEM=="net", ACTION=="add", DRIVERS=="?*", ATTR{address}=="%1", )"
                        R"(ATTR{dev_id}=="0x0", ATTR{type}=="1", KERNEL=="eth*", NAME="%2" )";

void putRule(Facts &facts, const QString &address, const QString &name)
{
    putFile(facts, Paths::namingRulesFile, QString(rule).arg(address, name).toUtf8() + "\n   ");
}

void putInterfaces(Facts &facts, const QByteArray &text)
{
    putFile(facts, Paths::interfacesFile, "auto lo \niface lo inet loopback\n\n" + text);
}

const QList<BrokenThing> &brokenThings()
{
    // clang-format off
    static const QList<BrokenThing> things{
        {"no second port", [](Facts &f) { f.interfaces.remove(1); },
         {"error LAN ports: there is no eth1",
          "warning ifconfig: eth1 is not checked: there is no such port",
          "warning interface list: addresses of interfaces other than eth0 and eth1: 02:00:00:00:00:02"}},
        {"names of today", [](Facts &f) { f.interfaces[0].name = "enp1s0"; f.interfaces[1].name = "enp2s0"; },
         {"error LAN ports: there is no eth0; there are enp1s0, enp2s0",
          "error LAN ports: there is no eth1; there are enp1s0, enp2s0",
          "warning ifconfig: eth0 is not checked: there is no such port",
          "warning ifconfig: eth1 is not checked: there is no such port",
          "warning interface list: addresses of interfaces other than eth0 and eth1: 02:00:00:00:00:01, 02:00:00:00:00:02"}},
        {"format of today", [](Facts &f) { answer(f, Question::FirstPort, today); },
         {"error ifconfig: what ifconfig prints of eth0 is not in the classic format"}},
        {"format of today, second port", [](Facts &f) { answer(f, Question::SecondPort, today); },
         {"error ifconfig: what ifconfig prints of eth1 is not in the classic format"}},
        {"address of today", [](Facts &f) { answer(f, Question::FirstPort, "eth0 HWaddr 02:00:00:00:00:01\n inet 10.0.0.1\n"); },
         {"error ifconfig: what ifconfig prints of eth0 is not in the classic format"}},
        {"long hardware address", [](Facts &f) { answer(f, Question::FirstPort, "eth0 HWaddr 02:00:00:00:00:01 and more than 30 characters\n"); },
         {"error ifconfig: what ifconfig prints of eth0 is not in the classic format"}},
        {"no broadcast address", [](Facts &f) { answer(f, Question::FirstPort, "eth0 HWaddr 02:00:00:00:00:01\n inet addr:10.0.0.1  Mask:255.0.0.0\n"); },
         {"warning ifconfig: the address of eth0 reads \"10.0.0.1 Mask:255.0.0.0\""}},
        {"error text on the side", [](Facts &f) { answer(f, Question::SecondPort, "eth1 HWaddr 02:00:00:00:00:02\n", "warning"); }, {}},
        {"list in today's format", [](Facts &f) { answer(f, Question::Interfaces, today); },
         {"error interface list: \"ifconfig\" lists no hardware address that the program reads"}},
        {"a bridge", [](Facts &f) { answer(f, Question::Interfaces, "eth0 HWaddr 02:00:00:00:00:01\nbr0 HWaddr 02:00:00:00:00:03\n"); },
         {"warning interface list: addresses of interfaces other than eth0 and eth1: 02:00:00:00:00:03"}},
        {"addresses in capitals", [](Facts &f) {
             f.interfaces[0].address = "02:00:00:00:00:aa";
             answer(f, Question::Interfaces, "eth0 HWaddr 02:00:00:00:00:AA\n");
         }, {}},
        {"another DHCP client", [](Facts &f) { answer(f, Question::DhcpVersion, "dhcpcd 9.4.1"); },
         {"error DHCP client: dhclient is not the one from ISC"}},
        {"version on the other stream", [](Facts &f) { answer(f, Question::DhcpVersion, "isc-dhclient-4.4.3"); }, {}},

        {"no interfaces file", [](Facts &f) { f.paths.remove(Paths::interfacesFile); },
         {"error interfaces file: there is no /etc/network/interfaces"}},
        {"folder in its place", [](Facts &f) { f.paths[Paths::interfacesFile].kind = PathFacts::Kind::Folder; },
         {"error interfaces file: /etc/network/interfaces cannot be read"}},
        {"interfaces file of another user", [](Facts &f) { f.paths[Paths::interfacesFile].isReadable = false; },
         {"error interfaces file: /etc/network/interfaces cannot be read"}},
        {"empty address", [](Facts &f) { putInterfaces(f, "auto eth0\niface eth0 inet static\naddress \nnetmask 255.0.0.0\n"); },
         {"error interfaces file: \"address\" has no value in /etc/network/interfaces: ifupdown refuses the whole file"}},
        {"file that ifupdown refuses", [](Facts &f) { answer(f, Question::InterfacesFile, "", "ifquery: misplaced option", 1); },
         {"error interfaces file: \"tool -x\" fails with status 1: ifquery: misplaced option"}},
        {"no ifupdown", [](Facts &f) { f.ifquery.clear(); f.answers[size_t(Question::InterfacesFile)].reset(); },
         {"warning interfaces file: ifquery is missing: whether ifupdown accepts the file is unknown"}},
        {"no ifupdown, empty address", [](Facts &f) { f.ifquery.clear(); putInterfaces(f, "iface eth0 inet static\naddress\n"); },
         {"error interfaces file: \"address\" has no value in /etc/network/interfaces: ifupdown refuses the whole file"}},
        {"one foreign line", [](Facts &f) { putInterfaces(f, "# a comment\nsource  /etc/network/interfaces.d/*\n"); },
         {"warning interfaces file: the next save of the Ethernet page removes \"source /etc/network/interfaces.d/*\""}},
        {"a bridge in the file", [](Facts &f) { putInterfaces(f, "auto br0\niface br0 inet manual\n  bridge_ports eth0\n"); },
         {"warning interfaces file: the next save of the Ethernet page removes \"auto br0\" and 2 more lines"}},
        {"a gateway", [](Facts &f) { putInterfaces(f, "iface eth0 inet static\n address 10.0.0.1\n gateway 10.0.0.2\n"); },
         {"warning interfaces file: the next save of the Ethernet page removes \"gateway 10.0.0.2\""}},

        {"rules that fit", [](Facts &f) { putRule(f, "02:00:00:00:00:01", "eth0"); }, {}},
        {"rule in capitals", [](Facts &f) { f.interfaces[0].address = "02:00:00:00:00:ab"; answer(f, Question::Interfaces, "HWaddr 02:00:00:00:00:AB"); putRule(f, "02:00:00:00:00:AB", "eth0"); }, {}},
        {"empty rules", [](Facts &f) { putFile(f, Paths::namingRulesFile, ""); },
         {"warning naming rules: /etc/udev/rules.d/70-persistent-net.rules does not name any port"}},
        {"rule of an exchanged board", [](Facts &f) { putRule(f, "02:00:00:00:00:09", "eth0"); },
         {"warning naming rules: eth0 should have the address 02:00:00:00:00:09 but does not"}},
        {"rule of a third port", [](Facts &f) { putRule(f, "02:00:00:00:00:03", "eth2"); },
         {"warning naming rules: eth2 should have the address 02:00:00:00:00:03 but does not"}},
        {"rules that cannot be read", [](Facts &f) { putRule(f, "02:00:00:00:00:01", "eth0"); f.paths[Paths::namingRulesFile].isReadable = false; },
         {"error naming rules: /etc/udev/rules.d/70-persistent-net.rules cannot be read"}},
        {"folder in place of the rules", [](Facts &f) { f.paths[Paths::namingRulesFile].kind = PathFacts::Kind::Folder; },
         {"error naming rules: /etc/udev/rules.d/70-persistent-net.rules cannot be read"}},

        {"no serial port", [](Facts &f) { f.serialPorts[0] = SerialPort::Missing; },
         {"warning serial ports: there is no /dev/ttyS0"}},
        {"port without hardware", [](Facts &f) { f.serialPorts[1] = SerialPort::NoDevice; },
         {"warning serial ports: /dev/ttyS1 has no hardware"}},
        {"port of another", [](Facts &f) { f.serialPorts[2] = SerialPort::Refused; },
         {"warning serial ports: /dev/ttyS2 cannot be opened"}},
    };
    // clang-format on
    return things;
}
} // namespace

class TestDoctorNetwork : public QObject
{
    Q_OBJECT
private slots:
    void brokenThing_data() { addBrokenThings(brokenThings()); }
    void brokenThing();
};

void TestDoctorNetwork::brokenThing()
{
    QFETCH(qsizetype, index);
    QCOMPARE(judgeBrokenThing(brokenThings().at(index)), QString());
}

QTEST_GUILESS_MAIN(TestDoctorNetwork)
#include "tst_doctornetwork.moc"
