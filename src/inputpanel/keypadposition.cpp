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

int keypadShift(const QRect &field, int height, const QRect &available)
{
    const int missing = available.top() - keypadPosition(field, height, available).y();
    return missing > 0 && field.bottom() + missing <= available.bottom() ? missing : 0;
}
