#include "widgets/startingapplicationaniationbutton.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QTimerEvent>

#include <algorithm>

namespace {
constexpr int firstCount = 5;
constexpr int tickInterval = 1000; // ms
constexpr int fontPixelSize = 40;
constexpr int ringWidth = 10; // px

constexpr Qt::GlobalColor ringColors[]
    = {Qt::red, Qt::magenta, Qt::yellow, Qt::green, Qt::blue, Qt::white};
} // namespace

StartingApplicationAniationButton::StartingApplicationAniationButton(QWidget *parent)
    : QWidget(parent)
{
    init();
}

void StartingApplicationAniationButton::init()
{
    QFont large = font();
    large.setPixelSize(fontPixelSize);
    large.setWeight(QFont::Bold);
    setFont(large);
    for (const Qt::GlobalColor color : ringColors) {
        m_colors.append(color);
    }
}

void StartingApplicationAniationButton::setPressed(bool pressed)
{
    if (m_pressed != pressed) {
        m_pressed = pressed;
        update();
    }
}

/// Stops the latest timer. Another call does nothing.
void StartingApplicationAniationButton::stopCounting()
{
    killTimer(m_timerId);
    m_timerId = 0;
}

void StartingApplicationAniationButton::showEvent(QShowEvent *event)
{
    m_count = firstCount;
    // timerEvent() ignores the timer of an earlier showEvent(), which may still run.
    m_timerId = startTimer(tickInterval, Qt::PreciseTimer);
    QWidget::showEvent(event);
}

void StartingApplicationAniationButton::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timerId) {
        QWidget::timerEvent(event);
        return;
    }
    --m_count;
    update();
    if (m_count == -1) {
        stopCounting();
        emit countDownToZero();
    }
}

void StartingApplicationAniationButton::mousePressEvent(QMouseEvent *event)
{
    setPressed(true);
    QWidget::mousePressEvent(event);
}

void StartingApplicationAniationButton::mouseReleaseEvent(QMouseEvent *event)
{
    setPressed(false);
    emit buttonClicked();
    stopCounting();
    QWidget::mouseReleaseEvent(event);
}

void StartingApplicationAniationButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = rect();
    painter.fillRect(area, Qt::black);
    if (!m_pressed) {
        drawShadow(painter, area);
        drawBarShadow(painter, area);
        drawLinearGradient(painter, area);
        drawHighlight(painter, area);
    }
    drawCircle(painter, area);
    drawText(painter, area);
}

void StartingApplicationAniationButton::drawCircle(QPainter &painter, const QRect &)
{
    if (m_count < 0 || m_count >= m_colors.size()) {
        return; // no ring: an invalid colour would be drawn black
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(m_colors.at(m_count), ringWidth, Qt::DotLine));
    const QFontMetrics metrics(font());
    const int radius
        = std::max(metrics.height(), metrics.horizontalAdvance(QString::number(m_count)));
    painter.drawEllipse(
        QRectF(0.5 * width() - radius, 0.5 * height() - radius, 2 * radius, 2 * radius));
    painter.restore();
}

void StartingApplicationAniationButton::drawText(QPainter &painter, const QRect &rect)
{
    painter.save();
    painter.setPen(Qt::white);
    painter.drawText(rect, Qt::AlignCenter, QString::number(m_count));
    painter.restore();
}
