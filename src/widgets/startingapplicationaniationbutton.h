#pragma once

#include "widgets/specialeffects.h"

#include <QColor>
#include <QList>
#include <QWidget>

/// The countdown: a button that fills its page, counts from 5 down to 0 once a second and shows
/// the number in a ring whose colour changes with it. Its name is misspelt for good.
class StartingApplicationAniationButton : public QWidget, public SpecialEffectsDrawingInterface
{
    Q_OBJECT
public:
    explicit StartingApplicationAniationButton(QWidget *parent = nullptr);

    /// Changes the pressed look and repaints; does nothing if it is the same already.
    void setPressed(bool pressed);

signals:
    /// The count ran out: six seconds after the button was shown, for 0 stays visible for a whole
    /// second as well.
    void countDownToZero();

    /// A finger was lifted from the button, wherever it had moved to meanwhile.
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
    QList<QColor> m_colors; ///< of the ring, by the count
};
