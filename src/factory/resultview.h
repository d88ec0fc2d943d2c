#pragma once

class QString;
class QTextEdit;

// The output of the port tests. It is always shown as plain text, because an echo may contain
// markup. The view scrolls to the end.

/// Bytes of an echo that are read and shown at a time.
inline constexpr int longestChunk = 1024;

/// Replaces the text of the view with @p text.
void showText(QTextEdit *view, const QString &text);

/// Appends @p text as a new paragraph.
void addParagraph(QTextEdit *view, const QString &text);

/// Compares the text of the view with @p expected, then appends a line of dashes and the verdict.
void addVerdict(QTextEdit *view, const QString &expected);
