#include "system/textcodec.h"

#include <algorithm>

namespace {
constexpr char16_t escapeBase = 0xDC00;
constexpr char16_t firstEscape = escapeBase + 0x80;
constexpr char16_t lastEscape = escapeBase + 0xFF;

/// Length in bytes of the UTF-8 sequence that starts with @p lead; 1 if @p lead starts none.
qsizetype sequenceLength(uchar lead)
{
    if (lead >= 0xF0) {
        return 4;
    }
    if (lead >= 0xE0) {
        return 3;
    }
    return lead >= 0xC0 ? 2 : 1;
}

bool isAscii(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<uchar>(byte) < 0x80; });
}

bool survives(QByteArrayView bytes, const QString &text)
{
    return text.toUtf8() == bytes;
}

bool isEscape(QChar c)
{
    return c.unicode() >= firstEscape && c.unicode() <= lastEscape;
}
} // namespace

QString textFromBytes(QByteArrayView bytes)
{
    if (isAscii(bytes)) { // the common case
        return QString::fromLatin1(bytes);
    }
    QString whole = QString::fromUtf8(bytes);
    if (survives(bytes, whole)) {
        return whole;
    }
    QString text;
    text.reserve(bytes.size());
    for (qsizetype at = 0; at < bytes.size();) {
        const auto lead = static_cast<uchar>(bytes.at(at));
        const QByteArrayView sequence
            = bytes.sliced(at, std::min(sequenceLength(lead), bytes.size() - at));
        const QString character = QString::fromUtf8(sequence);
        if (survives(sequence, character)) {
            text += character;
            at += sequence.size();
        } else {
            text += QChar(static_cast<char16_t>(escapeBase + lead));
            ++at;
        }
    }
    return text;
}

QByteArray bytesFromText(const QString &text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    qsizetype start = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text.at(at).isHighSurrogate()) {
            ++at; // skip its low surrogate
        } else if (isEscape(text.at(at))) {
            bytes += text.mid(start, at - start).toUtf8();
            bytes += static_cast<char>(text.at(at).unicode() - escapeBase);
            start = at + 1;
        }
    }
    bytes += text.mid(start).toUtf8();
    return bytes;
}

QStringList argumentTexts(int count, const char *const *arguments)
{
    QStringList texts;
    for (int index = 1; index < count; ++index) {
        texts += textFromBytes(arguments[index]);
    }
    return texts;
}
