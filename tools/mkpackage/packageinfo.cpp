#include "packageinfo.h"

#include "gzipreader.h"
#include "memberlisting.h"
#include "options.h"
#include "system/debugtext.h"
#include "system/textcodec.h"
#include "tarreader.h"

#include <QIODevice>

#include <limits>

namespace MkPackage {
namespace {
constexpr qsizetype nameWidth = 9; // characters of the column of names

void readArchive(QIODevice &file, PackageInfo &info)
{
    GzipReader gzip(file, std::numeric_limits<qint64>::max());
    TarReader tar(gzip);
    MemberListing listing;
    TarMember member;
    while (tar.next(member) == TarReader::Step::Member) {
        listing.add(member);
    }
    gzip.skipRest();
    info.readable = gzip.state() != GzipReader::State::Unreadable;
    info.unpackedSize = gzip.unpackedSize();
    info.gzipWhole = gzip.state() == GzipReader::State::Whole;
    info.tarWhole = info.gzipWhole && tar.findError().isEmpty();
    info.listing = listing.text();
}

QByteArray line(const char *name, const QByteArray &value)
{
    return QByteArray(name).leftJustified(nameWidth) + value + '\n';
}

QByteArray headerText(const PackageHeader &header)
{
    const QString name = kindName(header.kind);
    QByteArray target = printable(header.target);
    if (bytesFromText(header.target).size() > longestPackageTarget) {
        target += " (without a NUL byte at its end)";
    }
    return line("kind:",
                QByteArray::number(quint32(header.kind)) + " ("
                    + (name.isEmpty() ? "unknown" : name.toLatin1()) + ')')
        + line("version:", QByteArray::number(header.version)) + line("target:", target);
}

QByteArray archiveText(const PackageInfo &info)
{
    return line("payload:",
                QByteArray::number(info.fileSize - packageHeaderSize) + " bytes, "
                    + QByteArray::number(info.unpackedSize) + " unpacked")
        + line("gzip:", info.gzipWhole ? "whole" : "damaged")
        + line("tar:", info.tarWhole ? "whole" : "damaged") + "contents:\n" + info.listing;
}
} // namespace

PackageInfo readPackage(QIODevice &file)
{
    PackageInfo info;
    info.fileSize = file.size();
    info.header = parsePackageHeader(file.read(packageHeaderSize));
    if (info.header) {
        readArchive(file, info);
    } else {
        info.readable = isAtEnd(file);
    }
    return info;
}

bool isWhole(const PackageInfo &info)
{
    return info.gzipWhole && info.tarWhole && !kindName(info.header->kind).isEmpty();
}

QByteArray infoText(const PackageInfo &info)
{
    return headerText(*info.header) + archiveText(info);
}
} // namespace MkPackage
