#pragma once

#include <QByteArrayList>
#include <QList>

namespace Guard {
/// A symbolic link and where it points.
struct Link
{
    QByteArray path;
    QByteArray target;

    bool operator==(const Link &) const = default;
};

/// Finds links below @p folder, an absolute path, through which a package would be unpacked outside
/// of it: links to folders elsewhere, and links that lead out of it to nothing. tar replaces links
/// to files, so they do no harm. Links in @p allowed are left out. Links are not followed.
QList<Link> findLinksOut(const QByteArray &folder, const QByteArrayList &allowed);
} // namespace Guard
