#pragma once

#include <QString>

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
