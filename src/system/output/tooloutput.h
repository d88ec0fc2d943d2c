#pragma once

#include <QString>

// Parsers for the output of tools, except ifconfig (see ifconfigoutput.h).

/// Name of the connected display in the output of "xrandr -q": the text before the first blank of
/// the last line that contains " connected ". Reading stops at the first empty line.
/// Empty if no display is connected.
QString connectedOutputName(const QString &xrandrOutput);

/// The names of all touch controllers in panels contain this.
inline constexpr QLatin1String touchControllerName("PenMount");

/// State of the touch controller's first button according to "xinput query-state".
enum class TouchState {
    Unknown, ///< the tool did not report it
    Up,
    Down
};

/// Name of the touch controller in the output of "xinput --list --name-only": the first line that
/// contains "PenMount", whole and untrimmed. Empty if there is none.
QString touchDeviceName(const QString &deviceList);

/// State of the first button in the output of "xinput query-state DEVICE", taken from the first
/// line that contains "button[1]=": Up if its value is "up", Down for any other value.
TouchState firstButtonState(const QString &deviceState);

/// The total in the output of "du -h FOLDER". Each line is a size, a tab and a path; the last line
/// is for the folder itself. Result: its size, for example "12M"; empty without a complete line.
QString diskUsageTotal(const QString &duOutput);
