#include "pages/rowfont.h"

#include <algorithm>

namespace {
constexpr int largestSize = 24;    // px
constexpr int smallestSize = 16;   // px, readable at arm's length
constexpr int fullSizeWidth = 680; // px from which on the largest size fits
} // namespace

int rowFontSize(int pageFontSize, int pageWidth)
{
    const int fitting = std::max(smallestSize, largestSize * pageWidth / fullSizeWidth);
    return std::min({pageFontSize, largestSize, fitting});
}
