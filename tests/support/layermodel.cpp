#include "layermodel.h"

#include <QColor>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace {
constexpr int tolerance = 2;

QColor white(int alpha)
{
    return {255, 255, 255, alpha};
}

const QColor none(0, 0, 0, 0);
const QColor dark(0, 0, 0, 30);

QRect between(int left, int top, int right, int bottom)
{
    // QPainter normalizes a rectangle of negative width or height.
    return QRect(QPoint(left, top), QPoint(right, bottom)).normalized();
}
} // namespace

QImage paintedImage(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::cyan);
    widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

LayerModel::LayerModel(const QSize &size, const QColor &base)
    : m_size(size)
    , m_pixels(qsizetype(size.width()) * size.height(), premultiplied(base))
{
}

void LayerModel::addShadow(const QRect &rect)
{
    const int x0 = rect.left();
    const int x1 = rect.right();
    const int top = rect.top() + 2;
    const int bottom = rect.bottom() - 2;
    const int middle = (top + bottom) / 2;
    addLinear(between(x0 + 2, top, x0 + 11, bottom), QPoint(x0 + 3, middle),
              QPoint(x0 + 11, middle), {{0, dark}, {1, none}});
    addLinear(between(x1 - 12, top, x1 - 3, bottom), QPoint(x1 - 4, middle),
              QPoint(x1 - 12, middle), {{0, dark}, {1, none}});
}

void LayerModel::addBarShadow(const QRect &rect)
{
    const int x0 = rect.left();
    const int x1 = rect.right();
    const int top = rect.top() + 2;
    const int bottom = rect.bottom() - 2;
    const int middle = (top + bottom) / 2;
    addLinear(between(x0 + 2, top, x0 + 21, bottom), QPoint(x0 + 3, middle),
              QPoint(x0 + 21, middle), {{0, none}, {0.5, dark}, {1, none}});
    addLinear(between(x1 - 22, top, x1 - 3, bottom), QPoint(x1 - 4, middle),
              QPoint(x1 - 22, middle), {{0, dark}, {1, none}});
}

void LayerModel::addLinearGradient(const QRect &rect)
{
    const int y0 = rect.top();
    const int y1 = rect.bottom();
    const int half = rect.height() / 2;
    addLinear(between(rect.left(), y0, rect.right(), y0 + half), QPoint(0, y0 + half),
              QPoint(0, y0), {{0, none}, {1, white(170)}});
    const int quarter = (half + 1) / 4;
    addLinear(between(rect.left(), y1 - quarter, rect.right(), y1 - 1), QPoint(0, y1 - 1),
              QPoint(0, y1 - quarter), {{0, white(100)}, {1, none}});
}

void LayerModel::addRadialGradient(const QRect &rect)
{
    const int halfWidth = rect.width() / 2;
    const int halfHeight = rect.height() / 2;
    const double radius = std::abs(2 * halfWidth - halfHeight);
    if (radius == 0) {
        return;
    }
    const QGradientStops stops{{0, white(170)}, {1, none}};
    const QRect area = between(rect.left(), rect.top(), rect.right(), rect.bottom());
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const double distance = std::hypot(x + 0.5 - halfWidth, y + 0.5 - halfHeight);
            blend(x, y, colorAt(stops, distance / radius));
        }
    }
}

void LayerModel::addHighlight(const QRect &rect)
{
    const int y0 = rect.top();
    addLinear(between(rect.left() + 1, y0 + 1, rect.right() - 1, y0 + 6), QPoint(0, y0 + 1),
              QPoint(0, y0 + 6), {{0, white(255)}, {1, white(128)}});
}

QString LayerModel::difference(const QImage &image, const QRect &except) const
{
    if (image.size() != m_size) {
        return QString("size %1x%2").arg(image.width()).arg(image.height());
    }
    for (int y = 0; y < m_size.height(); ++y) {
        for (int x = 0; x < m_size.width(); ++x) {
            if (except.contains(x, y)) {
                continue;
            }
            const Pixel &wanted = m_pixels.at(qsizetype(y) * m_size.width() + x);
            const Pixel is = premultiplied(image.pixelColor(x, y));
            const double distance
                = std::max({std::abs(wanted.red - is.red), std::abs(wanted.green - is.green),
                            std::abs(wanted.blue - is.blue), std::abs(wanted.alpha - is.alpha)});
            if (distance > tolerance) {
                return QString("(%1, %2): red %3 alpha %4, computed red %5 alpha %6")
                    .arg(x)
                    .arg(y)
                    .arg(is.red)
                    .arg(is.alpha)
                    .arg(wanted.red)
                    .arg(wanted.alpha);
            }
        }
    }
    return {};
}

LayerModel::Pixel LayerModel::premultiplied(const QColor &color)
{
    const double alpha = color.alphaF();
    return {color.red() * alpha, color.green() * alpha, color.blue() * alpha, 255 * alpha};
}

LayerModel::Pixel LayerModel::colorAt(const QGradientStops &stops, double position)
{
    const double at = std::clamp(position, 0.0, 1.0);
    qsizetype next = 1;
    while (stops.at(next).first < at) {
        ++next;
    }
    const auto &[from, fromColor] = stops.at(next - 1);
    const auto &[to, toColor] = stops.at(next);
    const double share = (at - from) / (to - from);
    const Pixel a = premultiplied(fromColor);
    const Pixel b = premultiplied(toColor);
    const auto mix
        = [share](double first, double second) { return first + share * (second - first); };
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue), mix(a.alpha, b.alpha)};
}

void LayerModel::blend(int x, int y, const Pixel &pixel)
{
    if (!QRect(QPoint(0, 0), m_size).contains(x, y)) {
        return;
    }
    Pixel &below = m_pixels[qsizetype(y) * m_size.width() + x];
    const double rest = 1 - pixel.alpha / 255;
    below = {pixel.red + rest * below.red, pixel.green + rest * below.green,
             pixel.blue + rest * below.blue, pixel.alpha + rest * below.alpha};
}

void LayerModel::addLinear(const QRect &area, QPointF start, QPointF end,
                           const QGradientStops &stops)
{
    const QPointF way = end - start;
    const double length = QPointF::dotProduct(way, way);
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QPointF centre(x + 0.5, y + 0.5);
            // A gradient of length 0 has its first colour everywhere.
            const double at = length > 0 ? QPointF::dotProduct(centre - start, way) / length : 0;
            blend(x, y, colorAt(stops, at));
        }
    }
}
