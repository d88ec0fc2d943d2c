#include "movedclock.h"

#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

namespace {
std::chrono::microseconds offset{0};
} // namespace

MovedClock::~MovedClock()
{
    offset = {};
}

void MovedClock::advance(std::chrono::milliseconds time)
{
    offset += time;
}

// QDateTime calls one of these instead of the C library's: Qt 6.8 the first, Qt 6.4 the second.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = int(syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_REALTIME && result == 0) {
        const auto moved = std::chrono::nanoseconds(time->tv_nsec) + offset;
        time->tv_sec += std::chrono::duration_cast<std::chrono::seconds>(moved).count();
        time->tv_nsec = (moved % std::chrono::seconds(1)).count();
    }
    return result;
}

extern "C" int gettimeofday(timeval *time, void * /*zone*/) noexcept
{
    timespec precise = {};
    const int result = clock_gettime(CLOCK_REALTIME, &precise);
    time->tv_sec = precise.tv_sec;
    time->tv_usec = precise.tv_nsec / 1000;
    return result;
}
