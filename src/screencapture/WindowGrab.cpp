#include "screencapture/WindowGrab.h"

#include "screencapture/XConnection.h"

#include <cstring>
#include <xcb/composite.h>

namespace framora {

namespace {

// A program that has painted most of what was missing, and then paused for so long, has finished.
constexpr std::chrono::milliseconds kQuiet{60};
constexpr long kMostOf = 5; // all but a fifth: a frame's plain parts are painted by the server itself

long pixelsOf(const std::vector<Rect>& rects) {
    long pixels = 0;
    for (const Rect& r : rects)
        pixels += static_cast<long>(r.width) * r.height;
    return pixels;
}

void makeOpaque(ServerImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        uint32_t* row = image.row(y);
        for (int x = 0; x < image.width(); ++x)
            row[x] |= 0xff000000U;
    }
}

void copyPart(const ServerImage& from, const Rect& part, ServerImage& to, Point at) {
    for (int y = 0; y < part.height; ++y)
        std::memcpy(to.row(at.y + y) + at.x, from.row(part.y + y) + part.x,
                    static_cast<std::size_t>(part.width) * 4);
}

/// Transparent outside the shape; `origin` is the image's place on the root window.
void cutToShape(ServerImage& image, const std::vector<Rect>& shape, Point origin) {
    if (shape.empty())
        return;
    std::vector<Rect> outside{{0, 0, image.width(), image.height()}};
    for (const Rect& part : shape)
        outside = subtracted(outside, part.translated(-origin.x, -origin.y));
    for (const Rect& part : outside)
        for (int y = part.y; y < part.bottom(); ++y)
            std::fill_n(image.row(y) + part.x, part.width, 0U);
}

} // namespace

WindowGrab::WindowGrab(const XConnection& connection) : m_connection(connection) {
    if (connection.hasDamage())
        m_damageEvent = xcb_get_extension_data(connection, &xcb_damage_id)->first_event;
}

void WindowGrab::prepare(const WindowList& windows, Clock::time_point now) {
    if (m_prepared)
        return;
    m_prepared = true;
    m_preparedAt = now;
    if (!m_connection.hasComposite())
        return;
    // A window whose pixels can be named is kept by a compositing manager already.
    struct Naming {
        const TopLevel* window;
        xcb_pixmap_t pixmap;
        xcb_void_cookie_t cookie;
    };
    std::vector<Naming> namings;
    for (const TopLevel& window : windows.windows()) {
        if (!window.selectable)
            continue;
        const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
        namings.push_back(
            {&window, pixmap, xcb_composite_name_window_pixmap_checked(m_connection, window.window, pixmap)});
    }
    // Redirecting maps a window anew inside the server, which takes the focus away from it.
    const auto focus = m_connection.reply(xcb_get_input_focus(m_connection), xcb_get_input_focus_reply);
    for (const Naming& naming : namings) {
        if (m_connection.succeeded(naming.cookie)) {
            xcb_free_pixmap(m_connection, naming.pixmap);
            continue;
        }
        xcb_composite_redirect_window(m_connection, naming.window->window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        m_redirected.insert(naming.window->window);
        expectRepaint(windows, *naming.window, now);
    }
    if (!m_redirected.empty() && focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT)
        xcb_set_input_focus(m_connection, focus->revert_to, focus->focus, XCB_CURRENT_TIME);
}

void WindowGrab::expectRepaint(const WindowList& windows, const TopLevel& window, Clock::time_point now) {
    auto missing = std::vector{window.outer};
    // The frozen screen has what was visible, but no alpha.
    if (window.depth != 32)
        for (const Rect& part : windows.uncovered(window, m_connection.rootRect()))
            missing = subtracted(missing, part);
    if (missing.empty() || !m_connection.hasDamage())
        return;
    // Every pixel that is painted is reported once. The first report is of the whole window as it is.
    const xcb_damage_damage_t damage = xcb_generate_id(m_connection);
    xcb_damage_create(m_connection, damage, window.window, XCB_DAMAGE_REPORT_LEVEL_DELTA_RECTANGLES);
    const auto cookie = xcb_damage_subtract(m_connection, damage, XCB_NONE, XCB_NONE);
    const long pixels = pixelsOf(missing);
    m_repaints.emplace(
        window.window,
        Repaint{{window.outer.x, window.outer.y}, std::move(missing), pixels, cookie.sequence, now});
}

bool WindowGrab::handleEvent(const xcb_generic_event_t& event, Clock::time_point now) {
    if (!m_damageEvent || (event.response_type & 0x7f) != m_damageEvent + XCB_DAMAGE_NOTIFY)
        return false;
    const auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
    const auto it = m_repaints.find(damage.drawable);
    if (it == m_repaints.end() || static_cast<int>(event.full_sequence - it->second.since) <= 0)
        return true;
    Repaint& repaint = it->second;
    repaint.last = now;
    repaint.missing =
        subtracted(repaint.missing, {repaint.origin.x + damage.area.x, repaint.origin.y + damage.area.y,
                                     damage.area.width, damage.area.height});
    return true;
}

bool WindowGrab::ready(xcb_window_t window, Clock::time_point now) const {
    const auto it = m_repaints.find(window);
    if (it == m_repaints.end() || now - m_preparedAt >= kLongestWait)
        return true;
    const Repaint& repaint = it->second;
    return pixelsOf(repaint.missing) * kMostOf <= repaint.missingAtFirst && now - repaint.last >= kQuiet;
}

std::unique_ptr<ServerImage> WindowGrab::named(const TopLevel& window) const {
    const auto format = PixelFormat::of(m_connection, window.depth, window.visual);
    if (!m_connection.hasComposite() || !format.supported())
        return nullptr;
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    if (!m_connection.succeeded(
            xcb_composite_name_window_pixmap_checked(m_connection, window.window, pixmap)))
        return nullptr;
    std::unique_ptr<ServerImage> image;
    if (const auto size = m_connection.reply(xcb_get_geometry(m_connection, pixmap), xcb_get_geometry_reply))
        image = ServerImage::create(m_connection, size->width, size->height);
    if (image && !image->read(pixmap, format))
        image.reset();
    xcb_free_pixmap(m_connection, pixmap);
    if (image && window.depth != 32)
        makeOpaque(*image);
    return image;
}

Picture WindowGrab::fromScreen(const TopLevel& window, const ServerImage& frozen) const {
    const Rect part = window.visible.intersected({0, 0, frozen.width(), frozen.height()});
    if (part.empty())
        return {};
    auto image = ServerImage::create(m_connection, part.width, part.height);
    if (!image)
        return {};
    copyPart(frozen, part, *image, {0, 0});
    makeOpaque(*image);
    cutToShape(*image, window.shape, {part.x, part.y});
    return {std::move(image), {0, 0, part.width, part.height}};
}

Picture WindowGrab::take(const WindowList& windows, const TopLevel& window, const ServerImage& frozen) {
    auto image = named(window);
    if (!image)
        return fromScreen(window, frozen);
    const Point origin{window.outer.x, window.outer.y};
    const bool sameSize = image->width() == window.outer.width && image->height() == window.outer.height;
    if (m_redirected.contains(window.window) && window.depth != 32 && sameSize) {
        // What was visible is taken as it was when the screen froze, whatever the program painted since.
        for (const Rect& part : windows.uncovered(window, {0, 0, frozen.width(), frozen.height()}))
            copyPart(frozen, part, *image, {part.x - origin.x, part.y - origin.y});
        makeOpaque(*image);
    }
    const Rect whole{0, 0, image->width(), image->height()};
    Rect part = window.visible.translated(-origin.x, -origin.y).intersected(whole);
    if (part.empty() || (!sameSize && window.visible == window.outer))
        part = whole;
    if (sameSize)
        cutToShape(*image, window.shape, origin);
    return {std::move(image), part};
}

} // namespace framora
