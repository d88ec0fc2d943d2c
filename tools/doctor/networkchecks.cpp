#include "answers.h"
#include "checks.h"
#include "common/addresses.h"

#include "system/output/ifconfigoutput.h"
#include "system/settings/settingskeys.h"

#include <QRegularExpression>

namespace Doctor {
namespace {
constexpr char classicAdvice[]
    = "put an ifconfig of the classic format, such as BusyBox's, first on PATH";
constexpr QLatin1String notFound("NULL"); // what the program's parsers return

struct Port
{
    int lan;
    Question question;
};
constexpr Port ports[] = {{0, Question::FirstPort}, {1, Question::SecondPort}};

const Interface *findInterface(const Facts &facts, const QString &name)
{
    for (const Interface &interface : facts.interfaces) {
        if (interface.name == name) {
            return &interface;
        }
    }
    return nullptr;
}

/// Names of the interfaces that are neither LAN ports nor the loopback.
QStringList otherInterfaces(const Facts &facts)
{
    QStringList names;
    for (const Interface &interface : facts.interfaces) {
        if (!interface.isLoopback
            && interface.name
                != ethernetKeys(0).interface && interface.name != ethernetKeys(1).interface) {
            names += interface.name;
        }
    }
    return names;
}

Finding checkPortFormat(const Facts &facts, const Port &port)
{
    const QString name = ethernetKeys(port.lan).interface;
    if (findInterface(facts, name) == nullptr) {
        return warning(QString("%1 is not checked: there is no such port").arg(name),
                       "see the line about the LAN port");
    }
    if (auto bad = badAnswer(facts, port.question, "addresses are not shown")) {
        return *bad;
    }
    const QString output = answerText(facts, port.question);
    static const QRegularExpression todaysAddress("\\binet [0-9]");
    const QString hardware = parseHardwareAddress(output);
    const InterfaceAddress address = parseInterfaceAddress(output);
    if (hardware == notFound || hardware.isEmpty()
        || (address.address == notFound && todaysAddress.match(output).hasMatch())) {
        return error(QString("what ifconfig prints of %1 is not in the classic format").arg(name),
                     QString(classicAdvice) + "; until then the pages show \"NULL\"");
    }
    if (address.address == notFound) {
        return fine(QString("%1 has %2 and no address now").arg(name, shortened(hardware)));
    }
    if (!ToolReport::isAddress(address.address)) {
        return warning(
            QString("the address of %1 reads \"%2\"").arg(name, shortened(address.address)),
            "give the port a broadcast address: the program reads up to \"Bcast:\"");
    }
    return fine(QString("%1 has %2 and %3").arg(name, shortened(hardware), address.address));
}
} // namespace

Findings checkPorts(const Facts &facts)
{
    Findings findings;
    for (const int lan : {0, 1}) {
        const QString name = ethernetKeys(lan).interface;
        if (const Interface *port = findInterface(facts, name)) {
            findings += fine(QString("%1 is there (%2)").arg(name, shortened(port->address)));
            continue;
        }
        const QStringList others = otherInterfaces(facts);
        findings += error(
            QString("there is no %1%2")
                .arg(name,
                     others.isEmpty() ? QString() : "; there are " + shortened(others.join(", "))),
            "make the kernel name the LAN ports eth0 and eth1: net.ifnames=0 on its "
            "command line, or udev rules as the factory window writes them");
    }
    return findings;
}

Findings checkIfconfig(const Facts &facts)
{
    Findings findings;
    for (const Port &port : ports) {
        findings += checkPortFormat(facts, port);
    }
    return findings;
}

Findings checkInterfaceList(const Facts &facts)
{
    if (const auto bad = badAnswer(facts, Question::Interfaces,
                                   "the factory window does not name the LAN ports")) {
        return {*bad};
    }
    const QStringList addresses = hardwareAddresses(answerText(facts, Question::Interfaces));
    if (addresses.isEmpty()) {
        return {error("\"ifconfig\" lists no hardware address that the program reads",
                      QString(classicAdvice)
                          + " and bring the ports up; until then the factory window writes an "
                            "empty file of naming rules")};
    }
    QStringList foreign;
    for (const QString &address : addresses) {
        const auto isPort = [&facts, &address](int lan) {
            const Interface *port = findInterface(facts, ethernetKeys(lan).interface);
            return port != nullptr && address.compare(port->address, Qt::CaseInsensitive) == 0;
        };
        if (!isPort(0) && !isPort(1)) {
            foreign += address;
        }
    }
    if (!foreign.isEmpty()) {
        return {warning(QString("addresses of interfaces other than eth0 and eth1: %1")
                            .arg(shortened(foreign.join(", "))),
                        "use an image without virtual interfaces on the production line: the "
                        "factory window makes a naming rule for each")};
    }
    return {fine(QString("%1 hardware addresses").arg(addresses.size()))};
}

Findings checkDhclient(const Facts &facts)
{
    const QString loss = "a port on DHCP gets no address before the next boot";
    if (const auto bad = badAnswer(facts, Question::DhcpVersion, loss)) {
        return {*bad};
    }
    // dhclient prints its version on standard error
    const ToolResult &answer = facts.answer(Question::DhcpVersion)->answer;
    const QString version = QString::fromLocal8Bit(answer.output + answer.errors);
    if (!version.contains(QLatin1String("isc-dhclient"))) {
        return {error("dhclient is not the one from ISC",
                      "install isc-dhcp-client: others do not accept the program's arguments")};
    }
    return {fine(shortened(version))};
}

Findings checkNamingRules(const Facts &facts)
{
    const PathFacts file = facts.path(Paths::namingRulesFile);
    if (file.kind == PathFacts::Kind::Missing) {
        return {fine(QString("no %1: the kernel numbers the ports").arg(Paths::namingRulesFile))};
    }
    const QString again = "press Save in the factory window again";
    if (file.kind != PathFacts::Kind::File || !file.isReadable) {
        return {
            error(QString("%1 cannot be read").arg(Paths::namingRulesFile), "remove it; " + again)};
    }
    static const QRegularExpression rule(
        R"re(ATTR\{address\}=="([^"]*)"[^\n]*NAME="(eth[0-9]+)")re");
    auto rules = rule.globalMatch(QString::fromUtf8(file.content));
    if (!rules.hasNext()) {
        return {warning(QString("%1 does not name any port").arg(Paths::namingRulesFile),
                        QString(classicAdvice) + ", then " + again)};
    }
    Findings findings;
    while (rules.hasNext()) {
        const auto found = rules.next();
        const Interface *port = findInterface(facts, found.captured(2));
        if (port == nullptr || port->address.compare(found.captured(1), Qt::CaseInsensitive) != 0) {
            findings += warning(QString("%1 should have the address %2 but does not")
                                    .arg(found.captured(2), shortened(found.captured(1))),
                                "restart the panel; if a board was replaced,  " + again);
        }
    }
    return findings.isEmpty() ? Findings{fine("the ports have the names from the rules")}
                              : findings;
}
} // namespace Doctor
