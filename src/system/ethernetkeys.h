#pragma once

#include <QString>

/// Settings keys and interface name of a LAN port.
struct EthernetKeys
{
    QString interface;
    QString address;
    QString mask;
};

/// Those of the port @p lan: 0 is the first one, any other number the second.
const EthernetKeys &ethernetKeys(int lan);

/// Value of the address key of a port on DHCP.
inline constexpr char dhcpValue[] = "dhcp";
