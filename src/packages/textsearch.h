#pragma once

class QString;

/// Whether a line of the plain file at @p path holds @p text, with case. An empty text is in
/// every line, a text with a line feed in none.
/// Result: false if the file cannot be read, or as far as it can be read.
bool fileHoldsText(const QString &path, const QString &text);
