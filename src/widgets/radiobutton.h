#pragma once

#include <QRadialGradient>
#include <QRadioButton>

/// Radio button that paints itself. Text and box are white when checked and gray when not. The
/// checked button has a glossy green dot in its box.
class RadioButton : public QRadioButton
{
    Q_OBJECT
public:
    explicit RadioButton(QWidget *parent = nullptr);
    explicit RadioButton(const QString &text, QWidget *parent = nullptr);

    /// Computes the gloss for a dot the size of @p rect. Its centre is relative to the painter's
    /// origin, not to the corner of @p rect.
    void getIndicatorRadialGradient(const QRect &rect);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void drawDot(QPainter &painter, const QRect &indicator);

    QRadialGradient indicatorGradient; ///< computed when first painted checked
};
