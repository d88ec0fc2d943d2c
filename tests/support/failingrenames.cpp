#include "failingrenames.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
RenameErrors current;

int callUnless(int error, long (*call)(const char *from, const char *to, unsigned flags),
               const char *from, const char *to, unsigned flags = 0)
{
    if (error != 0) {
        errno = error;
        return -1;
    }
    return int(call(from, to, flags));
}

long callRename(const char *from, const char *to, unsigned flags)
{
    return syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, flags);
}

long callLink(const char *from, const char *to, unsigned flags)
{
    return syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, flags);
}
} // namespace

FailingRenames::FailingRenames(const RenameErrors &errors)
{
    current = errors;
}

FailingRenames::~FailingRenames()
{
    current = {};
}

// The program calls these instead of the C library's.
extern "C" {
int renameat2(int, const char *from, int, const char *to, unsigned flags)
{
    return callUnless(flags != 0 ? current.renameToNew : 0, callRename, from, to, flags);
}

int link(const char *from, const char *to)
{
    return callUnless(current.link, callLink, from, to);
}

int rename(const char *from, const char *to)
{
    return callUnless(current.rename, callRename, from, to);
}
}
