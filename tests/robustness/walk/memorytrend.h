#pragma once

#include <cstddef>

/// Tells whether the program holds more and more memory while it is touched. What is open at the
/// moment takes some too, so the least of a stretch of the walk is taken: of one at the start, when
/// each page has been visited and has brought its fonts and glyphs, and of one at the end.
class MemoryTrend
{
public:
    /// For a walk of @p steps. One that is too short tells nothing, nor does one with sanitizers.
    explicit MemoryTrend(int steps);

    /// Looks at the memory after @p step.
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
