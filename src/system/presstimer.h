#pragma once

#include "system/output/tooloutput.h"

#include <QtGlobal>

/// Detects from polls of the touch controller that a finger is held down for more than two seconds.
/// The caller polls the tool and reads the clock.
class PressTimer
{
public:
    /// Processes one poll: the @p state of the button at @p now (milliseconds since the epoch).
    /// Result: true if the button was down at two polls more than 2000 ms apart without an Up
    /// between them; timing then starts again. Unknown changes nothing.
    /// The difference is truncated to 32 bits. If the clock jumps back, the finger has to be held
    /// longer.
    bool poll(TouchState state, qint64 now);

private:
    qint64 m_start = -1; ///< ms since the epoch; negative: no press is being timed
};
