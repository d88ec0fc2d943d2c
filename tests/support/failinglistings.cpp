#include "failinglistings.h"

#include <cerrno>

#include <dirent.h>
#include <dlfcn.h>

namespace {
constexpr int unlimited = -1;
int entriesLeft = unlimited;
bool untyped = false;
// On 32-bit processors, the headers of the C library turn the name "readdir" into another one.
constexpr const char *nextName = sizeof(long) == sizeof(qint64) ? "readdir" : "readdir64";
} // namespace

FailingListings::FailingListings(int entries)
{
    entriesLeft = entries;
}

FailingListings::~FailingListings()
{
    entriesLeft = unlimited;
}

UntypedListings::UntypedListings()
{
    untyped = true;
}

UntypedListings::~UntypedListings()
{
    untyped = false;
}

// The program calls these instead of the C library's.
extern "C" dirent *readdir(DIR *folder)
{
    if (entriesLeft == 0) {
        errno = EIO;
        return nullptr;
    }
    if (entriesLeft > 0) {
        --entriesLeft;
    }
    static const auto next = reinterpret_cast<dirent *(*)(DIR *)>(dlsym(RTLD_NEXT, nextName));
    dirent *const entry = next(folder);
    if (entry && untyped) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}
