#pragma once

#include "system/output/tooloutput.h"

#include <QtGlobal>

/// Decides from polls of the touch controller when a finger has been held for more than two
/// seconds. Knows no clock and no tool.
class PressTimer
{
public:
    /// Takes one poll: what the button did at @p now, in milliseconds since the epoch.
    /// Result: true if the button was seen down at two polls more than 2000 ms apart with no "up"
    /// between them; timing starts anew then. Unknown changes nothing.
    /// The difference is taken in 32 bits: a clock that jumps back makes the finger wait.
    bool poll(TouchState state, qint64 now);

private:
    qint64 m_start = -1; ///< ms since the epoch; negative: no press is being timed
};
