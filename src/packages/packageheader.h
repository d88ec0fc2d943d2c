#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// The 36 bytes that every package file starts with. A gzip-compressed tar archive follows them, up
// to the end of the file. Integers are little-endian, as the panel's processor stores them.

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

/// Where a field of the header lies, in bytes from the start of the file.
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

/// The longest target, in bytes: the field holds a NUL byte behind it.
inline constexpr qsizetype longestPackageTarget = PackageFields::target.size - 1;

/// The bytes of @p field of a header, as they stand in the file.
QByteArray fieldBytes(const QByteArray &header, const PackageField &field);

/// Reads the header at the start of @p bytes. A target without a NUL byte is all 16 bytes long.
/// Result: nothing if there are fewer than 36 bytes.
std::optional<PackageHeader> parsePackageHeader(const QByteArray &bytes);

/// The 36 bytes of @p header; the reserved ones are zero. A longer target than
/// longestPackageTarget is cut.
QByteArray formatPackageHeader(const PackageHeader &header);
