#include "fingerwalk.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QScopedValueRollback>
#include <QTest>
#include <QTimer>
#include <QWindow>

namespace {
constexpr int moodLength = 60;   // steps until the mood of the tools changes
constexpr int rescueHold = 2600; // ms: two seconds, and time for the polls to notice
constexpr int longestHold = 120; // ms, for all other holds
constexpr int dragSteps = 4;
constexpr int candidates = 30;  // compared before one is touched
constexpr int waitForTouch = 5; // ms until the next look whether the touch has ended

bool canBeTouched(const QWidget *widget)
{
    return widget->isVisible() && widget->isEnabled() && !widget->visibleRegion().isEmpty()
        && widget->testAttribute(Qt::WA_WState_Created);
}

/// The widgets of @p window that may react to touches, without containers and labels.
QList<QWidget *> touchables(const QWidget *window)
{
    QList<QWidget *> found;
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        const bool isContainer = !widget->findChildren<QWidget *>().isEmpty()
            && qobject_cast<QAbstractScrollArea *>(widget) == nullptr;
        const bool isText = qobject_cast<QLabel *>(widget) != nullptr;
        if (widget->window() == window && !isContainer && !isText && canBeTouched(widget)) {
            found += widget;
        }
    }
    return found;
}

QWidget *visibleKeypad()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("MyInputPanel") && widget->isVisible()) {
            return widget;
        }
    }
    return nullptr;
}

/// The topmost window that is not modal, for example a pixel test.
QWidget *topWindow()
{
    QWidget *top = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        const bool isWindow = widget->windowType() == Qt::Window
            || widget->windowType() == Qt::Dialog || widget->isFullScreen();
        if (isWindow && widget->isVisible() && !widget->inherits("MyInputPanel")) {
            top = widget; // Qt lists the window that was shown last at the end
        }
    }
    return top;
}

/// Widgets of the same class and name in the same kind of window count as one kind.
QString kindOf(const QWidget *widget)
{
    return QString("%1 %2 in %3")
        .arg(widget->metaObject()->className(), widget->objectName(),
             widget->window()->metaObject()->className());
}

QPoint inWindow(const QWidget *widget, QPoint at)
{
    return widget->mapTo(widget->window(), at);
}
} // namespace

FingerWalk::FingerWalk(quint32 seed, int steps)
    : m_random(seed)
    , m_steps(steps)
{
}

void FingerWalk::runFor(int steps)
{
    m_lastStep = qMin(m_step + steps, m_steps);
    m_tools.forgetCalls();
    m_sinceStep.start();
    QTimer::singleShot(0, this, &FingerWalk::takeStep);
    QApplication::exec();
    m_lastStep = 0; // steps that are still queued must do nothing
    QApplication::processEvents();
}

/// Schedules the next step before taking this one: if a dialog opens now, its own event loop has to
/// run the next step.
void FingerWalk::takeStep()
{
    if (m_isTouching) {
        QDrag::cancel(); // dragged text blocks until the release, which would never come
        QTimer::singleShot(waitForTouch, this, &FingerWalk::takeStep);
        return;
    }
    // Not while touching: QTest::qWait() makes the event dispatcher forget that it must not wait
    // for the next event, and the factory window has none.
    if (m_step >= m_lastStep) {
        QApplication::exit();
        return;
    }
    QTimer::singleShot(0, this, &FingerWalk::takeStep);
    measurePause();
    if (m_step % moodLength == 0) {
        changeMood();
    }
    ++m_step;
    touch();
}

void FingerWalk::measurePause()
{
    const qint64 pause = m_sinceStep.restart();
    if (pause > m_longestPause) {
        m_longestPause = pause;
        m_longestPauseStep = m_step;
    }
}

/// Chooses the normal mood most of the time.
void FingerWalk::changeMood()
{
    m_tools.setMood(chance(70) ? 0 : m_random.bounded(FickleTools::moods));
}

void FingerWalk::touch()
{
    QWidget *window = currentWindow();
    if (window == nullptr) {
        return;
    }
    QWidget *target = chooseTarget(window);
    ++m_touched[QString("%1 in %2")
                    .arg(target->metaObject()->className(), window->metaObject()->className())];
    const QRect area = target->visibleRegion().boundingRect();
    const QPoint at(area.left() + int(m_random.bounded(area.width())),
                    area.top() + int(m_random.bounded(area.height())));
    const int kind = m_random.bounded(1000);
    if (kind < 60) {
        drag(target, at);
    } else if (kind < 100) {
        hold(target, at);
    } else {
        tap(target, at);
    }
}

QWidget *FingerWalk::currentWindow()
{
    if (QWidget *popup = QApplication::activePopupWidget()) {
        return popup;
    }
    if (QWidget *keypad = visibleKeypad(); keypad != nullptr && chance(70)) {
        return keypad;
    }
    QWidget *modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : topWindow();
}

/// Mostly chooses a widget that reacts. Of several candidates it takes the kind that was touched
/// least, so that rare ones come soon. Sometimes it chooses any place in the window.
QWidget *FingerWalk::chooseTarget(QWidget *window)
{
    const QList<QWidget *> all = touchables(window);
    if (all.isEmpty() || chance(5)) {
        return window;
    }
    QWidget *chosen = nullptr;
    for (int candidate = 0; candidate < candidates; ++candidate) {
        QWidget *next = all.at(m_random.bounded(all.size()));
        if (chosen == nullptr || m_touched.value(kindOf(next)) < m_touched.value(kindOf(chosen))) {
            chosen = next;
        }
    }
    return chosen;
}

void FingerWalk::tap(QWidget *target, QPoint at)
{
    QWindow *window = target->window()->windowHandle();
    const QPoint place = inWindow(target, at);
    {
        const QScopedValueRollback touching(m_isTouching, true);
        QTest::mousePress(window, Qt::LeftButton, {}, place);
    }
    // The release may open a dialog, so m_isTouching must be false by then.
    if (const QPointer<QWindow> alive = window) {
        QTest::mouseRelease(window, Qt::LeftButton, {}, place);
    }
}

void FingerWalk::hold(QWidget *target, QPoint at)
{
    const bool isRescue = chance(3);
    const QPointer<QWindow> window = target->window()->windowHandle();
    const QPoint place = inWindow(target, at);
    {
        const QScopedValueRollback touching(m_isTouching, true);
        m_tools.setFinger(true);
        QTest::mousePress(window, Qt::LeftButton, {}, place);
        QTest::qWait(isRescue ? rescueHold : int(m_random.bounded(longestHold)));
        m_tools.setFinger(false);
    }
    if (window) {
        QTest::mouseRelease(window, Qt::LeftButton, {}, place);
    }
}

void FingerWalk::drag(QWidget *target, QPoint at)
{
    const QPointer<QWindow> window = target->window()->windowHandle();
    QPoint place = inWindow(target, at);
    const QPoint way(int(m_random.bounded(-20, 20)), int(m_random.bounded(-60, 60)));
    {
        const QScopedValueRollback touching(m_isTouching, true);
        QTest::mousePress(window, Qt::LeftButton, {}, place);
        for (int moved = 0; moved < dragSteps && window; ++moved) {
            place += way;
            QTest::mouseMove(window, place, 1);
        }
    }
    if (window) {
        QTest::mouseRelease(window, Qt::LeftButton, {}, place);
    }
}
