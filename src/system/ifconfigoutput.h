#pragma once

#include <QString>

/// Address and netmask of an interface as the Ethernet page shows them.
struct InterfaceAddress
{
    QString address; ///< "NULL" if none was found
    QString mask;    ///< empty if none was found
};

/// Reads what "ifconfig INTERFACE" prints in its classic format, as BusyBox still does:
/// "inet addr:192.168.0.5  Bcast:192.168.0.255  Mask:255.255.255.0".
/// Without "Bcast:" the address is all the rest of the text. The mask deliberately takes in six
/// characters too many: the white space behind it and the five characters after that. The format
/// of today's net-tools ("inet 192.168.0.5  netmask ...") gives no address.
InterfaceAddress parseInterfaceAddress(const QString &ifconfigOutput);
