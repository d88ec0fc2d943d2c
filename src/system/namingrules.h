#pragma once

#include <QStringList>

/// Text of the udev rules that name the network interfaces: the first of the sorted
/// @p hardwareAddresses becomes "eth0", the next one "eth1" and so on. The order is that of the
/// texts, in which digits and capitals come before small letters. Every rule ends with a blank,
/// a line feed and three blanks. Empty without addresses.
QString interfaceNamingRules(QStringList hardwareAddresses);
