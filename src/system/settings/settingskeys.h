#pragma once

#include <QSize>
#include <QString>

#include <optional>

/// Every key of the settings file that the program knows, spelt once, but for those of the LAN
/// ports, which ethernetKeys() gives.
namespace SettingsKeys {
inline constexpr char mouse[] = "app.mouse";
inline constexpr char buzzer[] = "app.buzzer";
inline constexpr char orientation[] = "app.orientation";
inline constexpr char screenSaving[] = "app.screensaving";
inline constexpr char brightness[] = "bios.brightness";
inline constexpr char debugLevel[] = "bios.debug";
inline constexpr char screenSize[] = "bios.screen.size";

/// Below which folder packages are looked for.
inline constexpr char transferFolder[] = "bios.filetransfer.folder";

/// Below which folder fonts are looked for.
inline constexpr char fontFolder[] = "bios.fontsetting.folder";
} // namespace SettingsKeys

/// Settings keys and interface name of a LAN port.
struct EthernetKeys
{
    QString interface;
    QString address;
    QString mask;
};

/// Those of the port @p lan: 0 is the first one, any other number the second.
const EthernetKeys &ethernetKeys(int lan);

/// Value of the address key of a port on DHCP.
inline constexpr char dhcpValue[] = "dhcp";

/// Size in pixels from a text such as "800x600" or "800X600": two decimal numbers, each at
/// least 1. Nothing for any other text.
std::optional<QSize> parseScreenSize(const QString &text);
