#pragma once

#include <QString>
#include <QStringList>

// The toolkit escapes line feeds and letters outside ASCII when it quotes a text for the debug
// channel. A tool's output is logged as it is instead.

/// @p text in double quotes, nothing in it escaped.
QString quotedText(const QString &text);

/// A list as ("first", "second"), nothing in it escaped; () if it is empty.
QString quotedList(const QStringList &texts);

/// @p text in printable ASCII, safe for a terminal: other characters as the hexadecimal number of
/// their bytes.
QByteArray printable(const QString &text);
