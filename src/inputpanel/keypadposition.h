#pragma once

#include <QPoint>
#include <QRect>

// All coordinates are desktop pixels.

/// Returns the keypad's top left corner for the line edit at @p field. The keypad goes two pixels
/// below the line edit. It goes directly above if, with its @p height in pixels, it would extend
/// below @p available.
QPoint keypadPosition(const QRect &field, int height, const QRect &available);

/// Returns how many pixels @p field must move down to make room for the keypad above it. Returns 0
/// if the keypad fits without a move, or if @p available is too low for both.
int keypadShift(const QRect &field, int height, const QRect &available);
