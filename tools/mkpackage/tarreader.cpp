#include "tarreader.h"

#include "gzipreader.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>

namespace MkPackage {
namespace {
constexpr qint64 highestOwner = 4294967295;
constexpr qint64 endOfArchiveSize = 1024; // bytes: two blocks of zeros

TarMember::Type typeOf(archive_entry *entry)
{
    if (archive_entry_hardlink(entry) != nullptr) {
        return TarMember::Type::HardLink;
    }
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return TarMember::Type::File;
    case AE_IFDIR:
        return TarMember::Type::Folder;
    case AE_IFLNK:
        return TarMember::Type::SymLink;
    case AE_IFCHR:
        return TarMember::Type::CharacterDevice;
    case AE_IFBLK:
        return TarMember::Type::BlockDevice;
    case AE_IFIFO:
        return TarMember::Type::Pipe;
    default:
        return TarMember::Type::Other;
    }
}

TarMember describe(archive_entry *entry)
{
    TarMember member;
    member.type = typeOf(entry);
    member.name = archive_entry_pathname(entry);
    member.target = member.type == TarMember::Type::HardLink ? archive_entry_hardlink(entry)
                                                             : archive_entry_symlink(entry);
    member.mode = quint32(archive_entry_perm(entry));
    member.user = archive_entry_uid(entry);
    member.group = archive_entry_gid(entry);
    member.size = archive_entry_size(entry);
    member.time = archive_entry_mtime(entry);
    member.deviceMajor = archive_entry_rdevmajor(entry);
    member.deviceMinor = archive_entry_rdevminor(entry);
    return member;
}

bool isOwner(qint64 number)
{
    return number >= 0 && number <= highestOwner;
}
} // namespace

TarReader::TarReader(GzipReader &gzip)
    : m_gzip(gzip)
    , m_handle(archive_read_new())
{
    archive_read_support_format_tar(m_handle);
    archive_read_open(m_handle, this, nullptr, readPiece, nullptr); // next() reports a failure
}

TarReader::~TarReader()
{
    archive_read_free(m_handle);
}

ssize_t TarReader::readPiece(archive *, void *reader, const void **buffer)
{
    auto *self = static_cast<TarReader *>(reader);
    self->m_pieceStart += self->m_piece.size();
    self->m_piece = self->m_gzip.read();
    self->m_walk.feed(self->m_piece, self->m_pieceStart);
    *buffer = self->m_piece.data();
    return self->m_walk.error() == nullptr ? self->m_piece.size()
                                           : 0; // 0 ends the archive for libarchive
}

TarReader::Step TarReader::next(TarMember &member)
{
    // A step of its own, to learn where the member ends.
    int result = m_hasMember ? archive_read_data_skip(m_handle) : ARCHIVE_OK;
    m_hasMember = true;
    m_membersEnd = archive_filter_bytes(m_handle, 0);
    m_walk = HeaderWalk(m_membersEnd);
    m_walk.feed(m_piece, m_pieceStart);
    archive_entry *entry = nullptr;
    if (result == ARCHIVE_OK && m_walk.error() == nullptr) {
        result = archive_read_next_header(m_handle, &entry);
    }
    if (m_walk.error() != nullptr) {
        m_error = QLatin1String(m_walk.error());
        return Step::Damaged;
    }
    if (result == ARCHIVE_EOF) {
        return Step::End;
    }
    if (result != ARCHIVE_OK) { // or a warning: tar may then see something else
        m_error = QString::fromLatin1(archive_error_string(m_handle));
        return Step::Damaged;
    }
    member = describe(entry);
    m_error = headerError(entry, member);
    return m_error.isEmpty() ? Step::Member : Step::Damaged;
}

QString TarReader::findError() const
{
    if (!m_error.isEmpty()) {
        return "damaged: " + m_error;
    }
    if (m_gzip.contentEnd() > m_membersEnd) {
        return "something follows its end";
    }
    return m_gzip.unpackedSize() - m_membersEnd < endOfArchiveSize
        ? QString("the two blocks of zeros at its end are missing")
        : QString();
}

QByteArray TarReader::content(qsizetype size)
{
    QByteArray bytes(size, '\0');
    const la_ssize_t read = archive_read_data(m_handle, bytes.data(), size_t(size));
    return bytes.left(std::max<qsizetype>(read, 0));
}

/// What tar and libarchive could understand differently.
QString TarReader::headerError(archive_entry *entry, const TarMember &member) const
{
    if (archive_entry_sparse_count(entry) > 0) {
        return "a sparse file";
    }
    if (!m_walk.isDone() || m_walk.end() != archive_filter_bytes(m_handle, 0)) {
        return "a header in an unexpected place";
    }
    if (!isOwner(member.user) || !isOwner(member.group)) {
        return "an impossible owner";
    }
    const bool mayHaveContents = member.type == TarMember::Type::File;
    return mayHaveContents || !m_walk.hasContents() ? QString()
                                                    : "contents in a member that cannot have any";
}
} // namespace MkPackage
