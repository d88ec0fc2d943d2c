#include "firstframewatcher.h"

#include <poll.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {
constexpr int waitLimit = 10000; // ms
constexpr uint8_t sentFlag = 0x80;
constexpr uint32_t colorMask = 0xffffff; // the fourth byte of a pixel is unused

struct Free
{
    void operator()(void *memory) const { std::free(memory); }
};
template <typename T> using Answer = std::unique_ptr<T, Free>;

[[noreturn]] void die(const char *message)
{
    std::fprintf(stderr, "%s\n", message);
    std::exit(EXIT_FAILURE);
}

Answer<xcb_generic_event_t> nextEvent(xcb_connection_t *connection)
{
    Answer<xcb_generic_event_t> event(xcb_poll_for_event(connection));
    while (event == nullptr) {
        pollfd input{xcb_get_file_descriptor(connection), POLLIN, 0};
        if (poll(&input, 1, waitLimit) < 1 || xcb_connection_has_error(connection) != 0) {
            die("the window was not shown or closed in time");
        }
        event.reset(xcb_poll_for_event(connection));
    }
    return event;
}

uint8_t typeOf(const xcb_generic_event_t &event)
{
    return event.response_type & static_cast<uint8_t>(~sentFlag);
}

template <typename T> const T &as(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const T &>(event);
}
} // namespace

FirstFrameWatcher::FirstFrameWatcher()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    if (xcb_connection_has_error(m_connection) != 0) {
        die("there is no display");
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    findDamageExtension();
    watchScreen();
    forgetEvents();
}

FirstFrameWatcher::~FirstFrameWatcher()
{
    xcb_disconnect(m_connection);
}

std::chrono::steady_clock::time_point FirstFrameWatcher::waitForFirstFrame()
{
    while (!m_painted) {
        handleNextEvent();
    }
    const auto painted = std::chrono::steady_clock::now();
    requirePicture();
    return painted;
}

std::chrono::steady_clock::time_point FirstFrameWatcher::waitForWindow()
{
    while (std::none_of(m_mapped.begin(), m_mapped.end(),
                        [this](xcb_window_t window) { return isLarge(window); })) {
        handleNextEvent();
    }
    return std::chrono::steady_clock::now();
}

bool FirstFrameWatcher::isLarge(xcb_window_t window) const
{
    const Answer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
    return geometry != nullptr && geometry->width >= 100 && geometry->height >= 100;
}

void FirstFrameWatcher::waitForEnd()
{
    while (!m_mapped.empty()) {
        handleNextEvent();
    }
}

void FirstFrameWatcher::findDamageExtension()
{
    const xcb_query_extension_reply_t *extension
        = xcb_get_extension_data(m_connection, &xcb_damage_id);
    if (extension == nullptr || extension->present == 0) {
        die("the display has no damage extension");
    }
    m_damageEvent = static_cast<uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY);
    // The server rejects requests of the extension from a client that has not queried its version.
    const Answer<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
        m_connection, xcb_damage_query_version(m_connection, 1, 1), nullptr));
}

/// Watches the whole screen: to watch the new window could be too late for its first frame.
void FirstFrameWatcher::watchScreen()
{
    const uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_EVENT_MASK, &events);
    xcb_damage_create(m_connection, xcb_generate_id(m_connection), m_screen->root,
                      XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
}

/// Discards the server's first event, which reports the whole screen as damaged.
void FirstFrameWatcher::forgetEvents()
{
    const Answer<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    while (Answer<xcb_generic_event_t>(xcb_poll_for_event(m_connection)) != nullptr) { }
}

void FirstFrameWatcher::handleNextEvent()
{
    const auto event = nextEvent(m_connection);
    const uint8_t type = typeOf(*event);
    if (type == XCB_MAP_NOTIFY) {
        m_mapped.insert(as<xcb_map_notify_event_t>(*event).window);
    } else if (type == XCB_UNMAP_NOTIFY) {
        m_mapped.erase(as<xcb_unmap_notify_event_t>(*event).window);
    } else if (type == m_damageEvent && !m_mapped.empty()) {
        m_painted = m_painted || fillsScreen(as<xcb_damage_notify_event_t>(*event).area);
    }
}

bool FirstFrameWatcher::fillsScreen(const xcb_rectangle_t &area) const
{
    return area.width == m_screen->width_in_pixels && area.height == m_screen->height_in_pixels;
}

/// Without this, a screen that was only cleared would count as painted.
void FirstFrameWatcher::requirePicture() const
{
    const Answer<xcb_get_image_reply_t> image(xcb_get_image_reply(
        m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, 0, 0,
                      m_screen->width_in_pixels, m_screen->height_in_pixels, ~0U),
        nullptr));
    if (image == nullptr) {
        die("the first frame cannot be read");
    }
    const auto size = static_cast<size_t>(xcb_get_image_data_length(image.get()));
    std::vector<uint32_t> pixels(size / sizeof(uint32_t));
    std::memcpy(pixels.data(), xcb_get_image_data(image.get()), pixels.size() * sizeof(uint32_t));
    const auto differs
        = [&](uint32_t pixel) { return ((pixel ^ pixels.front()) & colorMask) != 0; };
    if (std::none_of(pixels.begin(), pixels.end(), differs)) {
        die("the first frame is blank");
    }
}
