#include "inputpanel/keypadposition.h"

namespace {
constexpr int gap = 2; // px
}

QPoint keypadPosition(const QRect &field, int height, const QRect &available)
{
    const QPoint below(field.left(), field.bottom() + gap);
    if (available.bottom() < below.y() + height) {
        return {field.left(), field.top() - height};
    }
    return below;
}
