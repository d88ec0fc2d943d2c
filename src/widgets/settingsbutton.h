#pragma once

#include "widgets/specialeffects.h"

#include <QString>
#include <QWidget>

/// Push button that paints itself: black under a gloss with its text in the centre, plain black
/// while a finger is on it. Text that would not fit is drawn smaller, never cut.
class SettingsButton : public QWidget, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    /// @p rounded paints the black base with round corners. @p pixelSize is deliberately not
    /// applied: the button keeps the font that it inherits.
    SettingsButton(const QString &text, const int &pixelSize, const bool &rounded,
                   QWidget *parent = nullptr);
    SettingsButton(const QString &text, const bool &rounded, QWidget *parent = nullptr);
    /// @p pixelSize is the height of the font in pixels.
    SettingsButton(const QString &text, const int &pixelSize, QWidget *parent = nullptr);
    explicit SettingsButton(const QString &text, QWidget *parent = nullptr);
    explicit SettingsButton(QWidget *parent = nullptr);

    /// Changes the text and repaints; does nothing if it is the same already.
    void setText(const QString &text);

    /// Gives the font a height of @p pixelSize pixels; repaints only if it had another.
    void setFontPixelSize(const int &pixelSize);

    /// Height in pixels in which the text fits the button's width: that of @p font, or less.
    int fittingPixelSize(const QFont &font) const;

    /// A button with pressing disabled never looks pressed and never emits buttonClicked().
    void setPressEnabled(bool enabled);

    /// Changes the pressed look and repaints; does nothing if it is the same already.
    void setPressed(bool pressed);

signals:
    /// A finger was lifted from the button, wherever it had moved to meanwhile.
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
