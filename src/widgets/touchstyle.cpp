#include "widgets/touchstyle.h"

#include "widgets/metrics.h"

#include <QComboBox>
#include <QDialog>
#include <QPainter>
#include <QPolygon>
#include <QScreen>
#include <QStyleOption>

#include <algorithm>

namespace {
constexpr int indicatorSize = 25; // px; odd: the gloss needs a dot of even size
constexpr int fieldHeight = 40;   // px; the factory's test page has no room for more
constexpr int listFrame = 1;      // px around the list of a combo box
constexpr int arrowPlaceWidth = Metrics::fingerHeight; // px; combo box arrow, spin button
constexpr int usualArrowPlaceWidth = 20;    // px; included in Qt's own size of a combo box
constexpr QSize smallestButton(120, 48);    // px
constexpr int scrollBarWidth = 28;          // px
constexpr QMargins dialogFrame(3, 3, 3, 3); // px
constexpr int arrowSize = 10;               // px from the centre to the corners
constexpr QColor chosenColor(28, 100, 175); // dark enough for white text

/// Places the two buttons of a spin box side by side, each as high as the box.
QRect spinBoxRect(const QRect &box, QStyle::SubControl subControl)
{
    switch (subControl) {
    case QStyle::SC_SpinBoxUp:
        return {box.right() - arrowPlaceWidth + 1, box.top(), arrowPlaceWidth, box.height()};
    case QStyle::SC_SpinBoxDown:
        return {box.right() - 2 * arrowPlaceWidth + 1, box.top(), arrowPlaceWidth, box.height()};
    case QStyle::SC_SpinBoxEditField:
        return box.adjusted(3, 3, -2 * arrowPlaceWidth - 3, -3);
    default:
        return box;
    }
}

QRect listBoxRect(const QRect &box, QStyle::SubControl subControl, const QRect &usual)
{
    switch (subControl) {
    case QStyle::SC_ComboBoxArrow:
        return {box.right() - arrowPlaceWidth + 1, box.top(), arrowPlaceWidth, box.height()};
    case QStyle::SC_ComboBoxEditField:
        return {usual.left(), usual.top(), box.right() - arrowPlaceWidth - usual.left() + 1,
                usual.height()};
    default:
        return usual;
    }
}

/// Returns a row height for a finger, or less if the whole list would not fit the screen.
int listRowHeight(const QComboBox &box, int usual)
{
    const int room = box.screen()->geometry().height() - 2 * listFrame;
    const int most = std::max(room / std::max(box.count(), 1), box.fontMetrics().height());
    return std::min(std::max(usual, Metrics::fingerHeight), most);
}

/// Draws a triangle around @p centre that points up or down.
void drawArrow(QPainter *painter, QPoint centre, bool up, const QBrush &brush)
{
    const int side = up ? 1 : -1;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(brush);
    painter->drawPolygon(QPolygon({centre + QPoint(-arrowSize, side * arrowSize / 2),
                                   centre + QPoint(arrowSize, side * arrowSize / 2),
                                   centre + QPoint(0, -side * arrowSize / 2)}));
    painter->restore();
}
} // namespace

void TouchStyle::polish(QPalette &palette)
{
    QProxyStyle::polish(palette);
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Highlight, chosenColor);
    }
}

void TouchStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                               QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_Widget && qobject_cast<const QDialog *>(widget) != nullptr) {
        painter->fillRect(option->rect, Metrics::orange);
        painter->fillRect(option->rect.marginsRemoved(dialogFrame), option->palette.window());
    }
}

void TouchStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QDialog *>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_StyledBackground); // makes Qt paint PE_Widget
    }
}

int TouchStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                            const QWidget *widget) const
{
    if (metric == PM_ExclusiveIndicatorWidth || metric == PM_ExclusiveIndicatorHeight) {
        return indicatorSize;
    }
    if (metric == PM_ScrollBarExtent) {
        return scrollBarWidth;
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

void TouchStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                    QPainter *painter, const QWidget *widget) const
{
    if (const auto *box = qstyleoption_cast<const QStyleOptionSpinBox *>(option);
        box != nullptr && control == CC_SpinBox) {
        drawSpinBox(*box, painter, widget);
    } else if (const auto *list = qstyleoption_cast<const QStyleOptionComboBox *>(option);
               list != nullptr && control == CC_ComboBox) {
        QStyleOptionComboBox plain = *list;
        plain.subControls &= ~SC_ComboBoxArrow; // Qt's arrow is too small at arm's length
        QProxyStyle::drawComplexControl(control, &plain, painter, widget);
        drawArrow(painter,
                  proxy()->subControlRect(control, option, SC_ComboBoxArrow, widget).center(),
                  false, option->palette.buttonText());
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

void TouchStyle::drawSpinBox(const QStyleOptionSpinBox &box, QPainter *painter,
                             const QWidget *widget) const
{
    QStyleOptionFrame frame;
    static_cast<QStyleOption &>(frame) = box;
    frame.lineWidth = 1;
    frame.rect.setRight(frame.rect.right() - 2 * arrowPlaceWidth);
    proxy()->drawPrimitive(PE_PanelLineEdit, &frame, painter, widget);
    drawSpinButton(box, SC_SpinBoxDown, painter, widget);
    drawSpinButton(box, SC_SpinBoxUp, painter, widget);
}

void TouchStyle::drawSpinButton(const QStyleOptionSpinBox &box, SubControl button,
                                QPainter *painter, const QWidget *widget) const
{
    QStyleOptionButton bevel;
    static_cast<QStyleOption &>(bevel) = box;
    bevel.rect = proxy()->subControlRect(CC_SpinBox, &box, button, widget);
    bevel.state &= ~(State_Sunken | State_HasFocus | State_MouseOver);
    bevel.state |= State_Raised;
    if (box.activeSubControls == button && (box.state & State_Sunken) != 0) {
        bevel.state |= State_Sunken;
    }
    proxy()->drawControl(CE_PushButtonBevel, &bevel, painter, widget);
    drawArrow(painter, bevel.rect.center(), button == SC_SpinBoxUp, box.palette.buttonText());
}

QSize TouchStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                   const QWidget *widget) const
{
    const QSize usual = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_MenuItem: // the rows of a combo box
        if (const auto *box = qobject_cast<const QComboBox *>(widget)) {
            return {usual.width(), listRowHeight(*box, usual.height())};
        }
        return usual;
    case CT_ItemViewItem:
    case CT_RadioButton:
    case CT_ToolButton:
        return usual.expandedTo({0, Metrics::fingerHeight});
    case CT_ComboBox:
        return usual.expandedTo({0, fieldHeight})
            + QSize(arrowPlaceWidth - usualArrowPlaceWidth, 0);
    case CT_PushButton:
        return usual.expandedTo(smallestButton);
    case CT_SpinBox:
        return usual.expandedTo({0, fieldHeight}) + QSize(2 * arrowPlaceWidth, 0);
    default:
        return usual;
    }
}

int TouchStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                          QStyleHintReturn *data) const
{
    if (hint == SH_RequestSoftwareInputPanel) {
        return RSIP_OnMouseClick; // otherwise only the second tap opens the keypad
    }
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) {
        return 0; // the icons are too small at arm's length
    }
    return QProxyStyle::styleHint(hint, option, widget, data);
}

QRect TouchStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                                 SubControl subControl, const QWidget *widget) const
{
    if (control == CC_SpinBox) {
        return visualRect(option->direction, option->rect, spinBoxRect(option->rect, subControl));
    }
    const QRect usual = QProxyStyle::subControlRect(control, option, subControl, widget);
    if (control == CC_ComboBox) {
        return listBoxRect(option->rect, subControl, usual);
    }
    return usual;
}

QRect TouchStyle::subElementRect(SubElement element, const QStyleOption *option,
                                 const QWidget *widget) const
{
    const QRect usual = QProxyStyle::subElementRect(element, option, widget);
    switch (element) {
    case SE_RadioButtonClickRect:
        return option->rect;
    case SE_RadioButtonContents: {
        // RadioButton paints its text at the top: centre one line in the row.
        const int height = option->fontMetrics.height();
        return {usual.left(), option->rect.top() + (option->rect.height() - height) / 2,
                usual.width(), height};
    }
    default:
        return usual;
    }
}
