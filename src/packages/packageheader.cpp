#include "packages/packageheader.h"

#include "system/textcodec.h"

#include <QtEndian>

namespace {
static_assert(PackageFields::kind.end() == PackageFields::version.offset
              && PackageFields::version.end() == PackageFields::reserved.offset
              && PackageFields::reserved.end() == PackageFields::target.offset
              && packageHeaderSize == 36);

QByteArray upToNul(const QByteArray &field)
{
    const qsizetype end = field.indexOf('\0');
    return end < 0 ? field : field.left(end);
}

quint32 numberIn(const QByteArray &header, const PackageField &field)
{
    return qFromLittleEndian<quint32>(fieldBytes(header, field).constData());
}
} // namespace

QByteArray fieldBytes(const QByteArray &header, const PackageField &field)
{
    return header.mid(field.offset, field.size);
}

std::optional<PackageHeader> parsePackageHeader(const QByteArray &bytes)
{
    if (bytes.size() < packageHeaderSize) {
        return std::nullopt;
    }
    return PackageHeader{
        PackageKind(numberIn(bytes, PackageFields::kind)),
        numberIn(bytes, PackageFields::version),
        textFromBytes(upToNul(fieldBytes(bytes, PackageFields::target))),
    };
}

QByteArray formatPackageHeader(const PackageHeader &header)
{
    QByteArray bytes(packageHeaderSize, '\0');
    qToLittleEndian(quint32(header.kind), bytes.data() + PackageFields::kind.offset);
    qToLittleEndian(header.version, bytes.data() + PackageFields::version.offset);
    const QByteArray target = upToNul(bytesFromText(header.target)).left(longestPackageTarget);
    bytes.replace(PackageFields::target.offset, target.size(), target);
    return bytes;
}
