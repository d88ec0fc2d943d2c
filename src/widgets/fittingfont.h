#pragma once

#include <QFont>

class QString;

/// @p font, whose size is in pixels, in the largest size up to its own in which one line of
/// @p text is at most @p width pixels wide. Never under 8 pixels.
QFont fittingFont(const QFont &font, const QString &text, int width);
