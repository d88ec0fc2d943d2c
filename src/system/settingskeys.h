#pragma once

/// Every key of the settings file that the program knows, spelt once. Those of the LAN ports are
/// in ethernetkeys.h.
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
