#pragma once

#include "faketools.h"

/// Stand-ins for the tools of the program that answer as real ones do, and do not when told so.
class FickleTools
{
public:
    FickleTools();

    /// The ways in which all tools behave, the first of them as real ones.
    static constexpr int moods = 7;

    /// Makes all tools behave in way @p mood, 0 to moods - 1.
    void setMood(int mood);

    /// Makes the touch controller say that a finger is on the screen, or that none is.
    void setFinger(bool isDown);

    /// Drops the record of the runs, which grows for ever.
    void forgetCalls() { m_tools.forgetCalls(); }

private:
    FakeTools m_tools;
};
