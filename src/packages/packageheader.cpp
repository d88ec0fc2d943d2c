#include "packages/packageheader.h"

#include "system/textcodec.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace {
constexpr qsizetype kindOffset = 0;
constexpr qsizetype versionOffset = 4;
constexpr qsizetype targetOffset = 20;
static_assert(targetOffset + packageTargetSize == packageHeaderSize);

QByteArray upToNul(const QByteArray &field)
{
    const qsizetype end = field.indexOf('\0');
    return end < 0 ? field : field.left(end);
}

quint32 numberAt(const QByteArray &bytes, qsizetype offset)
{
    std::array<char, sizeof(quint32)> field;
    std::copy_n(bytes.begin() + offset, field.size(), field.begin());
    return qFromLittleEndian<quint32>(field.data());
}
} // namespace

std::optional<PackageHeader> parsePackageHeader(const QByteArray &bytes)
{
    if (bytes.size() < packageHeaderSize) {
        return std::nullopt;
    }
    return PackageHeader{
        PackageKind(numberAt(bytes, kindOffset)),
        numberAt(bytes, versionOffset),
        textFromBytes(upToNul(bytes.mid(targetOffset, packageTargetSize))),
    };
}

QByteArray formatPackageHeader(const PackageHeader &header)
{
    QByteArray bytes(packageHeaderSize, '\0');
    qToLittleEndian(quint32(header.kind), bytes.data() + kindOffset);
    qToLittleEndian(header.version, bytes.data() + versionOffset);
    const QByteArray target = upToNul(bytesFromText(header.target)).left(packageTargetSize - 1);
    bytes.replace(targetOffset, target.size(), target);
    return bytes;
}
