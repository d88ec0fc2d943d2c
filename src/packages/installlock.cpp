#include "packages/installlock.h"

#include "system/paths.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

InstallLock::InstallLock()
    // Without O_CLOEXEC, so that the tools inherit it.
    : m_file(open(Paths::installLock, O_RDWR | O_CREAT | O_NOFOLLOW, S_IRUSR | S_IWUSR))
    , m_isHeld(m_file < 0 || flock(m_file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
{
}

InstallLock::~InstallLock()
{
    if (m_file >= 0) {
        close(m_file);
    }
}
