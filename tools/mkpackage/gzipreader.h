#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <zlib.h>

class QIODevice;

namespace MkPackage {
/// Whether @p device has nothing more to read; false also if reading fails.
bool isAtEnd(QIODevice &device);

/// Unpacks gzip data piece by piece, from the current position of a device to its end. It checks
/// everything that the format can check, and never needs more memory.
class GzipReader
{
public:
    enum class State {
        Reading,
        Whole,      ///< nothing follows it
        Damaged,    ///< see error()
        Unreadable, ///< reading the device failed
        TooLarge,   ///< it unpacks to more than the limit
    };

    /// Reading stops after more than @p limit unpacked bytes.
    GzipReader(QIODevice &device, qint64 limit);
    ~GzipReader();
    Q_DISABLE_COPY(GzipReader)

    /// The next piece, valid until the next call; empty at the end. All pieces but the last have
    /// the same size, a multiple of a tar block.
    QByteArrayView read();

    /// Reads to the end, so that state() and the sizes are final.
    void skipRest();

    State state() const { return m_state; }
    QString error() const { return m_error; }
    qint64 packedSize() const { return m_packedSize; }
    qint64 unpackedSize() const { return m_unpackedSize; }

    /// Where the last byte that is not zero ends, in the unpacked data so far.
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
