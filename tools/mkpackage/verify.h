#pragma once

#include "findings.h"
#include "packages/packageheader.h"
#include "panelcheck.h"

#include <optional>

class QIODevice;

namespace MkPackage {
/// How fast a panel is assumed to unpack, in megabytes per second: a twentieth of the rate of a
/// desktop computer.
inline constexpr int defaultRate = 10;

/// How to verify a package.
struct VerifyTask
{
    QString name; ///< of the file; its extension decides which page lists it
    PanelFacts panel;
    int rate = defaultRate; ///< at which the panel unpacks, in megabytes per second
};

/// What has been found out about a package.
struct Verification
{
    bool readable = false; ///< false: the file could not be read to its end; nothing else counts
    std::optional<PackageHeader> header;
    qint64 packedSize = 0; ///< bytes of the archive in the file
    qint64 unpackedSize = 0;
    qint64 count = 0;   ///< of members, and of folders that tar creates for them
    double seconds = 0; ///< that a panel needs at most to unpack it
    Findings findings;
};

/// Verifies the package @p file, which is read once, in pieces. Nothing is unpacked to the disk and
/// no tool runs. Reading stops when the package becomes larger than any panel could take.
Verification verifyPackage(QIODevice &file, const VerifyTask &task);
} // namespace MkPackage
