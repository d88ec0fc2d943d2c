#pragma once

#include <QString>
#include <QStringList>

#include <array>

/// How a LAN port comes up at boot.
enum class PortMode { Disabled, Dhcp, Static };

/// One LAN port in the interfaces file.
struct PortSetup
{
    PortMode mode = PortMode::Disabled;
    QString address; ///< only with Static; written unchecked
    QString mask;    ///< only with Static; written unchecked
};

/// Both LAN ports, "eth0" first.
using PortSetups = std::array<PortSetup, 2>;

/// Content of ifupdown's file /etc/network/interfaces, see interfaces(5): the loopback stanza, then
/// one stanza for each port that is not disabled.
QString interfacesFileText(const PortSetups &ports);

/// udev rules that name the network interfaces. The @p hardwareAddresses are sorted as text, with
/// digits and capitals before small letters; the first one becomes "eth0", the next one "eth1" and
/// so on. Every rule ends with a blank, a line feed and three blanks. Empty without addresses.
QString interfaceNamingRules(QStringList hardwareAddresses);
