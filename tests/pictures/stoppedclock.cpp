#include "stoppedclock.h"

#include "widgets/startingapplicationaniationbutton.h"

#include <QApplication>
#include <QDateTimeEdit>
#include <QEvent>
#include <QTimer>

namespace {
constexpr int tickInterval = 1000; // ms

bool ticksEverySecond(const QObject *object)
{
    const auto *timer = qobject_cast<const QTimer *>(object);
    return (timer != nullptr && timer->interval() == tickInterval)
        || qobject_cast<const StartingApplicationAniationButton *>(object) != nullptr;
}
} // namespace

StoppedClock::StoppedClock()
{
    qApp->installEventFilter(this);
}

void StoppedClock::setTime(const QWidget *page)
{
    page->findChild<QDateTimeEdit *>()->setDateTime({{2015, 8, 31}, {16, 26, 0}});
}

bool StoppedClock::eventFilter(QObject *watched, QEvent *event)
{
    return event->type() == QEvent::Timer && ticksEverySecond(watched);
}
