#pragma once

#include <chrono>

/// During its lifetime, Qt in the test process sees a wall clock that the test can move on. The
/// clock of the machine does not change. A test program that uses it has a clock_gettime() and a
/// gettimeofday() of its own.
class MovedClock
{
public:
    MovedClock() = default;
    ~MovedClock();
    MovedClock(const MovedClock &) = delete;
    MovedClock &operator=(const MovedClock &) = delete;

    /// Moves the clock on by @p time, in addition to earlier calls.
    static void advance(std::chrono::milliseconds time);
};
