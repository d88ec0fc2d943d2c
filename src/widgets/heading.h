#pragma once

class QLabel;
class QString;
class QWidget;

/// A heading on a page of @p parent: orange, slanted, at most 50 pixels high.
QLabel *createHeading(const QString &text, QWidget *parent);
