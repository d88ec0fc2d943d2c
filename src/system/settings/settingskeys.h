#pragma once

#include <QSize>
#include <QString>

#include <optional>

/// Every key of the settings file that the program uses. ethernetKeys() has those of the LAN ports.
namespace SettingsKeys {
inline constexpr char mouse[] = "app.mouse";
inline constexpr char buzzer[] = "app.buzzer";
inline constexpr char orientation[] = "app.orientation";
inline constexpr char screenSaving[] = "app.screensaving";
inline constexpr char brightness[] = "bios.brightness";
inline constexpr char debugLevel[] = "bios.debug";
inline constexpr char screenSize[] = "bios.screen.size";

/// The folder below which packages are searched for.
inline constexpr char transferFolder[] = "bios.filetransfer.folder";

/// The folder below which fonts are searched for.
inline constexpr char fontFolder[] = "bios.fontsetting.folder";
} // namespace SettingsKeys

/// Interface name and settings keys of a LAN port.
struct EthernetKeys
{
    QString interface;
    QString address;
    QString mask;
};

/// Keys of the port @p lan: 0 is the first port, any other number the second.
const EthernetKeys &ethernetKeys(int lan);

/// Value of the address key for a port that uses DHCP.
inline constexpr char dhcpValue[] = "dhcp";

/// Parses a size in pixels such as "800x600" or "800X600": two decimal numbers, each at least 1.
/// Result: nothing for any other text.
std::optional<QSize> parseScreenSize(const QString &text);
