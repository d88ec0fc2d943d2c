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
    // The advance grows nearly in proportion to the size, so the search starts one above that.
    int size = QFontInfo(font).pixelSize() * width / advance + 2;
    do {
        --size;
        fitting.setPixelSize(std::max(size, smallestPixelSize));
        advance = QFontMetrics(fitting).horizontalAdvance(text);
    } while (advance > width && size > smallestPixelSize);
    return fitting;
}
