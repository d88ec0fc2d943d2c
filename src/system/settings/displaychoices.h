#pragma once

#include <QtGlobal>

// The choices on the miscellaneous page. It recognises only these values in the settings.

/// A screen saver delay.
struct DelayItem
{
    const char *text;
    int minutes;
};

/// "Close" switches screen saving off. It has always had this name.
inline constexpr DelayItem delayItems[] = {
    {QT_TRANSLATE_NOOP("BiosInterface", "Close"), 0},
    {QT_TRANSLATE_NOOP("BiosInterface", "5 Mins"), 5},
    {QT_TRANSLATE_NOOP("BiosInterface", "10 Mins"), 10},
    {QT_TRANSLATE_NOOP("BiosInterface", "20 Mins"), 20},
    {QT_TRANSLATE_NOOP("BiosInterface", "30 Mins"), 30},
    {QT_TRANSLATE_NOOP("BiosInterface", "60 Mins"), 60},
};

/// A brightness: its text on the page and its factor for xrandr.
struct BrightnessItem
{
    const char *text;
    const char *factor;
};

inline constexpr BrightnessItem brightnessItems[] = {
    {QT_TRANSLATE_NOOP("BiosInterface", "Full Light"), "1"},
    {QT_TRANSLATE_NOOP("BiosInterface", "90%"), "0.9"},
    {QT_TRANSLATE_NOOP("BiosInterface", "80%"), "0.8"},
    {QT_TRANSLATE_NOOP("BiosInterface", "70%"), "0.7"},
    {QT_TRANSLATE_NOOP("BiosInterface", "60%"), "0.6"},
    {QT_TRANSLATE_NOOP("BiosInterface", "50%"), "0.5"},
    {QT_TRANSLATE_NOOP("BiosInterface", "40%"), "0.4"},
    {QT_TRANSLATE_NOOP("BiosInterface", "30%"), "0.3"},
    {QT_TRANSLATE_NOOP("BiosInterface", "20%"), "0.2"},
    {QT_TRANSLATE_NOOP("BiosInterface", "10%"), "0.1"},
    {QT_TRANSLATE_NOOP("BiosInterface", "0%"), "0"},
};

/// Brightness that rescue mode stores: on purpose the character with code 1, not the digit. xrandr
/// rejects it at the next start, which leaves the display at full light.
inline constexpr char16_t rescueBrightness = 1;
