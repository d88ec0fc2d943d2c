#pragma once

#include "findings.h"
#include "packages/packageheader.h"
#include "panelcheck.h"

#include <optional>

class QIODevice;

namespace MkPackage {
/// How fast a panel unpacks if nobody says better, in megabytes a second: a twentieth of what a
/// desktop computer does.
inline constexpr int defaultRate = 10;

/// What is asked of a package before it goes on a stick.
struct VerifyTask
{
    QString name; ///< of the file: its extension tells which page finds it
    PanelFacts panel;
    int rate = defaultRate; ///< at which the panel unpacks, in megabytes a second
};

/// What has been found out about a package.
struct Verification
{
    bool readable = false; ///< false: the file could not be read to its end; nothing else counts
    std::optional<PackageHeader> header;
    qint64 packedSize = 0; ///< bytes of the archive in the file
    qint64 unpackedSize = 0;
    qint64 count = 0;   ///< of members, and of folders that tar has to make for them
    double seconds = 0; ///< that a panel takes to unpack it
    Findings findings;
};

/// Reads the package @p file from its start to its end, in pieces, unpacks nothing to the disk
/// and runs no tool. It stops where a package becomes larger than any panel could take.
Verification verifyPackage(QIODevice &file, const VerifyTask &task);
} // namespace MkPackage
