// Part of the program in coverage builds only. Tests end the program by a signal, but the counters
// are written only when it exits by itself.

#include <csignal>

#include <unistd.h>

extern "C" void __gcov_dump();

namespace {
extern "C" void writeCountersAndEnd(int)
{
    __gcov_dump();
    _exit(0);
}

const auto previousHandler = std::signal(SIGTERM, writeCountersAndEnd);
} // namespace
