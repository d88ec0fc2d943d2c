#include "widgets/lineeditwithkeypad.h"

namespace {
constexpr int fontPixelSize = 24;
}

LineEditWithKeyPad::LineEditWithKeyPad(const QString &text, QWidget *parent)
    : QLineEdit(parent)
{
    setText(text);
    init();
}

LineEditWithKeyPad::LineEditWithKeyPad(QWidget *parent)
    : QLineEdit(parent)
{
    setText("127.0.0.1");
    init();
}

void LineEditWithKeyPad::init()
{
    QFont large = font();
    large.setPixelSize(fontPixelSize);
    large.setWeight(QFont::Bold);
    setFont(large);
}
