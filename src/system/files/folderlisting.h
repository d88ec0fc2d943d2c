#pragma once

#include <QByteArray>

#include <memory>

#include <dirent.h>

/// Lists the entries of a folder in the order of the file system. Names are bytes: QDir would
/// change those that are not UTF-8.
class FolderListing
{
public:
    /// A folder that cannot be listed has no entries.
    explicit FolderListing(const QByteArray &path);

    /// The next entry, including "." and "..". It is valid until the next call. Null after the
    /// last entry and if the listing fails.
    const dirent *next();

    /// The DT_ constant of @p entry, which next() returned. Symbolic links are not followed.
    /// DT_UNKNOWN if the entry no longer exists.
    int type(const dirent &entry) const;

    /// File descriptor of the folder, owned by this object; -1 if the folder cannot be listed.
    int descriptor() const;

private:
    struct Closer
    {
        void operator()(DIR *folder) const { closedir(folder); }
    };

    std::unique_ptr<DIR, Closer> m_folder;
};
