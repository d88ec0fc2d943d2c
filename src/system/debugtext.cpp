#include "system/debugtext.h"

#include "system/textcodec.h"

QString quotedText(const QString &text)
{
    return '"' + text + '"';
}

QString quotedList(const QStringList &texts)
{
    QStringList quoted;
    for (const QString &text : texts) {
        quoted += quotedText(text);
    }
    return '(' + quoted.join(", ") + ')';
}

QByteArray printable(const QString &text)
{
    QByteArray shown;
    const QByteArray bytes = bytesFromText(text);
    for (const char c : bytes) {
        const bool plain = c >= ' ' && c <= '~' && c != '\\';
        shown += plain ? QByteArray(1, c) : "\\x" + QByteArray(1, c).toHex();
    }
    return shown;
}
