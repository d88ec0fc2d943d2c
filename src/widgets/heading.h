#pragma once

class QLabel;
class QString;
class QWidget;

/// Creates a heading as a child of @p parent: orange, italic, at most 50 pixels high.
QLabel *createHeading(const QString &text, QWidget *parent);
