#pragma once

#include <QPoint>
#include <QRect>

/// Where the keypad's top left corner goes, in pixels of the desktop, for a @p field of the same
/// desktop: two pixels under the field, or directly above it if the keypad, @p height pixels
/// high, would end below the bottom of @p available.
QPoint keypadPosition(const QRect &field, int height, const QRect &available);
