#pragma once

#include "system/run/command.h"

#include <QDateTime>

// The commands that the program runs. ToolLimits has their time limits.

/// The pause before the first window, in which the panel's session settles. It is a tool so that an
/// integrator can shorten it: another "sleep" first on PATH replaces it.
Command startPauseCommand();

/// Lists the display outputs; connectedOutputName() parses its output.
Command outputQueryCommand();

/// Lists the input devices; touchDeviceName() parses its output.
Command deviceListCommand();

/// Prints the state of an input device; firstButtonState() parses its output.
Command deviceStateCommand(const QString &device);

/// Sets the delay after which the screen goes dark to the stored @p minutes. 0 or a text that is
/// not a number switches the delay off.
Command screenSavingCommand(const QString &minutes);

/// Rotates the display @p output to the stored @p orientation. "horizontal" and the empty text mean
/// upright; any other text means rotated left.
Command orientationCommand(const QString &output, const QString &orientation);

/// Sets the brightness of the display @p output to the stored text. Its value is not checked. An
/// empty text means full light.
Command brightnessCommand(const QString &output, const QString &brightness);

/// Sets the system clock to @p time without its seconds.
Command clockCommand(const QDateTime &time);

/// Copies the system time to the hardware clock.
Command hardwareClockCommand();

/// Touch calibration. Runs until the user ends it.
Command calibrationCommand();

/// Prints a port's address; parseInterfaceAddress() parses its output.
Command addressQueryCommand(const QString &interface);

/// Sets a port's address at once. The kernel picks the netmask; the stored one takes effect at the
/// next boot.
Command setAddressCommand(const QString &interface, const QString &address);

/// Obtains a lease for a port.
Command obtainLeaseCommand(const QString &interface);

/// Releases the lease of "eth0", whichever port is saved. On purpose: panels in use rely on it.
Command releaseLeaseCommand();

/// Starts the HMI runtime; runs until the runtime ends.
Command runtimeCommand();

/// Unpacks the gzip-compressed tar archive at @p path into the folder in which it is run.
Command unpackCommand(const QString &path);

/// Removes the compiled files of the old application.
Command removeOldApplicationCommand();

/// Runs before a firmware package is unpacked. The folder is misspelt on purpose: the application
/// in "/home/dest" has to survive a new firmware.
Command removeOldFirmwareCommand();

/// Flushes all cached data to the disk.
Command syncCommand();

/// Prints the size of the installed application; diskUsageTotal() parses its output.
Command applicationSizeCommand();
