#include "factory/colorblending.h"

#include <QLinearGradient>
#include <QPainter>

namespace {
struct ColorStop
{
    double position; // 0 at the left edge, 1 at the right one
    Qt::GlobalColor color;
};
constexpr ColorStop colorStops[] = {
    {0, Qt::blue}, {0.25, Qt::yellow}, {0.5, Qt::red}, {0.75, Qt::green}, {1, Qt::blue},
};
} // namespace

ColorBlending::ColorBlending(QWidget *parent)
    : QWidget(parent)
{
}

void ColorBlending::paintEvent(QPaintEvent * /*event*/)
{
    const int middle = height() / 2;
    QLinearGradient gradient(0, middle, width(), middle);
    for (const ColorStop &stop : colorStops) {
        gradient.setColorAt(stop.position, stop.color);
    }
    QPainter(this).fillRect(rect(), gradient);
}

void ColorBlending::resizeEvent(QResizeEvent * /*event*/)
{
    update();
}
