#pragma once

#include "faketools.h"

/// Stand-ins for the program's tools. They answer like the real ones, or misbehave on request.
class FickleTools
{
public:
    FickleTools();

    /// Number of moods. In mood 0 the tools answer like the real ones.
    static constexpr int moods = 7;

    /// Puts all tools into @p mood, from 0 to moods - 1.
    void setMood(int mood);

    /// Makes the touch controller report whether a finger is on the screen.
    void setFinger(bool isDown);

    /// Deletes the record of calls, which would grow forever.
    void forgetCalls() { m_tools.forgetCalls(); }

private:
    FakeTools m_tools;
};
