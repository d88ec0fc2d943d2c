#pragma once

/// The font of all pages.
inline constexpr char fontFamily[] = "WeblySleek UI";

/// Take its place where it is not installed: as narrow as it is, so that the texts fit, first.
inline constexpr const char *fontSubstitutes[] = {"Open Sans", "DejaVu Sans"};
