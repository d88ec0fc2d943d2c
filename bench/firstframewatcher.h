#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <set>

/// Sees from outside when a program has painted its window: a client of the X server that is told
/// of every window and of all that is drawn on the screen. Ends the benchmark if what it waits for
/// does not happen.
class FirstFrameWatcher
{
public:
    FirstFrameWatcher();
    ~FirstFrameWatcher();
    FirstFrameWatcher(const FirstFrameWatcher &) = delete;
    FirstFrameWatcher &operator=(const FirstFrameWatcher &) = delete;

    /// Waits until a window is there and the whole screen has been drawn in one go.
    std::chrono::steady_clock::time_point waitForFirstFrame();

    /// Waits until a window is shown that is at least 100 pixels wide and high: not a helper of
    /// the toolkit.
    std::chrono::steady_clock::time_point waitForWindow();

    /// Waits until no window is left. Their program must have been ended.
    void waitForEnd();

private:
    void findDamageExtension();
    void watchScreen();
    void forgetEvents();
    void handleNextEvent();
    bool isLarge(xcb_window_t window) const;
    bool fillsScreen(const xcb_rectangle_t &area) const;
    void requirePicture() const;

    xcb_connection_t *m_connection = nullptr;
    const xcb_screen_t *m_screen = nullptr;
    uint8_t m_damageEvent = 0;
    std::set<xcb_window_t> m_mapped;
    bool m_painted = false;
};
