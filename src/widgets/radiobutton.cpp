#include "widgets/radiobutton.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>

namespace {
const QColor glossColor(255, 255, 255, 170);
}

RadioButton::RadioButton(QWidget *parent)
    : QRadioButton(parent)
{
}

RadioButton::RadioButton(const QString &text, QWidget *parent)
    : QRadioButton(text, parent)
{
}

void RadioButton::getIndicatorRadialGradient(const QRect &rect)
{
    const int halfWidth = rect.width() / 2;
    const int halfHeight = rect.height() / 2;
    indicatorGradient = QRadialGradient(QPointF(halfWidth, halfHeight), 2 * halfWidth - halfHeight);
    indicatorGradient.setStops({{0, glossColor}, {1, Qt::transparent}});
}

void RadioButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRect contents = style()->subElementRect(QStyle::SE_RadioButtonContents, &option, this);
    const QRect indicator = style()->subElementRect(QStyle::SE_RadioButtonIndicator, &option, this);
    const QColor color = isChecked() ? Qt::white : Qt::gray;

    painter.setPen(color);
    painter.drawText(contents, Qt::AlignLeft, text());

    painter.fillRect(indicator, color);
    painter.setPen(Qt::black);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(indicator.left() + 1, indicator.top() + 1, indicator.width() - 3,
                     indicator.height() - 3);
    if (isChecked()) {
        drawDot(painter, indicator);
    }
}

void RadioButton::drawDot(QPainter &painter, const QRect &indicator)
{
    const QRect dot(indicator.left() + 2, indicator.top() + 2, indicator.width() - 5,
                    indicator.height() - 5);
    painter.setBrush(Qt::green);
    painter.drawEllipse(dot);
    if (indicatorGradient == QRadialGradient()) {
        getIndicatorRadialGradient(dot); // computed once, even if the button is resized later
    }
    painter.setBrush(indicatorGradient);
    painter.drawEllipse(dot);
}
