#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// The 36 bytes that every package file starts with. Behind them, to the end of the file, stands a
// gzip-compressed tar archive. Integers are little-endian, as the panel's processor stores them:
//   offset  0, 4 bytes: kind
//   offset  4, 4 bytes: version
//   offset  8, 12 bytes: reserved, not read
//   offset 20, 16 bytes: target, ASCII ended by a NUL byte

/// What a package holds. Any other number in a header is an unknown kind.
enum class PackageKind : quint32 {
    Application = 0, ///< the HMI project, for one panel model
    Firmware = 1,    ///< the HMI runtime, for one OEM
    BiosImage = 4,   ///< this settings program, or an add-on to it
};

struct PackageHeader
{
    PackageKind kind = PackageKind::Application;
    quint32 version = 0;
    QString target; ///< panel model or OEM name; read as the version files are
};

inline constexpr qsizetype packageHeaderSize = 36;

/// Bytes of the target field; its text has to end by a NUL byte before them.
inline constexpr qsizetype packageTargetSize = 16;

/// Reads the header at the start of @p bytes. A target without a NUL byte is all 16 bytes.
/// Result: nothing if there are fewer than 36 bytes.
std::optional<PackageHeader> parsePackageHeader(const QByteArray &bytes);

/// The 36 bytes of @p header, the reserved ones zero. Of a target of more than 15 bytes only the
/// first 15 are taken.
QByteArray formatPackageHeader(const PackageHeader &header);
