#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Every package file starts with a header of 36 bytes. A gzip-compressed tar archive follows, up
// to the end of the file. Integers are little-endian, as on the panel's processor.

/// What a package contains. Any other number in a header is an unknown kind.
enum class PackageKind : quint32 {
    Application = 0, ///< the HMI project, for one panel model
    Firmware = 1,    ///< the HMI runtime, for one OEM
    BiosImage = 4,   ///< this settings program, or an add-on to it
};

struct PackageHeader
{
    PackageKind kind = PackageKind::Application;
    quint32 version = 0;
    QString target; ///< panel model or OEM name, decoded like the version files
};

/// Position and size of a header field, in bytes from the start of the file.
struct PackageField
{
    qsizetype offset;
    qsizetype size;

    constexpr qsizetype end() const { return offset + size; }
};

namespace PackageFields {
inline constexpr PackageField kind{0, 4};
inline constexpr PackageField version{4, 4};
inline constexpr PackageField reserved{8, 12}; ///< not read
inline constexpr PackageField target{20, 16};  ///< ASCII text, ended by a NUL byte
} // namespace PackageFields

inline constexpr qsizetype packageHeaderSize = PackageFields::target.end();

/// Longest target, in bytes: a NUL byte follows it in its field.
inline constexpr qsizetype longestPackageTarget = PackageFields::target.size - 1;

/// The bytes of @p field in @p header, unchanged.
QByteArray fieldBytes(const QByteArray &header, const PackageField &field);

/// Parses the header at the start of @p bytes. A target without a NUL byte is 16 bytes long.
/// Result: nothing if there are fewer than 36 bytes.
std::optional<PackageHeader> parsePackageHeader(const QByteArray &bytes);

/// The 36 bytes of @p header. Reserved bytes are zero, and a target longer than
/// longestPackageTarget is cut off.
QByteArray formatPackageHeader(const PackageHeader &header);
