#pragma once

#include <QString>

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
