#pragma once

#include <QBrush>
#include <QImage>
#include <QList>
#include <QRect>

class QWidget;

/// Picture of @p widget over cyan, a colour that no widget uses.
QImage paintedImage(QWidget &widget);

/// The expected picture of a painted widget, computed pixel by pixel from the gradients, without
/// QPainter. Each call lays another layer on top.
class LayerModel
{
public:
    LayerModel(const QSize &size, const QColor &base);

    void addShadow(const QRect &rect);
    void addBarShadow(const QRect &rect);
    void addLinearGradient(const QRect &rect);
    void addRadialGradient(const QRect &rect);
    void addHighlight(const QRect &rect);

    /// Text about the first pixel of @p image that differs from the model; empty if there is none.
    /// Accepts differences of up to 2 of 255, which are rounding. Ignores pixels in @p except.
    QString difference(const QImage &image, const QRect &except = {}) const;

private:
    struct Pixel
    {
        double red = 0; ///< premultiplied colours, 0 to 255
        double green = 0;
        double blue = 0;
        double alpha = 0;
    };

    static Pixel premultiplied(const QColor &color);
    static Pixel colorAt(const QGradientStops &stops, double position);
    void blend(int x, int y, const Pixel &pixel);
    void addLinear(const QRect &area, QPointF start, QPointF end, const QGradientStops &stops);

    QSize m_size;
    QList<Pixel> m_pixels;
};
