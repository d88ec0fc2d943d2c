#include "packages/packageheader.h"

#include "system/textcodec.h"

#include <QtEndian>

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
} // namespace

std::optional<PackageHeader> parsePackageHeader(const QByteArray &bytes)
{
    if (bytes.size() < packageHeaderSize) {
        return std::nullopt;
    }
    return PackageHeader{
        PackageKind(qFromLittleEndian<quint32>(bytes.constData() + kindOffset)),
        qFromLittleEndian<quint32>(bytes.constData() + versionOffset),
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
