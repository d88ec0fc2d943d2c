#include "system/debugtext.h"

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
