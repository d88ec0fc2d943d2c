#include "factory/kpixeltestwidget.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <iterator>

namespace {
constexpr Qt::GlobalColor testColors[] = {Qt::white, Qt::black, Qt::red, Qt::blue, Qt::green};
constexpr int lastColor = int(std::size(testColors)) - 1;
} // namespace

KPixelTestWidget::KPixelTestWidget(QWidget *parent)
    : QWidget(parent)
{
    setGeometry(QGuiApplication::primaryScreen()->availableGeometry());
}

void KPixelTestWidget::run()
{
    show();
    raise();
}

void KPixelTestWidget::paintEvent(QPaintEvent * /*event*/)
{
    QPainter(this).fillRect(rect(), testColors[std::min(m_colorIndex, lastColor)]);
}

void KPixelTestWidget::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    if (m_colorIndex == lastColor) {
        hide();
        deleteLater();
    }
    ++m_colorIndex;
    repaint();
}
