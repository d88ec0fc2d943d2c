#pragma once

#include "widgets/specialeffects.h"

#include <QWidget>

/// A page of the page stack: an empty widget that paints its background.
class StackWidgetPage : public QWidget, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    /// How the background is painted. Any other value paints nothing, not even black.
    enum BackgroundDrawingType : int {
        GlossFirst = 0, ///< painted like Gloss
        Gloss = 1,      ///< black with a gloss over the upper half
        Glow = 2        ///< black with a glow in the centre
    };

    /// A page with the background Gloss.
    explicit StackWidgetPage(QWidget *parent = nullptr);
    explicit StackWidgetPage(StackWidgetPage::BackgroundDrawingType type,
                             QWidget *parent = nullptr);

    /// Changes the background and repaints; does nothing if it is the same already.
    void setDrawingType(const StackWidgetPage::BackgroundDrawingType &type);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    BackgroundDrawingType m_drawingType = Gloss;
};
