#pragma once

#include <QFont>

class QString;

/// Returns @p font, shrunk if needed until @p text in one line is at most @p width pixels wide.
/// The size of @p font must be set in pixels. Does not shrink below 8 pixels.
QFont fittingFont(const QFont &font, const QString &text, int width);
