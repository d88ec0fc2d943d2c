#pragma once

#include "widgets/specialeffects.h"

#include <QWidget>

/// A page of the page stack. It paints its own background.
class StackWidgetPage : public QWidget, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    /// The kind of background. Any other value paints nothing at all.
    enum BackgroundDrawingType : int {
        GlossFirst = 0, ///< painted like Gloss
        Gloss = 1,      ///< black with a gloss over the upper half
        Glow = 2        ///< black with a glow in the centre
    };

    /// Starts with the background Gloss.
    explicit StackWidgetPage(QWidget *parent = nullptr);
    explicit StackWidgetPage(StackWidgetPage::BackgroundDrawingType type,
                             QWidget *parent = nullptr);

    /// Sets the background and repaints if it changed.
    void setDrawingType(const StackWidgetPage::BackgroundDrawingType &type);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    BackgroundDrawingType m_drawingType = Gloss;
};
