// Part of the guard that tst_guard starts: notes what is flushed in the file that SYNC_LOG names.

#include <array>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
void note(const char *call, int descriptor)
{
    std::array<char, 64> link{};
    std::array<char, 512> line{};
    std::array<char, 256> path{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    if (readlink(link.data(), path.data(), path.size() - 1) < 0) {
        return;
    }
    const int size = std::snprintf(line.data(), line.size(), "%s %s\n", call, path.data());
    const int log = open(std::getenv("SYNC_LOG"), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (write(log, line.data(), size_t(size)) != size) {
        std::abort();
    }
    close(log);
}
} // namespace

// The guard and Qt call these instead of the C library's.
extern "C" {
int fsync(int descriptor)
{
    note("fsync", descriptor);
    return int(syscall(SYS_fsync, descriptor));
}

int fdatasync(int descriptor)
{
    note("fdatasync", descriptor);
    return int(syscall(SYS_fdatasync, descriptor));
}

int syncfs(int descriptor)
{
    note("syncfs", descriptor);
    return int(syscall(SYS_syncfs, descriptor));
}
}
