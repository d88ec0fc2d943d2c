#pragma once

#include <QProxyStyle>

class QStyleOptionSpinBox;

/// Qt's style, adapted to a finger. Indicators, buttons and list rows are large. A radio button
/// reacts to a tap anywhere in its row. One tap on a line edit opens the on-screen keypad.
/// Dialogs have a frame, because a panel has no window manager to draw one. Selected text has
/// enough contrast to be read at arm's length.
class TouchStyle : public QProxyStyle
{
    Q_OBJECT
public:
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;
    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    void polish(QPalette &palette) override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                         SubControl subControl, const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;

private:
    void drawSpinBox(const QStyleOptionSpinBox &box, QPainter *painter,
                     const QWidget *widget) const;
    void drawSpinButton(const QStyleOptionSpinBox &box, SubControl button, QPainter *painter,
                        const QWidget *widget) const;
};
