// This file defines both open() and open64(). With 64-bit offsets, the C library's headers give
// both the same symbol.
#undef _FILE_OFFSET_BITS

#include "countedcalls.h"

#include <csignal>
#include <cstdarg>
#include <cstddef>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
int callsLeft = 0; // 0: not counting

void countCall()
{
    if (callsLeft > 0 && --callsLeft == 0) {
        kill(getpid(), SIGKILL);
    }
}

/// Pipes, sockets and terminals do not count.
bool isPlainFile(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

void countChange(int descriptor)
{
    if (isPlainFile(descriptor)) {
        countCall();
    }
}

/// Whether the flags ask for an unnamed file. O_TMPFILE includes O_DIRECTORY, so test all bits.
bool isUnnamed(int flags)
{
    return (flags & O_TMPFILE) == O_TMPFILE;
}

int openFile(int folder, const char *path, int flags, mode_t mode)
{
    if ((flags & (O_CREAT | O_TRUNC)) != 0 || isUnnamed(flags)) {
        countCall();
    }
    return int(syscall(SYS_openat, folder, path, flags, mode));
}

mode_t creationMode(int flags, va_list arguments)
{
    const bool hasMode = (flags & O_CREAT) != 0 || isUnnamed(flags);
    return hasMode ? va_arg(arguments, mode_t) : 0;
}
} // namespace

void killAtCall(int number)
{
    callsLeft = number;
}

// Qt calls these instead of the functions of the C library.
extern "C" {
int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = creationMode(flags, arguments);
    va_end(arguments);
    return openFile(AT_FDCWD, path, flags, mode);
}

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = creationMode(flags, arguments);
    va_end(arguments);
    return openFile(AT_FDCWD, path, flags, mode);
}

ssize_t write(int descriptor, const void *bytes, size_t size)
{
    countChange(descriptor);
    return syscall(SYS_write, descriptor, bytes, size);
}

int fsync(int descriptor)
{
    countChange(descriptor);
    return int(syscall(SYS_fsync, descriptor));
}

int fdatasync(int descriptor)
{
    countChange(descriptor);
    return int(syscall(SYS_fdatasync, descriptor));
}

int ftruncate64(int descriptor, off64_t size)
{
    countChange(descriptor);
    return int(syscall(SYS_ftruncate, descriptor, size));
}

int fchmod(int descriptor, mode_t mode)
{
    countChange(descriptor);
    return int(syscall(SYS_fchmod, descriptor, mode));
}

int chmod(const char *path, mode_t mode)
{
    countCall();
    return int(syscall(SYS_chmod, path, mode));
}

int rename(const char *from, const char *to)
{
    countCall();
    return int(syscall(SYS_rename, from, to));
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags)
{
    countCall();
    return int(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags)
{
    countCall();
    return int(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

int unlink(const char *path)
{
    countCall();
    return int(syscall(SYS_unlink, path));
}
}
