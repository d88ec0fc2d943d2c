#pragma once

#include <QString>

// What the short outputs of tools say. That of ifconfig is in ifconfigoutput.h.

/// Name of the connected display in the text that "xrandr -q" prints: the text before the first
/// blank of the last line with " connected " in it. Reading stops at the first empty line.
/// Empty if no display is connected.
QString connectedOutputName(const QString &xrandrOutput);

/// Part of the names of all touch controllers that panels have.
inline constexpr QLatin1String touchControllerName("PenMount");

/// What the touch controller's first button does, as "xinput query-state" says.
enum class TouchState {
    Unknown, ///< the tool did not say
    Up,
    Down
};

/// Name of the touch controller in what "xinput --list --name-only" prints: the first line with
/// "PenMount" in it, whole and untrimmed. Empty if there is none.
QString touchDeviceName(const QString &deviceList);

/// State of the first button in what "xinput query-state DEVICE" prints: "up" in the first line
/// with "button[1]=" means up, any other text there down.
TouchState firstButtonState(const QString &deviceState);

/// The total in what "du -h FOLDER" prints: lines of a size, a tab and a path, the last of them
/// for the folder itself. Result: its size, for example "12M"; empty if there is no whole line.
QString diskUsageTotal(const QString &duOutput);
