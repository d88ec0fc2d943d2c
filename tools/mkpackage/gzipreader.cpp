#include "gzipreader.h"

#include "zerobytes.h"

#include <QIODevice>

#include <algorithm>

namespace MkPackage {
namespace {
constexpr qsizetype pieceSize = 65536; // bytes
constexpr int gzipWindow = 15 + 16;    // zlib's code for the largest window in a gzip wrapper
constexpr char firstByte = '\x1f';     // of each stream

Bytef *bytesOf(QByteArray &array)
{
    return reinterpret_cast<Bytef *>(array.data()); // zlib wants unsigned bytes
}
} // namespace

bool isAtEnd(QIODevice &device)
{
    char more = 0;
    return device.read(&more, 1) == 0;
}

GzipReader::GzipReader(QIODevice &device, qint64 limit)
    : m_device(device)
    , m_limit(limit)
    , m_input(pieceSize, '\0')
    , m_output(pieceSize, '\0')
{
    if (inflateInit2(&m_stream, gzipWindow) != Z_OK) {
        fail("not enough memory to unpack it");
    }
}

GzipReader::~GzipReader()
{
    inflateEnd(&m_stream);
}

QByteArrayView GzipReader::read()
{
    m_stream.next_out = bytesOf(m_output);
    m_stream.avail_out = uInt(m_output.size());
    while (m_state == State::Reading && m_stream.avail_out > 0) {
        if (m_stream.avail_in > 0 || refill()) {
            unpack();
        }
    }
    const QByteArrayView piece(m_output.constData(), m_output.size() - m_stream.avail_out);
    if (!isZero(piece)) {
        const auto last = std::find_if(piece.rbegin(), piece.rend(), [](char c) { return c != 0; });
        m_contentEnd = m_unpackedSize + (piece.rend() - last);
    }
    m_unpackedSize += piece.size();
    if (m_state == State::Reading && m_unpackedSize > m_limit) {
        m_state = State::TooLarge;
    }
    return piece;
}

void GzipReader::skipRest()
{
    while (!read().isEmpty()) {
        // nothing but the end matters
    }
}

/// Result: false at the end of the input; the state then tells how the data ended.
bool GzipReader::refill()
{
    const qint64 size = m_device.read(m_input.data(), m_input.size());
    if (size < 0) {
        m_state = State::Unreadable;
    } else if (size == 0 && m_betweenStreams && m_hasStream) {
        m_state = State::Whole;
    } else if (size == 0) {
        fail(QLatin1String(m_packedSize == 0 ? "no archive follows the header" : "cut off"));
    }
    m_packedSize += std::max<qint64>(size, 0);
    m_stream.next_in = bytesOf(m_input);
    m_stream.avail_in = uInt(std::max<qint64>(size, 0));
    return size > 0;
}

void GzipReader::unpack()
{
    if (m_betweenStreams && m_hasStream && char(*m_stream.next_in) != firstByte) {
        fail("something else follows it");
        return;
    }
    m_betweenStreams = false;
    const int result = inflate(&m_stream, Z_NO_FLUSH);
    if (result == Z_STREAM_END) {
        m_betweenStreams = true;
        m_hasStream = true;
        inflateReset(&m_stream);
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
        fail(m_stream.msg != nullptr ? QString::fromLatin1(m_stream.msg)
                                     : QString("not gzip data"));
    }
}

void GzipReader::fail(const QString &error)
{
    m_state = State::Damaged;
    m_error = error;
}
} // namespace MkPackage
