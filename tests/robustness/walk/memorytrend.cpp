#include "memorytrend.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmapCache>

#include <algorithm>

#include <malloc.h>

namespace {
constexpr int settledAfter = 3000; // steps; by then each page has been visited
constexpr int longestStretch = 2000;
constexpr int gradientsToFill = 100;

#ifdef __SANITIZE_ADDRESS__
constexpr bool countsMemory = false; // the sanitizer keeps freed memory
#else
constexpr bool countsMemory = true;
#endif

/// Fills Qt's cache of gradients, so that it has the same size at each measurement. It holds at
/// most 60 tables of 12 KB and fills slowly, which would look like growth.
void fillGradientCache()
{
    QImage image(2, 1, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    for (int red = 0; red < gradientsToFill; ++red) {
        QLinearGradient gradient(0, 0, image.width(), 0);
        gradient.setColorAt(0, QColor(red, 0, 0));
        gradient.setColorAt(1, Qt::white);
        painter.fillRect(image.rect(), gradient);
    }
}

/// Bytes that the program has allocated, without Qt's cache of pictures. That has its own limit of
/// 10 MB and fills slowly.
size_t heapInUse()
{
    QPixmapCache::clear();
    fillGradientCache();
    malloc_trim(0);
    const struct mallinfo2 information = mallinfo2();
    return information.uordblks + information.hblkhd;
}

void keepLeast(size_t &least, size_t size)
{
    least = least == 0 ? size : std::min(least, size);
}
} // namespace

MemoryTrend::MemoryTrend(int steps)
{
    const int stretch = std::min(longestStretch, (steps - settledAfter) / 2);
    m_earlyEnd = settledAfter + stretch;
    m_lateStart = steps - stretch;
}

void MemoryTrend::look(int step)
{
    const bool isEarly = step >= settledAfter && step <= m_earlyEnd;
    const bool isLate = step >= m_lateStart && step > m_earlyEnd;
    if (!countsMemory || (!isEarly && !isLate)) {
        return;
    }
    keepLeast(isEarly ? m_early : m_late, heapInUse());
}
