#pragma once

#include <QDateTime>
#include <QStringList>

#include <chrono>

// Command lines of the tools that the program runs: the program first, then its arguments.

/// How long a tool may take to answer a query before the program goes on without it.
inline constexpr std::chrono::milliseconds queryLimit{30000};

/// How long a tool may take to apply a setting of the display or the clock. A panel whose tool
/// hangs must still start.
inline constexpr std::chrono::milliseconds settingLimit{30000};

/// The limits of the tools that the settings window runs without being asked to. A test of tools
/// that hang makes them shorter.
struct ToolLimits
{
    std::chrono::milliseconds query = queryLimit;
    std::chrono::milliseconds setting = settingLimit;
};

/// How long the Ethernet page waits for the address of a port.
inline constexpr std::chrono::milliseconds addressQueryLimit{10000};

/// How long the status page waits for the hardware address of a port, in ms.
inline constexpr int hardwareAddressLimit = 3000;

/// How long a DHCP client may take to obtain a lease.
inline constexpr std::chrono::milliseconds leaseLimit{10000};

/// The pause before the first window, which lets the panel's session settle. Made by a tool, so
/// that an integrator can shorten it by putting another one first on PATH.
QStringList startPauseCommand();

/// Lists the display outputs; connectedOutputName() reads what it prints.
QStringList outputQueryCommand();

/// Lists the input devices; touchDeviceName() reads what it prints.
QStringList deviceListCommand();

/// Prints the state of an input device; firstButtonState() reads it.
QStringList deviceStateCommand(const QString &device);

/// Sets the delay after which the screen goes dark, from the stored number of minutes. Anything
/// but a number other than 0 switches that off.
QStringList screenSavingCommand(const QString &minutes);

/// Turns the display @p output as stored: "horizontal" or nothing is upright, any other text is
/// turned left.
QStringList orientationCommand(const QString &output, const QString &orientation);

/// Sets the brightness of the display @p output to the stored text, which reaches the tool as it
/// is; full light if it is empty.
QStringList brightnessCommand(const QString &output, const QString &brightness);

/// Sets the system's clock to @p time, whose seconds are dropped.
QStringList clockCommand(const QDateTime &time);

/// Copies the system's time to the hardware clock.
QStringList hardwareClockCommand();

/// Touch calibration. Runs until the user ends it.
QStringList calibrationCommand();

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

/// How long the archive of a package may take to unpack.
inline constexpr std::chrono::milliseconds unpackLimit{30000};

/// Unpacks the gzip-compressed tar archive at @p path into the folder in which it is run.
QStringList unpackCommand(const QString &path);

/// Removes what the last application left compiled.
QStringList removeOldApplicationCommand();

/// Run before a firmware package is unpacked. The folder is deliberately not that of the
/// application, "/home/dest", which outlives a new firmware.
QStringList removeOldFirmwareCommand();

/// Writes everything to the disk.
QStringList syncCommand();

/// Prints the size of the installed application; diskUsageTotal() reads it.
QStringList applicationSizeCommand();
