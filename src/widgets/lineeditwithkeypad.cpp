#include "widgets/lineeditwithkeypad.h"

#include "widgets/metrics.h"

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
    large.setPixelSize(Metrics::captionFont);
    large.setWeight(QFont::Bold);
    setFont(large);
}
