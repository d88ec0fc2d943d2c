#include "system/presstimer.h"

namespace {
constexpr qint32 holdTime = 2000; // ms
constexpr qint64 noPress = -1;
} // namespace

bool PressTimer::poll(TouchState state, qint64 now)
{
    if (state == TouchState::Unknown) {
        return false;
    }
    if (state == TouchState::Up) {
        m_start = noPress;
        return false;
    }
    if (m_start < 0) {
        m_start = now;
        return false;
    }
    if (static_cast<qint32>(now - m_start) <= holdTime) {
        return false;
    }
    m_start = noPress;
    return true;
}
