#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <zlib.h>

class QIODevice;

namespace MkPackage {
/// Whether @p device has nothing more to read; false also if reading fails.
bool isAtEnd(QIODevice &device);

/// Unpacks gzip data piece by piece, from where a device stands to its end. Needs the same memory
/// whatever comes, and checks all that the format lets check.
class GzipReader
{
public:
    enum class State {
        Reading,
        Whole,      ///< and nothing stands behind it
        Damaged,    ///< error() tells how
        Unreadable, ///< the device gives no more
        TooLarge,   ///< more came out than @c limit
    };

    GzipReader(QIODevice &device, qint64 limit);
    ~GzipReader();
    Q_DISABLE_COPY(GzipReader)

    /// The next piece, valid until the next call; empty if there are no more. Each but the last
    /// one is of the same size, a multiple of a tar block's.
    QByteArrayView read();

    /// Reads to the end, for what only the end tells.
    void skipRest();

    State state() const { return m_state; }
    QString error() const { return m_error; }
    qint64 packedSize() const { return m_packedSize; }
    qint64 unpackedSize() const { return m_unpackedSize; }

    /// Behind the last byte so far that is not zero.
    qint64 contentEnd() const { return m_contentEnd; }

private:
    bool refill();
    void unpack();
    void fail(const QString &error);

    QIODevice &m_device;
    qint64 m_limit;
    z_stream m_stream{};
    QByteArray m_input;
    QByteArray m_output;
    bool m_betweenStreams = true; ///< gzip data may be several streams in a row
    bool m_hasStream = false;
    State m_state = State::Reading;
    QString m_error;
    qint64 m_packedSize = 0;
    qint64 m_unpackedSize = 0;
    qint64 m_contentEnd = 0;
};
} // namespace MkPackage
