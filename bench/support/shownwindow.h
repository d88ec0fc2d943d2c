#pragma once

#include "shell/biosinterface.h"

#include <QList>

#include <functional>

class QStackedWidget;
class SettingsButton;

/// Longer than the 5 ms for which Qt collects updates.
inline constexpr int restTime = 10; // ms

/// Waits until the X server has handled all requests of Qt.
void waitForServer();

/// Runs @p act. Result: milliseconds until @p painted has been painted and is on the screen.
/// qFatal() if it is not painted.
double timeUntilPainted(QWidget *painted, const std::function<void()> &act);

/// Taps the middle of @p target in @p window. Result: milliseconds until @p painted has been
/// painted and is on the screen.
double tapTime(QWidget *window, QWidget *target, QWidget *painted);

/// Waits for the keypad and returns it. qFatal() if it is not shown.
QWidget *shownKeypad();

/// The settings window on the screen, operated by taps.
class ShownWindow
{
public:
    ShownWindow();

    QWidget &widget() { return m_window; }
    QStackedWidget *pages() const;
    QWidget *countDown() const;

    /// The buttons of the main settings page that open a page. That page must be shown.
    QList<SettingsButton *> pageButtons() const;

    QWidget *pageOf(const SettingsButton *button) const;
    QWidget *cancelButton() const;

    /// Taps @p target. Result: milliseconds until @p painted, a page or a part of one, has been
    /// painted and is on the screen.
    double tap(QWidget *target, QWidget *painted);

private:
    BiosInterface m_window;
};
