#pragma once

#include <QBrush>
#include <QImage>
#include <QList>
#include <QRect>

class QWidget;

/// What @p widget paints itself, in its own size, over cyan, a colour that no widget uses.
QImage paintedImage(QWidget &widget);

/// What the painted widgets should look like, computed pixel by pixel from the gradients without
/// any painter. Layers are laid over each other in the order of the calls.
class LayerModel
{
public:
    LayerModel(const QSize &size, const QColor &base);

    void addShadow(const QRect &rect);
    void addBarShadow(const QRect &rect);
    void addLinearGradient(const QRect &rect);
    void addRadialGradient(const QRect &rect);
    void addHighlight(const QRect &rect);

    /// The first pixel of @p image that is not as computed, as a text; empty if there is none.
    /// A difference of 2 of 255 is rounding. Pixels in @p except are not looked at.
    QString difference(const QImage &image, const QRect &except = {}) const;

private:
    struct Pixel
    {
        double red = 0; ///< the colours are premultiplied, 0 to 255
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
