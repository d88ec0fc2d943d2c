#pragma once

#include <QPoint>
#include <QRect>

/// Where the keypad's top left corner goes, in pixels of the desktop, for a @p field of the same
/// desktop: two pixels under the field, or directly above it if the keypad, @p height pixels
/// high, would end below the bottom of @p available.
QPoint keypadPosition(const QRect &field, int height, const QRect &available);

/// How many pixels @p field must move down for the whole keypad to have room above it. 0 if the
/// keypad's place is on the screen anyway, or if a screen is too low for keypad and field.
int keypadShift(const QRect &field, int height, const QRect &available);
