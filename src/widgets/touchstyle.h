#pragma once

#include <QProxyStyle>

/// The toolkit's style, made for a finger: large indicators, whole rows that react, and one tap
/// on a line edit that is enough to ask for the on-screen keypad.
class TouchStyle : public QProxyStyle
{
    Q_OBJECT
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
};
