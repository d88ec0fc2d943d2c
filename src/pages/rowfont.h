#pragma once

/// Height in pixels of the font in a page's rows, for a page whose own font is @p pageFontSize
/// pixels high and that is @p pageWidth pixels wide: at most 24, so that the fullest page fits a
/// screen 600 pixels high, and less where the page is narrower than 680.
int rowFontSize(int pageFontSize, int pageWidth);
