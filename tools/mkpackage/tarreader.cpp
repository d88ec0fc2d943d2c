#include "tarreader.h"

#include "gzipreader.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>

namespace {
constexpr qsizetype blockSize = 512; // bytes, of a tar archive
constexpr qsizetype sizeOffset = 124;
constexpr qsizetype sizeLength = 12;
constexpr qsizetype typeOffset = 156;
constexpr QByteArrayView usualTypes("01234567S\0", 10); // S is a file with holes

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
    case AE_IFBLK:
        return TarMember::Type::Device;
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
    return member;
}

/// Of digits that are all zero, or a number of another form that is.
bool isZero(QByteArrayView field)
{
    return std::all_of(field.begin(), field.end(),
                       [](char c) { return c == '0' || c == ' ' || c == '\0'; });
}
} // namespace

TarReader::TarReader(GzipReader &gzip)
    : m_gzip(gzip)
    , m_handle(archive_read_new())
{
    archive_read_support_format_tar(m_handle);
    archive_read_open(m_handle, this, nullptr, readPiece, nullptr); // next() tells if it fails
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
    *buffer = self->m_piece.data();
    return self->m_piece.size();
}

TarReader::Step TarReader::next(TarMember &member)
{
    // By itself, so that it is known where a member ends.
    int result = m_hasMember ? archive_read_data_skip(m_handle) : ARCHIVE_OK;
    m_hasMember = true;
    m_membersEnd = archive_filter_bytes(m_handle, 0);
    archive_entry *entry = nullptr;
    if (result == ARCHIVE_OK) {
        result = archive_read_next_header(m_handle, &entry);
    }
    if (result == ARCHIVE_EOF) {
        return Step::End;
    }
    if (result != ARCHIVE_OK) { // a mere warning too: other readers may see something else then
        m_error = QString::fromLatin1(archive_error_string(m_handle));
        return Step::Damaged;
    }
    member = describe(entry);
    return findHeaderError(entry, member) ? Step::Damaged : Step::Member;
}

QByteArray TarReader::content(qsizetype size)
{
    QByteArray bytes(size, '\0');
    const la_ssize_t read = archive_read_data(m_handle, bytes.data(), size_t(size));
    return bytes.left(std::max<qsizetype>(read, 0));
}

/// What tar and the library that reads here could take for different things.
bool TarReader::findHeaderError(archive_entry *entry, const TarMember &member)
{
    if (archive_entry_sparse_count(entry) > 0) { // its header is not the last block
        return false;
    }
    const QByteArrayView block = lastBlock();
    if (block.isEmpty()) {
        m_error = "a header in no place of its own";
    } else if (!usualTypes.contains(block.at(typeOffset))) {
        m_error = "a member of an unusual type";
    } else if (member.type != TarMember::Type::File
               && !isZero(block.sliced(sizeOffset, sizeLength))) {
        m_error = "contents of a member that can have none";
    }
    return !m_error.isEmpty();
}

/// The block that was read last; empty if it is not at hand.
QByteArrayView TarReader::lastBlock() const
{
    const qint64 start = archive_filter_bytes(m_handle, 0) - blockSize - m_pieceStart;
    return start >= 0 && start + blockSize <= m_piece.size() ? m_piece.sliced(start, blockSize)
                                                             : QByteArrayView();
}
