#include "links.h"

#include "system/files/folderlisting.h"

#include <climits>
#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace Guard {
namespace {
bool isBelow(const QByteArray &path, const QByteArray &folder)
{
    return (path + '/').startsWith(folder + '/');
}

QByteArray targetOf(const QByteArray &link)
{
    QByteArray target(PATH_MAX, '\0');
    const ssize_t size = readlink(link.constData(), target.data(), size_t(target.size()));
    return target.left(size < 0 ? 0 : size);
}

/// @p path without links; empty if it leads nowhere.
QByteArray realPath(const QByteArray &path)
{
    char *const real = realpath(path.constData(), nullptr);
    QByteArray found(real);
    free(real);
    return found;
}

/// Where @p link leads; for a dangling one, where its words lead.
QByteArray placeOf(const QByteArray &link, const QByteArray &target)
{
    if (QByteArray real = realPath(link); !real.isEmpty()) {
        return real;
    }
    const auto folder = std::filesystem::path(link.toStdString()).parent_path();
    return QByteArray::fromStdString((folder / target.toStdString()).lexically_normal().string());
}

bool leadsToFile(const QByteArray &link)
{
    struct stat status;
    return stat(link.constData(), &status) == 0 && !S_ISDIR(status.st_mode);
}
} // namespace

QList<Link> findLinksOut(const QByteArray &folder, const QByteArrayList &allowed)
{
    QList<Link> links;
    const QByteArray realFolder = realPath(folder);
    QByteArrayList pending{folder};
    while (!pending.isEmpty()) {
        const QByteArray current = pending.takeLast();
        FolderListing listing(current);
        while (const dirent *entry = listing.next()) {
            const QByteArray name = entry->d_name;
            const QByteArray path = current + '/' + name;
            const int type = listing.type(*entry);
            if (type == DT_DIR && name != "." && name != "..") {
                pending += path;
            } else if (type == DT_LNK && !allowed.contains(path) && !leadsToFile(path)) {
                const QByteArray target = targetOf(path);
                const QByteArray place = placeOf(path, target);
                if (!isBelow(place, folder) && !isBelow(place, realFolder)) {
                    links += {path, target};
                }
            }
        }
    }
    return links;
}
} // namespace Guard
