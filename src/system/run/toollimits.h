#pragma once

#include <chrono>

/// Waits until the tool ends, however long that takes.
inline constexpr std::chrono::milliseconds noLimit{-1};

/// How long the archive of a package may take to unpack.
inline constexpr std::chrono::milliseconds unpackLimit{30000};

/// How long the windows wait for their tools. The defaults are what a panel gets; a test hands
/// shorter ones to a window, so that it need not wait for real.
struct ToolLimits
{
    /// The tools of display, touch screen and clock, and those of the factory window. A panel
    /// must start even if one of them hangs.
    std::chrono::milliseconds tool{30000};
    /// The address of a port, for the Ethernet page.
    std::chrono::milliseconds address{10000};
    /// A lease from the DHCP client.
    std::chrono::milliseconds lease{10000};
    /// The hardware address of a port, for the status page.
    std::chrono::milliseconds hardwareAddress{3000};
    /// The list of all network interfaces, for the factory window.
    std::chrono::milliseconds interfaceList{10000};
};
