#pragma once

#include <QString>
#include <QStringList>

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

/// The hardware address in what "ifconfig INTERFACE" prints in that format: what stands between
/// "HWaddr " and the end of its line, without the blanks at its end.
/// Result: "NULL" if there is no "HWaddr ", empty if 31 characters or more stand there.
QString parseHardwareAddress(const QString &ifconfigOutput);

/// The hardware addresses of all interfaces in what "ifconfig" or "ifconfig -a" prints, in its
/// order: what stands behind each "HWaddr" to the end of the line, with the white space made
/// simple. Lines of any interface count.
QStringList hardwareAddresses(const QString &ifconfigOutput);
