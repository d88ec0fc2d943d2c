#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace MkPackage {
/// Goes through the headers of one member of a tar archive, byte by byte as they come: those that
/// only describe the next one, and the member's own. Takes nothing but what every reader of tar
/// archives takes for the same thing.
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

    /// Why the headers are not to be trusted; null if nothing is wrong so far.
    const char *error() const { return m_error; }

    /// Whether the member's own header has come. It ends at end() then.
    bool isDone() const { return !m_header.isEmpty(); }
    qint64 end() const { return m_next; }

    /// Whether that header claims contents.
    bool hasContents() const;

private:
    void takeBlock(QByteArrayView block);
    void takeHeader(QByteArrayView header);
    void startDescription(QByteArrayView header);
    void takeDescription(QByteArrayView block);

    qint64 m_next = 0;            ///< where the next block starts
    int m_described = 0;          ///< headers that describe the member so far
    char m_describing = '\0';     ///< type of the one whose contents are coming
    qint64 m_descriptionLeft = 0; ///< bytes of these contents
    QByteArray m_description;
    QByteArray m_header;
    const char *m_error = nullptr;
};
} // namespace MkPackage
