#pragma once

#include "shell/biosinterface.h"

#include <QList>

#include <functional>

class QStackedWidget;
class SettingsButton;

/// Longer than the toolkit collects updates, 5 ms.
inline constexpr int restTime = 10; // ms

/// Waits until the X server has done what the toolkit has handed over to it.
void waitForServer();

/// Milliseconds from the begin of @p act until @p painted is painted and on the screen. Ends the
/// benchmark if that never comes.
double timeUntilPainted(QWidget *painted, const std::function<void()> &act);

/// Milliseconds from a tap on the middle of @p target, a part of @p window, until @p painted is
/// painted and on the screen.
double tapTime(QWidget *window, QWidget *target, QWidget *painted);

/// The keypad, once it is on the screen. Ends the benchmark if it does not come.
QWidget *shownKeypad();

/// The settings window as a finger sees it.
class ShownWindow
{
public:
    ShownWindow();

    QWidget &widget() { return m_window; }
    QStackedWidget *pages() const;
    QWidget *countDown() const;

    /// The buttons of the main settings page that open a page. It must be shown.
    QList<SettingsButton *> pageButtons() const;

    QWidget *pageOf(const SettingsButton *button) const;
    QWidget *cancelButton() const;

    /// Milliseconds from a tap on @p target until @p painted, a page or a part of one, is painted
    /// and on the screen.
    double tap(QWidget *target, QWidget *painted);

private:
    BiosInterface m_window;
};
