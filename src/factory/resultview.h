#pragma once

class QString;
class QTextEdit;

// The text that the port tests print. An echo may hold anything, so all of it is plain text,
// whatever markup is in it. The end of the text stays in sight.

/// Makes @p text all of the view's text.
void showText(QTextEdit *view, const QString &text);

/// Adds @p text as a paragraph of its own.
void addParagraph(QTextEdit *view, const QString &text);

/// Judges the text that the view shows against @p expected: adds a line of dashes and the verdict.
void addVerdict(QTextEdit *view, const QString &expected);
