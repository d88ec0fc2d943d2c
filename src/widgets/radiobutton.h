#pragma once

#include <QRadialGradient>
#include <QRadioButton>

/// Radio button that paints itself: white text and box when checked, gray ones when not, and a
/// green dot with a gloss in the box of the checked one.
class RadioButton : public QRadioButton
{
    Q_OBJECT
public:
    explicit RadioButton(QWidget *parent = nullptr);
    explicit RadioButton(const QString &text, QWidget *parent = nullptr);

    /// Computes the gloss for a dot that fills @p rect. Its centre is measured from (0, 0) and not
    /// from the rectangle's corner.
    void getIndicatorRadialGradient(const QRect &rect);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void drawDot(QPainter &painter, const QRect &indicator);

    QRadialGradient indicatorGradient; ///< computed at the first paint of the checked state
};
