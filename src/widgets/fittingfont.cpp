#include "widgets/fittingfont.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QString>

#include <algorithm>

namespace {
constexpr int smallestPixelSize = 8;
}

QFont fittingFont(const QFont &font, const QString &text, int width)
{
    int advance = QFontMetrics(font).horizontalAdvance(text);
    if (advance <= std::max(width, 0)) {
        return font;
    }
    QFont fitting = font;
    // The width is nearly proportional to the font size: start one pixel above the estimate.
    int size = QFontInfo(font).pixelSize() * width / advance + 2;
    do {
        --size;
        fitting.setPixelSize(std::max(size, smallestPixelSize));
        advance = QFontMetrics(fitting).horizontalAdvance(text);
    } while (advance > width && size > smallestPixelSize);
    return fitting;
}
