#include "failingreads.h"

#include <cerrno>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
qint64 failingFrom = -1; // bytes; -1: nothing fails

bool isPlainFile(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool shallFail(int descriptor)
{
    return failingFrom >= 0 && isPlainFile(descriptor)
        && lseek(descriptor, 0, SEEK_CUR) >= failingFrom;
}
} // namespace

FailingReads::FailingReads(qint64 offset)
{
    failingFrom = offset;
}

FailingReads::~FailingReads()
{
    failingFrom = -1;
}

// QFile calls this one instead of the C library's.
extern "C" ssize_t read(int descriptor, void *bytes, size_t size)
{
    if (shallFail(descriptor)) {
        errno = EIO;
        return -1;
    }
    return syscall(SYS_read, descriptor, bytes, size);
}
