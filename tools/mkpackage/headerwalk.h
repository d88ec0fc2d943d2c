#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace MkPackage {
/// Reads the headers of one member of a tar archive as their bytes arrive: the extended headers, if
/// there are any, and the member's own. It accepts only what all readers of tar archives understand
/// alike.
class HeaderWalk
{
public:
    HeaderWalk() = default;
    explicit HeaderWalk(qint64 start) ///< in the unpacked data
        : m_next(start)
    {
    }

    /// Takes the next @p piece of the data, which starts at @p pieceStart.
    void feed(QByteArrayView piece, qint64 pieceStart);

    /// Why the headers cannot be trusted; null if nothing is wrong so far.
    const char *error() const { return m_error; }

    /// Whether the member's own header has been read. It then ends at end().
    bool isDone() const { return !m_header.isEmpty(); }
    qint64 end() const { return m_next; }

    /// Whether that header announces contents.
    bool hasContents() const;

private:
    void takeBlock(QByteArrayView block);
    void takeHeader(QByteArrayView header);
    void startDescription(QByteArrayView header);
    void takeDescription(QByteArrayView block);

    qint64 m_next = 0;            ///< where the next block starts
    int m_described = 0;          ///< extended headers so far
    char m_describing = '\0';     ///< type of the extended header that is being read
    qint64 m_descriptionLeft = 0; ///< bytes of it that are still to come
    QByteArray m_description;
    QByteArray m_header;
    const char *m_error = nullptr;
};
} // namespace MkPackage
