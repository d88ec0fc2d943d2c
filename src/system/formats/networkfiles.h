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
    QString address; ///< with Static; written as it stands
    QString mask;    ///< with Static; written as it stands
};

/// Both LAN ports, "eth0" first.
using PortSetups = std::array<PortSetup, 2>;

/// The whole text of ifupdown's file /etc/network/interfaces, see interfaces(5): the loopback
/// stanza, then one for each port that is not disabled.
QString interfacesFileText(const PortSetups &ports);

/// Text of the udev rules that name the network interfaces: the first of the sorted
/// @p hardwareAddresses becomes "eth0", the next one "eth1" and so on. The order is that of the
/// texts, in which digits and capitals come before small letters. Every rule ends with a blank,
/// a line feed and three blanks. Empty without addresses.
QString interfaceNamingRules(QStringList hardwareAddresses);
