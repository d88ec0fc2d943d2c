#pragma once

#include <QByteArray>

#include <memory>

#include <dirent.h>

/// The entries of a folder, in the order in which the file system gives them; the toolkit's own
/// listing sorts them. Names are bytes.
class FolderListing
{
public:
    /// A folder that cannot be listed has no entries.
    explicit FolderListing(const QByteArray &path);

    /// The next entry, "." and ".." among them, valid until the next call; null behind the last
    /// and where the listing fails.
    const dirent *next();

    /// What @p entry, given by next(), is, as one of the DT_ numbers; a symbolic link is not
    /// followed. DT_UNKNOWN if the entry is gone.
    int type(const dirent &entry) const;

    /// The open folder, for as long as this lives; -1 if it cannot be listed.
    int descriptor() const;

private:
    struct Closer
    {
        void operator()(DIR *folder) const { closedir(folder); }
    };

    std::unique_ptr<DIR, Closer> m_folder;
};
