#include "shell/shiftinglayout.h"

void ShiftingLayout::setShift(int shift)
{
    if (m_shift != shift) {
        m_shift = shift;
        invalidate();
        activate();
    }
}

void ShiftingLayout::setGeometry(const QRect &rect)
{
    QVBoxLayout::setGeometry(rect.translated(0, m_shift));
}
