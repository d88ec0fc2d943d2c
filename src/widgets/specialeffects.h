#pragma once

class QPainter;
class QRect;

/// Translucent layers painted over black. Every page and button consists of them. A widget derives
/// from its Qt class first and from this class second.
/// Rectangles are in logical pixels of the painter. In a very small or empty rectangle the side
/// strips overlap or have a negative width; they go to Qt unchanged.
class SpecialEffectsDrawingInterface
{
public:
    /// Paints dark shadows along the left and right side, each 10 pixels wide.
    virtual void drawShadow(QPainter &painter, const QRect &rect);

    /// Paints wider shadows, each 20 pixels wide. The left one is darkest in its middle, the right
    /// one at the edge.
    virtual void drawBarShadow(QPainter &painter, const QRect &rect);

    /// Paints a gloss over the upper half and a faint reflection along the bottom edge.
    virtual void drawLinearGradient(QPainter &painter, const QRect &rect);

    /// Paints a glow. Its centre is (width / 2, height / 2) from the painter's origin, not from the
    /// corner of @p rect.
    virtual void drawRadialGradient(QPainter &painter, const QRect &rect);

    /// Paints a bright edge along the top, six pixels high.
    virtual void drawHighlight(QPainter &painter, const QRect &rect);

protected:
    ~SpecialEffectsDrawingInterface() = default; // no widget is deleted through this class
};
