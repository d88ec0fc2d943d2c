#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <set>

/// Tells when another program has painted its window. It is an X client that gets events for all
/// windows and for everything drawn on the screen. Exits the benchmark if an event does not come.
class FirstFrameWatcher
{
public:
    FirstFrameWatcher();
    ~FirstFrameWatcher();
    FirstFrameWatcher(const FirstFrameWatcher &) = delete;
    FirstFrameWatcher &operator=(const FirstFrameWatcher &) = delete;

    /// Waits until a window is mapped and one drawing has covered the whole screen.
    std::chrono::steady_clock::time_point waitForFirstFrame();

    /// Waits for a mapped window of at least 100x100 pixels. Qt and GTK also map tiny helper
    /// windows.
    std::chrono::steady_clock::time_point waitForWindow();

    /// Waits until no window is mapped. The program must have been killed before.
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
