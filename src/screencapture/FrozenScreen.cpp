#include "screencapture/FrozenScreen.h"

#include "screencapture/XConnection.h"

namespace framora {

FrozenScreen::FrozenScreen(const XConnection& c)
    : m_connection(c), m_format(PixelFormat::of(c, c.screen().root_depth, c.screen().root_visual)) {
    const Rect root = c.rootRect();
    if (!m_format.supported() || root.empty())
        return;
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    const auto width = static_cast<uint16_t>(root.width);
    const auto height = static_cast<uint16_t>(root.height);
    if (!c.succeeded(xcb_create_pixmap_checked(c, c.screen().root_depth, pixmap, c.root(), width, height)))
        return;
    m_pixmap = pixmap;
    const xcb_gcontext_t gc = xcb_generate_id(c);
    const uint32_t values[] = {XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
    xcb_create_gc(c, gc, c.root(), XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
    xcb_copy_area(c, c.root(), m_pixmap, gc, 0, 0, 0, 0, width, height);
    xcb_free_gc(c, gc);
}

FrozenScreen::~FrozenScreen() {
    freePixmap();
}

void FrozenScreen::freePixmap() {
    if (m_pixmap)
        xcb_free_pixmap(m_connection, m_pixmap);
    m_pixmap = XCB_NONE;
}

ServerImage* FrozenScreen::image() {
    if (!m_image && m_pixmap) {
        const Rect root = m_connection.rootRect();
        m_image = ServerImage::create(m_connection, root.width, root.height);
        if (m_image && !m_image->read(m_pixmap, m_format))
            m_image.reset();
        freePixmap();
    }
    return m_image.get();
}

std::unique_ptr<ServerImage> FrozenScreen::takeImage() {
    image();
    return std::move(m_image);
}

} // namespace framora
