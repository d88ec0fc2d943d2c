#include "settings.h"

#include "guard/judge.h"
#include "system/files/atomicfile.h"
#include "system/files/filecopy.h"
#include "system/paths.h"
#include "system/run/process.h"

#include <QFile>

namespace Settings {
namespace {
constexpr char session[] = "talmero-session.service";
// The session gets 90 s to end, as systemd's default is.
constexpr std::chrono::minutes restartLimit(3);

bool systemctl(const QString &verb)
{
    const ToolResult result = runTool({"systemctl", {verb, "--quiet", QLatin1String(session)}},
                                      {.limit = restartLimit});
    return result.end == ToolResult::End::Ended && result.status == 0;
}

/// Brings ifupdown's file together with @p settings. Result: a line about the LAN ports.
QByteArray applyPorts(const SettingsMap &settings, bool overForeign)
{
    QFile file;
    const QByteArray interfaces
        = openPlainFile(file, Paths::interfacesFile) ? file.readAll() : QByteArray();
    const Guard::Pairing pairing = Guard::comparePair(interfaces, settings);
    const bool isForeign = pairing == Guard::Pairing::Foreign;
    if (pairing == Guard::Pairing::Equal || (isForeign && !Guard::hasPortKeys(settings))) {
        return "";
    }
    if (isForeign && !overForeign) {
        return "the LAN ports stay as they are: /etc/network/interfaces is not the program's\n";
    }
    return replaceFile(Paths::interfacesFile, Guard::interfacesFor(settings))
        ? "the LAN ports change at the next boot\n"
        : "the LAN ports stay as they are: /etc/network/interfaces cannot be written\n";
}
} // namespace

std::optional<SettingsMap> readSettings()
{
    SettingsMap settings;
    if (!QFile::exists(Paths::settingsFile)) {
        return settings;
    }
    QFile file;
    if (!openPlainFile(file, Paths::settingsFile)) {
        return std::nullopt;
    }
    applySettingsText(file.readAll(), settings);
    return file.error() == QFile::NoError ? std::optional(settings) : std::nullopt;
}

bool storeSettings(const SettingsMap &settings)
{
    return replaceFile(Paths::settingsFile, formatSettings(settings));
}

std::optional<QByteArray> applySettings(const SettingsMap &settings, bool overForeign)
{
    const QByteArray ports = applyPorts(settings, overForeign);
    if (!systemctl("is-active")) {
        return ports + "the session does not run: the settings count from its next start\n";
    }
    return systemctl("restart") ? std::optional(ports + "the session has been restarted\n")
                                : std::nullopt;
}
} // namespace Settings
