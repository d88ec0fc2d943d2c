#include "shownwindow.h"

#include "resulttable.h"
#include "shell/pagename.h"
#include "widgets/settingsbutton.h"
#include "widgets/startingapplicationaniationbutton.h"

#include <QApplication>
#include <QPaintEvent>
#include <QStackedWidget>
#include <QTest>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>

namespace {
constexpr int paintLimit = 5000; // ms to wait for a paint event

/// Notices when a widget has been painted.
class PaintWatcher : public QObject
{
public:
    explicit PaintWatcher(QWidget *widget) { widget->installEventFilter(this); }
    bool hasPainted() const { return m_painted; }

    bool eventFilter(QObject *, QEvent *event) override
    {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_painted = false;
};
} // namespace

void waitForServer()
{
    auto *connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

double timeUntilPainted(QWidget *painted, const std::function<void()> &act)
{
    const PaintWatcher watcher(painted);
    const auto begin = now();
    act();
    while (!watcher.hasPainted()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (millisecondsSince(begin) > paintLimit) {
            qFatal("the widget was not painted");
        }
    }
    waitForServer();
    const double time = millisecondsSince(begin);
    QTest::qWait(restTime); // pending work must not count in the next measurement
    return time;
}

ShownWindow::ShownWindow()
{
    m_window.show();
    if (!QTest::qWaitForWindowExposed(&m_window)) {
        qFatal("the window does not show");
    }
}

QStackedWidget *ShownWindow::pages() const
{
    return m_window.findChild<QStackedWidget *>();
}

QWidget *ShownWindow::countDown() const
{
    return m_window.findChild<StartingApplicationAniationButton *>();
}

QList<SettingsButton *> ShownWindow::pageButtons() const
{
    QList<SettingsButton *> found;
    const auto buttons = pages()->currentWidget()->findChildren<SettingsButton *>();
    std::copy_if(buttons.begin(), buttons.end(), std::back_inserter(found),
                 [](const SettingsButton *button) {
                     return button->isVisible() && button->objectName().contains(':');
                 });
    return found;
}

QWidget *ShownWindow::pageOf(const SettingsButton *button) const
{
    return pages()->widget(pageIndexFromName(button->objectName()));
}

QWidget *ShownWindow::cancelButton() const
{
    return pages()->currentWidget()->findChild<SettingsButton *>("cancel");
}

double ShownWindow::tap(QWidget *target, QWidget *painted)
{
    return tapTime(&m_window, target, painted);
}

double tapTime(QWidget *window, QWidget *target, QWidget *painted)
{
    const QPoint at = target->mapTo(window, target->rect().center());
    return timeUntilPainted(painted, [window, at] {
        QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, at);
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, at);
    });
}

QWidget *shownKeypad()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("MyInputPanel") && QTest::qWaitForWindowExposed(widget)) {
            return widget;
        }
    }
    qFatal("no keypad is shown");
}
