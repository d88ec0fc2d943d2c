#pragma once

#include <cstddef>

/// Tells whether the program's memory grows during a random walk. Open pages and dialogs need
/// memory for a while, so this compares two minima: one over a stretch at the start, after each
/// page has been visited and has loaded its fonts, and one over a stretch at the end.
class MemoryTrend
{
public:
    /// @p steps is the length of the walk. A short walk, or one with sanitizers, gives no result.
    explicit MemoryTrend(int steps);

    /// Measures the memory after @p step.
    void look(int step);

    bool isKnown() const { return m_early > 0 && m_late > 0; }
    size_t early() const { return m_early; } ///< bytes
    size_t late() const { return m_late; }   ///< bytes
    double growth() const { return double(m_late) / double(m_early); }

private:
    int m_earlyEnd;
    int m_lateStart;
    size_t m_early = 0;
    size_t m_late = 0;
};
