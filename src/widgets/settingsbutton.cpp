#include "widgets/settingsbutton.h"

#include "widgets/fittingfont.h"

#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr qreal cornerRadiusX = 20;
constexpr qreal cornerRadiusY = 15;
constexpr int textMargin = 4; // px free on each side of the text
} // namespace

SettingsButton::SettingsButton(const QString &text, const int &pixelSize, const bool &rounded,
                               QWidget *parent)
    : QWidget(parent)
    , m_text(text)
    , m_fontPixelSize(pixelSize) // init() overwrites it
    , m_rounded(rounded)
{
    init();
}

SettingsButton::SettingsButton(const QString &text, const bool &rounded, QWidget *parent)
    : QWidget(parent)
    , m_text(text)
    , m_rounded(rounded)
{
    init();
}

SettingsButton::SettingsButton(const QString &text, const int &pixelSize, QWidget *parent)
    : QWidget(parent)
    , m_text(text)
{
    init();
    setFontPixelSize(pixelSize);
}

SettingsButton::SettingsButton(const QString &text, QWidget *parent)
    : QWidget(parent)
    , m_text(text)
{
    init();
}

SettingsButton::SettingsButton(QWidget *parent)
    : QWidget(parent)
{
    init();
}

void SettingsButton::init()
{
    m_fontPixelSize = font().pixelSize();
}

void SettingsButton::setText(const QString &text)
{
    if (m_text != text) {
        m_text = text;
        update();
    }
}

void SettingsButton::setFontPixelSize(const int &pixelSize)
{
    m_fontPixelSize = pixelSize;
    QFont resized = font();
    if (resized.pixelSize() == pixelSize) {
        return;
    }
    resized.setPixelSize(pixelSize);
    setFont(resized);
    update();
}

int SettingsButton::fittingPixelSize(const QFont &font) const
{
    return fittingFont(font, m_text, width() - 2 * textMargin).pixelSize();
}

void SettingsButton::setPressEnabled(bool enabled)
{
    m_pressEnabled = enabled;
}

void SettingsButton::setPressed(bool pressed)
{
    if (m_pressed != pressed) {
        m_pressed = pressed;
        update();
    }
}

void SettingsButton::mousePressEvent(QMouseEvent *event)
{
    if (m_pressEnabled) {
        setPressed(true);
    }
    QWidget::mousePressEvent(event);
}

void SettingsButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_pressEnabled) {
        setPressed(false);
        emit buttonClicked();
    }
    QWidget::mouseReleaseEvent(event);
}

void SettingsButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = rect();
    if (m_rounded) {
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF(area), cornerRadiusX, cornerRadiusY, Qt::AbsoluteSize);
    } else {
        painter.fillRect(area, Qt::black);
    }
    if (!m_pressed) {
        drawShadow(painter, area);
        drawBarShadow(painter, area);
        drawLinearGradient(painter, area);
        if (!isDrawnDisabled()) {
            drawHighlight(painter, area);
        }
    }
    drawText(painter, area);
}

void SettingsButton::drawText(QPainter &painter, const QRect &rect)
{
    painter.save();
    painter.setPen(isDrawnDisabled() ? Qt::gray : Qt::white);
    painter.setFont(fittingFont(font(), m_text, rect.width() - 2 * textMargin));
    painter.drawText(rect, Qt::AlignCenter, m_text);
    painter.restore();
}

/// No current panel has a home key: its button works but always looks disabled.
bool SettingsButton::isDrawnDisabled() const
{
    return !isEnabled() || m_text == tr("Home Key");
}
