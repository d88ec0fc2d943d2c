#pragma once

class QString;

/// Whether a line of the plain file at @p path contains @p text, case-sensitively. Every line
/// contains the empty text; no line contains a text with a line feed.
/// Result: false if the file cannot be read. After a read error only the lines before it count.
bool fileHoldsText(const QString &path, const QString &text);
