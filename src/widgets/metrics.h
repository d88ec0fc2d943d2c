#pragma once

#include <QColor>

// Sizes in pixels and colours that several pages and widgets share.
namespace Metrics {
/// Height of rows, buttons and list entries: large enough for a finger.
inline constexpr int fingerHeight = 44;

/// Margin around the contents of a page of rows with captions.
inline constexpr int narrowMargin = 19;

/// Margin around the contents of the other pages.
inline constexpr int wideMargin = 29;

/// Font size of captions and line edits.
inline constexpr int captionFont = 24;

/// Colour of headings and of the frame of dialogs.
inline constexpr QColor orange(192, 104, 31);
} // namespace Metrics
