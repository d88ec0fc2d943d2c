#pragma once

#include <QObject>

class QWidget;

/// While it lives, what ticks once a second on the screen stands still.
class StoppedClock : public QObject
{
public:
    StoppedClock();

    /// Makes the time editor of @p page show the time of all pictures.
    static void setTime(const QWidget *page);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
