#pragma once

#include <QStringList>

#include <chrono>

// Command lines of the tools that the program runs: the program first, then its arguments.

/// How long a tool may take to answer a query before the program goes on without it.
inline constexpr std::chrono::milliseconds queryLimit{30000};

/// How long the Ethernet page waits for the address of a port.
inline constexpr std::chrono::milliseconds addressQueryLimit{10000};

/// How long a DHCP client may take to obtain a lease.
inline constexpr std::chrono::milliseconds leaseLimit{10000};

/// The pause before the first window, which lets the panel's session settle. Made by a tool, so
/// that an integrator can shorten it by putting another one first on PATH.
QStringList startPauseCommand();

/// Lists the display outputs; connectedOutputName() reads what it prints.
QStringList outputQueryCommand();

/// Prints a port's address; parseInterfaceAddress() reads it.
QStringList addressQueryCommand(const QString &interface);

/// Sets a port's address at once. The netmask is deliberately left to the kernel until the next
/// boot.
QStringList setAddressCommand(const QString &interface, const QString &address);

/// Obtains a lease for a port.
QStringList obtainLeaseCommand(const QString &interface);

/// Gives back the lease of "eth0", deliberately of no other port.
QStringList releaseLeaseCommand();

/// Starts the HMI runtime; runs until the runtime ends.
QStringList runtimeCommand();
