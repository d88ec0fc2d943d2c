#pragma once

#include <chrono>

/// No time limit: waits until the tool ends.
inline constexpr std::chrono::milliseconds noLimit{-1};

/// How long unpacking a package may take.
inline constexpr std::chrono::milliseconds unpackLimit{30000};

/// How long the windows wait for their tools. Panels use the defaults; tests pass shorter limits,
/// so that they do not wait for real seconds.
struct ToolLimits
{
    /// The tools for display, touch screen and clock, and those of the factory window. The panel
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
