#pragma once

#include <QString>

/// Name of the connected display in the text that "xrandr -q" prints: the text before the first
/// blank of the last line with " connected " in it. Reading stops at the first empty line.
/// Empty if no display is connected.
QString connectedOutputName(const QString &xrandrOutput);
