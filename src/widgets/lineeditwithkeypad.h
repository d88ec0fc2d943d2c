#pragma once

#include "widgets/specialeffects.h"

#include <QLineEdit>

/// Line edit in a large font. A tap opens the on-screen keypad, as on any line edit, if the input
/// method has one.
class LineEditWithKeyPad : public QLineEdit, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    explicit LineEditWithKeyPad(const QString &text, QWidget *parent = nullptr);

    /// Starts with the text "127.0.0.1".
    explicit LineEditWithKeyPad(QWidget *parent = nullptr);

private:
    void init();
};
