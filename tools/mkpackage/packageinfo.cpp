#include "packageinfo.h"

#include "options.h"
#include "runfed.h"
#include "system/debugtext.h"
#include "system/filecopy.h"
#include "system/process.h"
#include "system/textcodec.h"

#include <QFile>

#include <algorithm>

namespace {
constexpr qint64 endOfArchiveSize = 1024; // bytes: two blocks of zeros

/// Sees the bytes of a tar archive pass and remembers how it ends.
class TarEnd
{
public:
    void add(const QByteArray &piece)
    {
        const auto last = std::find_if(piece.rbegin(), piece.rend(), [](char c) { return c != 0; });
        const qint64 zeros = last - piece.rbegin();
        m_zeros = zeros == piece.size() ? m_zeros + zeros : zeros;
        m_size += piece.size();
    }

    bool isEnd() const { return m_zeros >= endOfArchiveSize; }
    qint64 size() const { return m_size; }

private:
    qint64 m_zeros = 0;
    qint64 m_size = 0;
};

/// Names of users are not quoted, so their numbers are shown.
QStringList listCommand()
{
    return {"tar",       "--file=-",       "--gzip",          "--list",
            "--verbose", "--block-number", "--numeric-owner", "--quoting-style=escape"};
}

ArchiveState readArchive(QFile &file)
{
    ArchiveState state;
    TarEnd end;
    const ToolResult gzip
        = runFed({"gzip", "-dc"}, file, [&end](const QByteArray &piece) { end.add(piece); });
    state.gzipWhole = gzip.status == 0;
    state.unpackedSize = end.size();
    QByteArray output;
    file.seek(packageHeaderSize);
    const ToolResult tar
        = runFed(listCommand(), file, [&output](const QByteArray &piece) { output += piece; });
    const TarListing listing = parseTarListing(output);
    state.listing = listing.members;
    // Tar minds neither an archive that stops between two members nor half an end. Zeros at the
    // end alone prove nothing: the last member may be of zeros.
    state.tarWhole = tar.status == 0 && listing.ended && end.isEnd();
    state.known = gzip.status >= 0 && tar.status >= 0;
    return state;
}

QByteArray line(const char *name, const QByteArray &value)
{
    return QByteArray(name).leftJustified(9) + value + '\n';
}

QByteArray headerText(const PackageHeader &header)
{
    const QString name = kindName(header.kind);
    QByteArray target = printable(header.target);
    if (bytesFromText(header.target).size() >= packageTargetSize) {
        target += " (not ended by a NUL byte)";
    }
    return line("kind:",
                QByteArray::number(quint32(header.kind)) + " ("
                    + (name.isEmpty() ? "unknown" : name.toLatin1()) + ')')
        + line("version:", QByteArray::number(header.version)) + line("target:", target);
}

QByteArray archiveText(const ArchiveState &state, qint64 size)
{
    return line("payload:",
                QByteArray::number(size) + " bytes, " + QByteArray::number(state.unpackedSize)
                    + " unpacked")
        + line("gzip:", state.gzipWhole ? "whole" : "damaged")
        + line("tar:", state.tarWhole ? "whole" : "damaged") + "contents:\n" + state.listing;
}
} // namespace

TarListing parseTarListing(const QByteArray &output)
{
    TarListing listing;
    for (const QByteArray &line : output.split('\n')) {
        const QByteArray text = line.mid(line.indexOf(": ") + 2);
        if (text == "** Block of NULs **") {
            listing.ended = true;
        } else if (!line.isEmpty() && text != "** End of File **") {
            listing.members += text + '\n';
        }
    }
    return listing;
}

int showPackage(const QString &path, QIODevice &out, QIODevice &errors)
{
    QFile file;
    if (!openPlainFile(file, path)) {
        errors.write("talmero-mkpackage: cannot read " + printable(path) + '\n');
        return WrongUsage;
    }
    const auto header = parsePackageHeader(file.read(packageHeaderSize));
    if (!header) {
        errors.write("talmero-mkpackage: " + printable(path) + " is no package: it has only "
                     + QByteArray::number(file.size()) + " bytes\n");
        return Failed;
    }
    const ArchiveState state = readArchive(file);
    if (!state.known) {
        errors.write("talmero-mkpackage: gzip or tar cannot be run\n");
        return WrongUsage;
    }
    out.write(headerText(*header) + archiveText(state, file.size() - packageHeaderSize));
    const bool whole = state.gzipWhole && state.tarWhole;
    return whole && !kindName(header->kind).isEmpty() ? Done : Failed;
}
