#include "system/formats/networkfiles.h"

namespace {
constexpr char ruleTemplate[]
    = R"(SUBSYSTEM=="net", ACTION=="add", DRIVERS=="?*", ATTR{address}=="%1", ATTR{dev_id}=="0x0", )"
      R"(ATTR{type}=="1", KERNEL=="eth*", NAME="eth%2")";
constexpr char ruleEnd[] = " \n   ";

QString portStanza(int number, const PortSetup &port)
{
    const QString name = QString::number(number);
    switch (port.mode) {
    case PortMode::Disabled:
        return {};
    case PortMode::Dhcp:
        return QString("auto eth%1\niface eth%2 inet dhcp\n\n").arg(name, name);
    case PortMode::Static:
        // One arg() call, so that a "%1" in a typed address is not replaced.
        return QString("auto eth%1\niface eth%2 inet static\naddress %3\nnetmask %4\n\n")
            .arg(name, name, port.address, port.mask);
    }
    return {};
}
} // namespace

QString interfacesFileText(const PortSetups &ports)
{
    QString text = "auto lo \niface lo inet loopback\n\n"; // "lo " has always had this blank
    for (int number = 0; number < int(ports.size()); ++number) {
        text += portStanza(number, ports[size_t(number)]);
    }
    return text;
}

QString interfaceNamingRules(QStringList hardwareAddresses)
{
    hardwareAddresses.sort();
    QString rules;
    for (qsizetype index = 0; index < hardwareAddresses.size(); ++index) {
        // One arg() call, because an address may itself contain "%2".
        rules += QString(ruleTemplate).arg(hardwareAddresses.at(index), QString::number(index));
        rules += QLatin1String(ruleEnd);
    }
    return rules;
}
