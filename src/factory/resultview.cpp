#include "factory/resultview.h"

#include "factory/linktest.h"

#include <QTextEdit>

void showText(QTextEdit *view, const QString &text)
{
    view->setPlainText(text);
    view->moveCursor(QTextCursor::End);
}

void addParagraph(QTextEdit *view, const QString &text)
{
    view->moveCursor(QTextCursor::End);
    QTextCursor cursor = view->textCursor();
    if (!view->document()->isEmpty()) {
        cursor.insertBlock();
    }
    cursor.insertText(text);
    view->moveCursor(QTextCursor::End);
}

void addVerdict(QTextEdit *view, const QString &expected)
{
    const QString received = view->toPlainText();
    addParagraph(view, verdictRule);
    addParagraph(view, linkVerdict(received, expected));
}
