#pragma once

#include "system/formats/networkfiles.h"
#include "system/settings/settingsfile.h"

/// Netmask of a fixed address that is stored without one.
inline constexpr char defaultMask[] = "255.255.255.0";

/// What @p settings say about the LAN port @p lan, 0 or 1, as the Ethernet page shows it. Without
/// an address the port is disabled.
PortSetup storedPort(const SettingsMap &settings, int lan);

/// The same for both ports.
PortSetups storedPorts(const SettingsMap &settings);
