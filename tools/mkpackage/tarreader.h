#pragma once

#include "headerwalk.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

struct archive;
struct archive_entry;

namespace MkPackage {
class GzipReader;

/// A member of a tar archive, as its header describes it.
struct TarMember
{
    enum class Type {
        File,
        Folder,
        SymLink,
        HardLink,
        CharacterDevice,
        BlockDevice,
        Pipe,
        Other,
    };

    QByteArray name;
    QByteArray target; ///< of a link
    Type type = Type::File;
    quint32 mode = 0644; ///< permissions with the special bits
    qint64 user = 0;
    qint64 group = 0;
    qint64 size = 0;         ///< of a file, holes included
    qint64 time = 0;         ///< of the last change, in seconds since 1970
    quint64 deviceMajor = 0; ///< of a device
    quint64 deviceMinor = 0;
};

constexpr bool isDevice(TarMember::Type type)
{
    return type == TarMember::Type::CharacterDevice || type == TarMember::Type::BlockDevice;
}

/// Reads a tar archive member by member. Contents are skipped unless content() asks for them.
class TarReader
{
public:
    enum class Step { Member, End, Damaged };

    explicit TarReader(GzipReader &gzip);
    ~TarReader();
    Q_DISABLE_COPY(TarReader)

    /// Goes on to the next member and describes it in @p member.
    Step next(TarMember &member);

    /// The first @p size bytes of the current member. May be called once for each member.
    QByteArray content(qsizetype size);

    /// What is wrong with the archive; empty if nothing is. Only valid once next() has returned End
    /// or Damaged and the gzip data has been read to its end.
    QString findError() const;

private:
    static ssize_t readPiece(archive *handle, void *reader, const void **buffer);
    QString headerError(archive_entry *entry, const TarMember &member) const;

    GzipReader &m_gzip;
    archive *m_handle;
    bool m_hasMember = false;
    QByteArrayView m_piece;
    qint64 m_pieceStart = 0; ///< in the unpacked data
    HeaderWalk m_walk;
    qint64 m_membersEnd = 0; ///< where the last member ended in the unpacked data
    QString m_error;         ///< what is wrong with a member
};
} // namespace MkPackage
