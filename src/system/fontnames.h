#pragma once

/// The font of all pages.
inline constexpr char fontFamily[] = "WeblySleek UI";

/// Used if it is not installed. The first substitute is as narrow, so the texts still fit.
inline constexpr const char *fontSubstitutes[] = {"Open Sans", "DejaVu Sans"};
