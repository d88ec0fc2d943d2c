#pragma once

#include <QColor>

// Sizes in pixels and colours that several pages and widgets share.
namespace Metrics {
/// What a finger hits: the height of rows, buttons and list entries.
inline constexpr int fingerHeight = 44;

/// Around the contents of a page that is a list of rows with captions.
inline constexpr int narrowMargin = 19;

/// Around the contents of the other pages.
inline constexpr int wideMargin = 29;

/// Height of the font of captions and of line edits.
inline constexpr int captionFont = 24;

/// Headings, and the frame of dialogs.
inline constexpr QColor orange(192, 104, 31);
} // namespace Metrics
