#include "widgets/stackwidgetpage.h"

#include <QPainter>

StackWidgetPage::StackWidgetPage(QWidget *parent)
    : QWidget(parent)
{
}

StackWidgetPage::StackWidgetPage(StackWidgetPage::BackgroundDrawingType type, QWidget *parent)
    : QWidget(parent)
    , m_drawingType(type)
{
}

void StackWidgetPage::setDrawingType(const StackWidgetPage::BackgroundDrawingType &type)
{
    if (m_drawingType != type) {
        m_drawingType = type;
        update();
    }
}

void StackWidgetPage::paintEvent(QPaintEvent *)
{
    if (m_drawingType < GlossFirst || m_drawingType > Glow) {
        return;
    }
    QPainter painter(this);
    const QRect area = rect();
    painter.fillRect(area, Qt::black);
    drawShadow(painter, area);
    drawBarShadow(painter, area);
    if (m_drawingType == Glow) {
        drawRadialGradient(painter, area);
    } else {
        drawLinearGradient(painter, area);
    }
    drawHighlight(painter, area);
}
