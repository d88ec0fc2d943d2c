#pragma once

#include "widgets/specialeffects.h"

#include <QString>
#include <QWidget>

/// Push button that paints itself: glossy black with centred text, plain black while pressed.
/// Text too wide for the button is drawn smaller, down to 8 pixels.
class SettingsButton : public QWidget, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    /// @p rounded paints the black base with rounded corners. @p pixelSize has no effect, on
    /// purpose: callers rely on the inherited font.
    SettingsButton(const QString &text, const int &pixelSize, const bool &rounded,
                   QWidget *parent = nullptr);
    SettingsButton(const QString &text, const bool &rounded, QWidget *parent = nullptr);
    /// @p pixelSize is the font size in pixels.
    SettingsButton(const QString &text, const int &pixelSize, QWidget *parent = nullptr);
    explicit SettingsButton(const QString &text, QWidget *parent = nullptr);
    explicit SettingsButton(QWidget *parent = nullptr);

    /// Sets the text and repaints if it changed.
    void setText(const QString &text);

    /// Sets the font size to @p pixelSize pixels and repaints if it changed.
    void setFontPixelSize(const int &pixelSize);

    /// Returns the largest size in pixels, up to that of @p font, in which the text fits the width.
    int fittingPixelSize(const QFont &font) const;

    /// If @p enabled is false, mouse presses do not change the look or emit buttonClicked().
    void setPressEnabled(bool enabled);

    /// Sets the pressed look and repaints if it changed.
    void setPressed(bool pressed);

signals:
    /// The button was released, even if the finger had left the button's area by then.
    void buttonClicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void init();
    void drawText(QPainter &painter, const QRect &rect);
    bool isDrawnDisabled() const;

    QString m_text;
    bool m_pressed = false;
    int m_fontPixelSize = 0;
    bool m_pressEnabled = true;
    bool m_rounded = false;
};
