#include "failinglistings.h"

#include <cerrno>

#include <dirent.h>
#include <dlfcn.h>

namespace {
constexpr int unlimited = -1;
int entriesLeft = unlimited;
bool untyped = false;
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
    static const auto next = reinterpret_cast<dirent *(*)(DIR *)>(dlsym(RTLD_NEXT, "readdir"));
    dirent *const entry = next(folder);
    if (entry && untyped) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}
