#include "fuzz.h"

#include "packages/packageheader.h"

#include <algorithm>

namespace {
bool isAscii(const QByteArray &bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(), [](char byte) { return byte >= 0; });
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const auto header = parsePackageHeader(bytes);
    require(header.has_value() == (bytes.size() >= packageHeaderSize));
    if (!header) {
        return 0;
    }
    const QByteArray target = bytes.mid(PackageFields::target.offset, PackageFields::target.size);
    const bool isEnded = target.contains('\0');
    require(isEnded || !isAscii(target) || header->target.size() == PackageFields::target.size);
    const QByteArray written = formatPackageHeader(*header);
    require(written.size() == packageHeaderSize);
    require(written.left(8) == bytes.left(8));
    if (isEnded && isAscii(target)) {
        const auto again = parsePackageHeader(written);
        require(again && again->target == header->target);
    }
    return 0;
}
