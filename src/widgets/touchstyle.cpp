#include "widgets/touchstyle.h"

#include <QStyleOption>

namespace {
constexpr int indicatorSize = 25; // px; leaves an even size to the dot, as its gloss wants it
}

int TouchStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                            const QWidget *widget) const
{
    if (metric == PM_ExclusiveIndicatorWidth || metric == PM_ExclusiveIndicatorHeight) {
        return indicatorSize;
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int TouchStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                          QStyleHintReturn *data) const
{
    if (hint == SH_RequestSoftwareInputPanel) {
        return RSIP_OnMouseClick; // otherwise only the second tap asks for the keypad
    }
    return QProxyStyle::styleHint(hint, option, widget, data);
}

QRect TouchStyle::subElementRect(SubElement element, const QStyleOption *option,
                                 const QWidget *widget) const
{
    if (element == SE_RadioButtonClickRect) {
        return option->rect;
    }
    return QProxyStyle::subElementRect(element, option, widget);
}
