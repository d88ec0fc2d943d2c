#pragma once

class QPainter;
class QRect;

/// The translucent layers of which every page and button of the program is made, painted over
/// black. A widget derives from its toolkit class first and from this class second.
/// All rectangles are in logical pixels of the painter. Small and empty rectangles are painted
/// as the toolkit paints them: side strips overlap or turn over.
class SpecialEffectsDrawingInterface
{
public:
    /// Thin dark shadows along the left and right side, 10 pixels wide each.
    virtual void drawShadow(QPainter &painter, const QRect &rect);

    /// Wider shadows, 20 pixels each: a soft band at the left, darkest at the edge at the right.
    virtual void drawBarShadow(QPainter &painter, const QRect &rect);

    /// Gloss over the upper half and a faint reflection along the bottom edge.
    virtual void drawLinearGradient(QPainter &painter, const QRect &rect);

    /// Glow in the centre, measured from the painter's origin and not from @p rect.
    virtual void drawRadialGradient(QPainter &painter, const QRect &rect);

    /// Bright edge along the top, six rows high.
    virtual void drawHighlight(QPainter &painter, const QRect &rect);

protected:
    ~SpecialEffectsDrawingInterface() = default; // nobody owns a widget through its layers
};
