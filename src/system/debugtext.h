#pragma once

#include <QString>
#include <QStringList>

// qDebug() escapes line feeds and letters outside ASCII in the strings that it quotes. The output
// of tools is logged unescaped instead.

/// @p text in double quotes, with nothing escaped.
QString quotedText(const QString &text);

/// A list as ("first", "second"), with nothing escaped; () if it is empty.
QString quotedList(const QStringList &texts);

/// @p text as printable ASCII, safe for a terminal. Every other byte and the backslash are written
/// as "\x" and two hexadecimal digits.
QByteArray printable(const QString &text);
