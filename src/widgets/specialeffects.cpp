#include "widgets/specialeffects.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

namespace {
const QColor transparent(Qt::transparent);
const QColor dark30(0, 0, 0, 30);
const QColor white100(255, 255, 255, 100);
const QColor white128(255, 255, 255, 128);
const QColor white170(255, 255, 255, 170);

void fillLinear(QPainter &painter, const QRect &area, QPoint start, QPoint end,
                const QGradientStops &stops)
{
    QLinearGradient gradient(start, end);
    gradient.setStops(stops);
    painter.fillRect(area, gradient);
}

/// Fills a strip at the left of @p rect, @p width pixels wide.
void fillLeftStrip(QPainter &painter, const QRect &rect, int width, const QGradientStops &stops)
{
    const int middle = (rect.top() + 2 + rect.bottom() - 2) / 2;
    const int inner = rect.left() + 1 + width;
    fillLinear(painter,
               QRect(QPoint(rect.left() + 2, rect.top() + 2), QPoint(inner, rect.bottom() - 2)),
               QPoint(rect.left() + 3, middle), QPoint(inner, middle), stops);
}

/// Fills a strip at the right of @p rect, @p width pixels wide.
void fillRightStrip(QPainter &painter, const QRect &rect, int width, const QGradientStops &stops)
{
    const int middle = (rect.top() + 2 + rect.bottom() - 2) / 2;
    const int inner = rect.right() - 2 - width;
    fillLinear(painter,
               QRect(QPoint(inner, rect.top() + 2), QPoint(rect.right() - 3, rect.bottom() - 2)),
               QPoint(rect.right() - 4, middle), QPoint(inner, middle), stops);
}
} // namespace

void SpecialEffectsDrawingInterface::drawShadow(QPainter &painter, const QRect &rect)
{
    constexpr int width = 10;
    const QGradientStops fading{{0, dark30}, {1, transparent}};
    fillLeftStrip(painter, rect, width, fading);
    fillRightStrip(painter, rect, width, fading);
}

void SpecialEffectsDrawingInterface::drawBarShadow(QPainter &painter, const QRect &rect)
{
    constexpr int width = 20;
    // The sides differ on purpose: this is the look of existing panels.
    fillLeftStrip(painter, rect, width, {{0, transparent}, {0.5, dark30}, {1, transparent}});
    fillRightStrip(painter, rect, width, {{0, dark30}, {1, transparent}});
}

void SpecialEffectsDrawingInterface::drawLinearGradient(QPainter &painter, const QRect &rect)
{
    const int centre = (rect.left() + rect.right()) / 2;
    const QRect gloss(rect.topLeft(), QPoint(rect.right(), rect.top() + rect.height() / 2));
    fillLinear(painter, gloss, QPoint(centre, gloss.bottom()), QPoint(centre, gloss.top()),
               {{0, transparent}, {1, white170}});

    const int band = gloss.height() / 4;
    const QRect reflection(QPoint(rect.left(), rect.bottom() - band),
                           QPoint(rect.right(), rect.bottom() - 1));
    fillLinear(painter, reflection, QPoint(centre, reflection.bottom()),
               QPoint(centre, reflection.top()), {{0, white100}, {1, transparent}});
}

void SpecialEffectsDrawingInterface::drawRadialGradient(QPainter &painter, const QRect &rect)
{
    const int halfWidth = rect.width() / 2;
    const int halfHeight = rect.height() / 2;
    QRadialGradient gradient(QPointF(halfWidth, halfHeight), 2 * halfWidth - halfHeight);
    gradient.setStops({{0, white170}, {1, transparent}});
    painter.fillRect(rect, gradient);
}

void SpecialEffectsDrawingInterface::drawHighlight(QPainter &painter, const QRect &rect)
{
    const int centre = (rect.left() + rect.right()) / 2;
    const QRect edge(QPoint(rect.left() + 1, rect.top() + 1),
                     QPoint(rect.right() - 1, rect.top() + 6));
    fillLinear(painter, edge, QPoint(centre, edge.top()), QPoint(centre, edge.bottom()),
               {{0, Qt::white}, {1, white128}});
}
