#include "system/files/folderlisting.h"

#include <fcntl.h>
#include <sys/stat.h>

FolderListing::FolderListing(const QByteArray &path)
    : m_folder(opendir(path.constData()))
{
}

const dirent *FolderListing::next()
{
    return m_folder ? readdir(m_folder.get()) : nullptr;
}

int FolderListing::type(const dirent &entry) const
{
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type;
    }
    // Some file systems do not store the type in the folder.
    struct stat status;
    if (fstatat(dirfd(m_folder.get()), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return DT_UNKNOWN;
    }
    return int(IFTODT(status.st_mode));
}

int FolderListing::descriptor() const
{
    return m_folder ? dirfd(m_folder.get()) : -1;
}
