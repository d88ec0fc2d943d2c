#pragma once

#include <QString>
#include <QStringList>

/// Address and netmask of an interface as the Ethernet page shows them.
struct InterfaceAddress
{
    QString address; ///< "NULL" if none was found
    QString mask;    ///< empty if none was found
};

/// Parses the output of "ifconfig INTERFACE" in the classic format, which BusyBox still prints:
/// "inet addr:192.168.0.5  Bcast:192.168.0.255  Mask:255.255.255.0".
/// Without "Bcast:" the address extends to the end of the text. The mask includes six extra
/// characters, the white space after it and the next five, on purpose: the page has always shown
/// them. The format of current net-tools ("inet 192.168.0.5  netmask ...") gives no address.
InterfaceAddress parseInterfaceAddress(const QString &ifconfigOutput);

/// The hardware address in the output of "ifconfig INTERFACE" in that format: the text between
/// "HWaddr " and the end of its line, without trailing blanks.
/// Result: "NULL" if there is no "HWaddr ", empty if the text is longer than 30 characters.
QString parseHardwareAddress(const QString &ifconfigOutput);

/// The hardware addresses of all interfaces in the output of "ifconfig" or "ifconfig -a", in its
/// order: the text after each "HWaddr" up to the end of the line, as QString::simplified()
/// returns it.
QStringList hardwareAddresses(const QString &ifconfigOutput);
