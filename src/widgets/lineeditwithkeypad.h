#pragma once

#include "widgets/specialeffects.h"

#include <QLineEdit>

/// Line edit in a large font. A tap on it asks for the on-screen keypad, as on any line edit;
/// without an input method that shows one it is a plain line edit.
class LineEditWithKeyPad : public QLineEdit, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    explicit LineEditWithKeyPad(const QString &text, QWidget *parent = nullptr);

    /// A line edit with the text "127.0.0.1".
    explicit LineEditWithKeyPad(QWidget *parent = nullptr);

private:
    void init();
};
