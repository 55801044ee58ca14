#include "desktop/screencapture/PaintedWindow.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace framora {

namespace {

QRgb opaquePixel(int x, int y, int seed) {
    return qRgb((x * 3 + seed * 40) & 255, (y * 5 + seed * 90) & 255, ((x ^ y) + seed * 17) & 255);
}

QRgb pixelOf(int x, int y, const PaintedWindow::Options& options) {
    const QRgb colour = opaquePixel(x, y, options.seed);
    if (!options.argb)
        return colour;
    constexpr int kCorner = 12;
    const int right = options.geometry.width() - 1 - x;
    const int bottom = options.geometry.height() - 1 - y;
    if (std::min(x, right) + std::min(y, bottom) < kCorner)
        return 0;
    if (x >= 20 && x < 40)
        return qPremultiply(qRgba(qRed(colour), qGreen(colour), qBlue(colour), 128));
    return colour;
}

xcb_atom_t atomOf(xcb_connection_t* c, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : 0;
    std::free(reply);
    return atom;
}

xcb_visualid_t argbVisual(const xcb_screen_t* screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(screen); depths.rem; xcb_depth_next(&depths))
        if (depths.data->depth == 32)
            return xcb_depth_visuals_iterator(depths.data).data->visual_id;
    return 0;
}

void setShape(xcb_connection_t* c, xcb_window_t window, xcb_shape_sk_t kind,
              const std::vector<QRect>& rects) {
    std::vector<xcb_rectangle_t> boxes;
    boxes.reserve(rects.size());
    for (const QRect& r : rects)
        boxes.push_back({static_cast<std::int16_t>(r.x()), static_cast<std::int16_t>(r.y()),
                         static_cast<std::uint16_t>(r.width()), static_cast<std::uint16_t>(r.height())});
    xcb_shape_rectangles(c, XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, window, 0, 0,
                         static_cast<std::uint32_t>(boxes.size()), boxes.data());
}

} // namespace

PaintedWindow::PaintedWindow(const QString& displayName, const Options& options)
    : m_options(options),
      m_picture(options.geometry.size(),
                options.argb ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32) {
    for (int y = 0; y < m_picture.height(); ++y)
        for (int x = 0; x < m_picture.width(); ++x)
            reinterpret_cast<QRgb*>(m_picture.scanLine(y))[x] = pixelOf(x, y, options);

    m_connection = xcb_connect(displayName.toUtf8().constData(), nullptr);
    if (xcb_connection_has_error(m_connection))
        throw std::runtime_error("no display for a painted window");
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_depth = options.argb ? 32 : screen->root_depth;
    const xcb_visualid_t visual = options.argb ? argbVisual(screen) : screen->root_visual;
    const xcb_colormap_t colours = xcb_generate_id(m_connection);
    xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, colours, screen->root, visual);
    m_window = xcb_generate_id(m_connection);
    // A background of its own shows where the program has not painted yet.
    const std::uint32_t values[] = {0xff808080, 0, options.overrideRedirect, XCB_EVENT_MASK_EXPOSURE,
                                    colours};
    const QRect& g = options.geometry;
    xcb_create_window(m_connection, static_cast<std::uint8_t>(m_depth), m_window, screen->root,
                      static_cast<std::int16_t>(g.x()), static_cast<std::int16_t>(g.y()),
                      static_cast<std::uint16_t>(g.width()), static_cast<std::uint16_t>(g.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                          XCB_CW_COLORMAP,
                      values);
    m_gc = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, m_gc, m_window, 0, nullptr);
    const std::string name = "painted " + std::to_string(options.seed);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(name.size()), name.data());
    // Position and size are the user's: a window manager leaves them.
    const std::uint32_t hints[18] = {1 | 2};
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
    if (options.shadow != std::array<std::uint32_t, 4>{})
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window,
                            atomOf(m_connection, "_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, 4,
                            options.shadow.data());
    if (options.desktop) {
        const xcb_atom_t type = atomOf(m_connection, "_NET_WM_WINDOW_TYPE_DESKTOP");
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window,
                            atomOf(m_connection, "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
    }
    if (!options.shape.empty())
        setShape(m_connection, m_window, XCB_SHAPE_SK_BOUNDING, options.shape);
    if (options.clickThrough)
        setShape(m_connection, m_window, XCB_SHAPE_SK_INPUT, {});
    xcb_map_window(m_connection, m_window);
    xcb_flush(m_connection);
    m_thread = std::thread([this] { run(); });
}

PaintedWindow::~PaintedWindow() {
    m_stop = true;
    m_thread.join();
    xcb_disconnect(m_connection);
}

void PaintedWindow::map() {
    xcb_map_window(m_connection, m_window);
    xcb_flush(m_connection);
}

void PaintedWindow::paint() {
    const int rows = std::max(1, 200000 / static_cast<int>(m_picture.bytesPerLine()));
    for (int y = 0; y < m_picture.height(); y += rows) {
        const int count = std::min(rows, m_picture.height() - y);
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, m_gc,
                      static_cast<std::uint16_t>(m_picture.width()), static_cast<std::uint16_t>(count), 0,
                      static_cast<std::int16_t>(y), 0, static_cast<std::uint8_t>(m_depth),
                      static_cast<std::uint32_t>(count * m_picture.bytesPerLine()),
                      m_picture.constScanLine(y));
    }
    // Answered when the server has painted it all.
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    ++m_paints;
}

void PaintedWindow::run() {
    while (!m_stop && !xcb_connection_has_error(m_connection)) {
        bool exposed = false;
        while (auto* event = xcb_poll_for_event(m_connection)) {
            exposed = exposed || (event->response_type & 0x7f) == XCB_EXPOSE;
            std::free(event);
        }
        if (exposed) {
            std::this_thread::sleep_for(std::chrono::milliseconds(m_options.paintDelay));
            paint();
            continue;
        }
        pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&waiting, 1, 20);
    }
}

} // namespace framora
