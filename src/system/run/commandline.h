#pragma once

#include "system/run/command.h"

#include <QDateTime>

// The commands of the tools that the program runs. ToolLimits says how long each may take.

/// The pause before the first window, which lets the panel's session settle. Made by a tool, so
/// that an integrator can shorten it by putting another one first on PATH.
Command startPauseCommand();

/// Lists the display outputs; connectedOutputName() reads what it prints.
Command outputQueryCommand();

/// Lists the input devices; touchDeviceName() reads what it prints.
Command deviceListCommand();

/// Prints the state of an input device; firstButtonState() reads it.
Command deviceStateCommand(const QString &device);

/// Sets the delay after which the screen goes dark, from the stored number of minutes. Anything
/// but a number other than 0 switches that off.
Command screenSavingCommand(const QString &minutes);

/// Turns the display @p output as stored: "horizontal" or nothing is upright, any other text is
/// turned left.
Command orientationCommand(const QString &output, const QString &orientation);

/// Sets the brightness of the display @p output to the stored text, which reaches the tool as it
/// is; full light if it is empty.
Command brightnessCommand(const QString &output, const QString &brightness);

/// Sets the system's clock to @p time, whose seconds are dropped.
Command clockCommand(const QDateTime &time);

/// Copies the system's time to the hardware clock.
Command hardwareClockCommand();

/// Touch calibration. Runs until the user ends it.
Command calibrationCommand();

/// Prints a port's address; parseInterfaceAddress() reads it.
Command addressQueryCommand(const QString &interface);

/// Sets a port's address at once. The netmask is deliberately left to the kernel until the next
/// boot.
Command setAddressCommand(const QString &interface, const QString &address);

/// Obtains a lease for a port.
Command obtainLeaseCommand(const QString &interface);

/// Gives back the lease of "eth0", deliberately of no other port.
Command releaseLeaseCommand();

/// Starts the HMI runtime; runs until the runtime ends.
Command runtimeCommand();

/// Unpacks the gzip-compressed tar archive at @p path into the folder in which it is run.
Command unpackCommand(const QString &path);

/// Removes what the last application left compiled.
Command removeOldApplicationCommand();

/// Run before a firmware package is unpacked. The folder is deliberately not that of the
/// application, "/home/dest", which outlives a new firmware.
Command removeOldFirmwareCommand();

/// Writes everything to the disk.
Command syncCommand();

/// Prints the size of the installed application; diskUsageTotal() reads it.
Command applicationSizeCommand();
