#include "movedclock.h"

#include <sys/syscall.h>
#include <sys/time.h>
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

// QDateTime calls this one instead of the C library's.
extern "C" int gettimeofday(timeval *time, void *zone) noexcept
{
    const auto result = int(syscall(SYS_gettimeofday, time, zone));
    const auto moved = std::chrono::microseconds(time->tv_usec) + offset;
    time->tv_sec += std::chrono::duration_cast<std::chrono::seconds>(moved).count();
    time->tv_usec = (moved % std::chrono::seconds(1)).count();
    return result;
}
