#pragma once

#include "system/settings/settingsfile.h"

#include <optional>

namespace Settings {
/// The panel's settings; none if there is no file. Nothing if the file cannot be read.
std::optional<SettingsMap> readSettings();

/// Stores @p settings. After a power failure the file has the old or the new content.
/// Result: false if that failed.
bool storeSettings(const SettingsMap &settings);

/// Makes stored settings count: writes ifupdown's file from them if it says something else, and
/// restarts the session if it runs. Writes a file of somebody else's only if @p overForeign is
/// true. Result: what happened, one line each for a person; nothing if the session could not be
/// restarted.
std::optional<QByteArray> applySettings(const SettingsMap &settings, bool overForeign);
} // namespace Settings
