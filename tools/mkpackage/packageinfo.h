#pragma once

#include "packages/packageheader.h"

#include <QByteArray>

#include <optional>

class QIODevice;

namespace MkPackage {
/// What a package file holds.
struct PackageInfo
{
    bool readable = false; ///< false: the file could not be read to its end; nothing else counts
    std::optional<PackageHeader> header; ///< nothing if the file is shorter than a header
    qint64 fileSize = 0;                 ///< bytes
    qint64 unpackedSize = 0; ///< bytes of the tar archive, as far as it could be unpacked
    bool gzipWhole = false;  ///< and nothing follows it
    bool tarWhole = false;   ///< with the two blocks of zeros at its end, and nothing follows them
    QByteArray listing;      ///< the members, see MemberListing
};

/// Reads the package @p file once, in pieces. Nothing is unpacked to the disk and no tool runs.
PackageInfo readPackage(QIODevice &file);

/// Whether the package is whole and of a known kind.
bool isWhole(const PackageInfo &info);

/// The lines that show a package with a header to a person.
QByteArray infoText(const PackageInfo &info);
} // namespace MkPackage
