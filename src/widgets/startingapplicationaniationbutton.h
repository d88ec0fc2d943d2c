#pragma once

#include "widgets/specialeffects.h"

#include <QColor>
#include <QList>
#include <QWidget>

/// The countdown button. It fills its page, counts from 5 down to 0, one step a second, and shows
/// the number in a ring whose colour changes with each step. The misspelt class name is part of
/// the interface.
class StartingApplicationAniationButton : public QWidget, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    explicit StartingApplicationAniationButton(QWidget *parent = nullptr);

    /// Sets the pressed look and repaints if it changed.
    void setPressed(bool pressed);

signals:
    /// The countdown ended: six seconds after the button was shown, because 0 stays visible for a
    /// whole second too.
    void countDownToZero();

    /// The button was released, even if the finger had left the button's area by then.
    void buttonClicked();

protected:
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void init();
    void stopCounting();
    void drawCircle(QPainter &painter, const QRect &rect);
    void drawText(QPainter &painter, const QRect &rect);

    int m_timerId = 0;
    int m_count = 5;
    bool m_pressed = false;
    QList<QColor> m_colors; ///< of the ring, indexed by the count
};
