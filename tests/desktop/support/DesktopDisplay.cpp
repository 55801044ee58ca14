#include "desktop/support/DesktopDisplay.h"

#include <xcb/shape.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <thread>

namespace framora {
namespace {

struct Freer {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply> using Owned = std::unique_ptr<Reply, Freer>;

template <typename Reply> Owned<Reply> own(Reply* reply) {
    return Owned<Reply>(reply);
}

} // namespace

DesktopDisplay::DesktopDisplay(const QString& displayName) {
    m_connection = xcb_connect(displayName.toUtf8().constData(), nullptr);
    if (xcb_connection_has_error(m_connection)) {
        xcb_disconnect(m_connection);
        throw std::runtime_error("no X display at " + displayName.toStdString());
    }
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    readKeyboard();
}

DesktopDisplay::~DesktopDisplay() {
    xcb_disconnect(m_connection);
}

std::uint32_t DesktopDisplay::atom(const char* name) {
    auto& known = m_atoms[name];
    if (!known) {
        const auto reply = own(xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, std::uint16_t(std::strlen(name)), name), nullptr));
        known = reply ? reply->atom : 0;
    }
    return known;
}

QSize DesktopDisplay::size() const {
    const auto reply =
        own(xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, m_root), nullptr));
    return reply ? QSize(reply->width, reply->height) : QSize();
}

QImage DesktopDisplay::screenshot() {
    return screenshot(QRect(QPoint(), size()));
}

QImage DesktopDisplay::screenshot(const QRect& area) {
    const QRect inside = area & QRect(QPoint(), size());
    QImage image(inside.size(), QImage::Format_RGB32);
    // Bands, so that no reply outgrows the server's largest request.
    constexpr int bandHeight = 256;
    for (int y = 0; y < inside.height(); y += bandHeight) {
        const int rows = std::min(bandHeight, inside.height() - y);
        const auto reply =
            own(xcb_get_image_reply(m_connection,
                                    xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root,
                                                  std::int16_t(inside.x()), std::int16_t(inside.y() + y),
                                                  std::uint16_t(inside.width()), std::uint16_t(rows), ~0U),
                                    nullptr));
        if (!reply)
            return {};
        const std::uint8_t* data = xcb_get_image_data(reply.get());
        const auto rowBytes = std::size_t(inside.width()) * 4;
        for (int row = 0; row < rows; ++row)
            std::memcpy(image.scanLine(y + row), data + std::size_t(row) * rowBytes, rowBytes);
    }
    return image;
}

QColor DesktopDisplay::pixelAt(const QPoint& position) {
    const QImage image = screenshot(QRect(position, QSize(1, 1)));
    return image.isNull() ? QColor() : image.pixelColor(0, 0);
}

QString DesktopDisplay::text(std::uint32_t window, const char* property) {
    const auto reply = own(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, window, atom(property), XCB_ATOM_ANY, 0, 1024),
        nullptr));
    if (!reply || reply->format != 8)
        return {};
    return QString::fromUtf8(static_cast<const char*>(xcb_get_property_value(reply.get())),
                             xcb_get_property_value_length(reply.get()));
}

std::vector<std::uint32_t> DesktopDisplay::cardinals(std::uint32_t window, const char* property) {
    const auto reply = own(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, window, atom(property), XCB_ATOM_ANY, 0, 1024),
        nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

void DesktopDisplay::collect(std::uint32_t window, const QRect& frame, bool overrideRedirect, int depth,
                             bool alsoUnmapped, std::vector<DesktopWindow>& result) {
    const auto attributes = own(xcb_get_window_attributes_reply(
        m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
    const auto geometry =
        own(xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
    const auto place = own(xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr));
    if (!attributes || !geometry || !place || attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
        return;
    const bool mapped = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    if (!mapped && !alsoUnmapped)
        return;
    DesktopWindow found;
    found.id = window;
    found.geometry = QRect(place->dst_x, place->dst_y, geometry->width, geometry->height);
    found.frame = depth == 0 ? found.geometry : frame;
    found.mapped = mapped;
    found.overrideRedirect = depth == 0 && attributes->override_redirect;
    const QStringList classes = text(window, "WM_CLASS").split(QChar::Null);
    if (classes.size() > 1) {
        found.instanceName = classes[0];
        found.className = classes[1];
    }
    found.title = text(window, "_NET_WM_NAME");
    if (found.title.isEmpty())
        found.title = text(window, "WM_NAME");
    const bool isClient = classes.size() > 1 || !cardinals(window, "WM_STATE").empty();
    if (isClient) {
        result.push_back(found);
        return;
    }
    // A frame: what it holds is the program's window.
    const std::size_t before = result.size();
    if (depth < 3) {
        const auto tree =
            own(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr));
        for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i)
            collect(xcb_query_tree_children(tree.get())[i], found.frame,
                    overrideRedirect || found.overrideRedirect, depth + 1, alsoUnmapped, result);
    }
    if (result.size() == before && depth == 0 && found.overrideRedirect)
        result.push_back(found);
}

std::vector<DesktopWindow> DesktopDisplay::windows(bool alsoUnmapped) {
    std::vector<DesktopWindow> result;
    const auto tree = own(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_root), nullptr));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i)
        collect(xcb_query_tree_children(tree.get())[i], {}, false, 0, alsoUnmapped, result);
    return result;
}

std::optional<DesktopWindow> DesktopDisplay::windowTitled(const QString& text) {
    std::optional<DesktopWindow> found;
    for (const DesktopWindow& window : windows())
        if (window.title.contains(text))
            found = window;
    return found;
}

std::optional<DesktopWindow> DesktopDisplay::windowOfClass(const QString& text) {
    std::optional<DesktopWindow> found;
    for (const DesktopWindow& window : windows())
        if (window.className.contains(text, Qt::CaseInsensitive) ||
            window.instanceName.contains(text, Qt::CaseInsensitive))
            found = window;
    return found;
}

std::uint32_t DesktopDisplay::activeWindow() {
    const auto values = cardinals(m_root, "_NET_ACTIVE_WINDOW");
    return values.empty() ? 0 : values.front();
}

std::uint32_t DesktopDisplay::focusedWindow() {
    const auto reply =
        own(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return reply ? reply->focus : 0;
}

QRect DesktopDisplay::inputArea(std::uint32_t window) {
    const auto place = own(xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr));
    const auto reply = own(xcb_shape_get_rectangles_reply(
        m_connection, xcb_shape_get_rectangles(m_connection, window, XCB_SHAPE_SK_INPUT), nullptr));
    QRect bounds;
    const xcb_rectangle_t* rectangles = reply ? xcb_shape_get_rectangles_rectangles(reply.get()) : nullptr;
    for (int i = 0; reply && i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i)
        bounds |= QRect(rectangles[i].x, rectangles[i].y, rectangles[i].width, rectangles[i].height);
    return place ? bounds.translated(place->dst_x, place->dst_y) : QRect();
}

int DesktopDisplay::countBelow(std::uint32_t window) {
    const auto tree = own(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr));
    int count = 0;
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i)
        count += 1 + countBelow(xcb_query_tree_children(tree.get())[i]);
    return count;
}

int DesktopDisplay::windowCount() {
    return countBelow(m_root);
}

std::uint32_t DesktopDisplay::selectionOwner(const char* selection) {
    const auto reply = own(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, atom(selection)), nullptr));
    return reply ? reply->owner : 0;
}

bool DesktopDisplay::rootPropertyExists(const char* name) {
    const auto reply = own(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, m_root, atom(name), XCB_ATOM_ANY, 0, 1), nullptr));
    return reply && reply->type != XCB_NONE;
}

QPoint DesktopDisplay::pointerPosition() {
    const auto reply =
        own(xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_root), nullptr));
    return reply ? QPoint(reply->root_x, reply->root_y) : QPoint();
}

void DesktopDisplay::sync() {
    // A round trip: the server has handled everything sent before it.
    own(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void DesktopDisplay::queue(std::uint8_t type, std::uint8_t detail, const QPoint& position) {
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_root, std::int16_t(position.x()),
                        std::int16_t(position.y()), 0);
}

void DesktopDisplay::fake(std::uint8_t type, std::uint8_t detail, const QPoint& position) {
    queue(type, detail, position);
    sync();
}

void DesktopDisplay::moveTo(const QPoint& position) {
    fake(XCB_MOTION_NOTIFY, 0, position);
}

void DesktopDisplay::press(Button button) {
    fake(XCB_BUTTON_PRESS, std::uint8_t(button));
}

void DesktopDisplay::release(Button button) {
    fake(XCB_BUTTON_RELEASE, std::uint8_t(button));
}

void DesktopDisplay::click(const QPoint& position, Button button) {
    moveTo(position);
    press(button);
    release(button);
}

void DesktopDisplay::doubleClick(const QPoint& position) {
    click(position);
    // The pace of a hand: a window manager holds each press while it raises the window, and where the next
    // one is there by then already, it gets lost between the manager and the server.
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    click(position);
}

void DesktopDisplay::drag(const QPoint& from, const QPoint& to, int steps) {
    moveTo(from);
    press();
    for (int i = 1; i <= steps; ++i) {
        moveTo(from + (to - from) * i / steps);
        // The pace of a hand: programs that look at the pointer between events see the way, not only its end.
        std::this_thread::sleep_for(std::chrono::milliseconds(8));
    }
    release();
}

void DesktopDisplay::readKeyboard() {
    const auto* setup = xcb_get_setup(m_connection);
    const auto count = std::uint8_t(setup->max_keycode - setup->min_keycode + 1);
    const auto reply = own(xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, setup->min_keycode, count), nullptr));
    if (!reply)
        throw std::runtime_error("the X display has no keyboard");
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    const int width = reply->keysyms_per_keycode;
    for (int level = 0; level < std::min(2, width); ++level)
        for (int key = 0; key < count; ++key) {
            const xcb_keysym_t symbol = symbols[key * width + level];
            if (symbol && !m_keys.contains(symbol))
                m_keys.insert(symbol, {std::uint8_t(setup->min_keycode + key), level == 1});
        }
}

DesktopDisplay::KeyPlace DesktopDisplay::placeOf(std::uint32_t keysym) const {
    const auto found = m_keys.constFind(keysym);
    if (found == m_keys.constEnd())
        throw std::runtime_error("no key for keysym " + std::to_string(keysym));
    return *found;
}

void DesktopDisplay::keyDown(const char* key) {
    fake(XCB_KEY_PRESS, placeOf(xkb_keysym_from_name(key, XKB_KEYSYM_NO_FLAGS)).code);
}

void DesktopDisplay::keyUp(const char* key) {
    fake(XCB_KEY_RELEASE, placeOf(xkb_keysym_from_name(key, XKB_KEYSYM_NO_FLAGS)).code);
}

void DesktopDisplay::key(std::initializer_list<const char*> keys) {
    std::vector<std::uint8_t> codes;
    for (const char* key : keys)
        codes.push_back(placeOf(xkb_keysym_from_name(key, XKB_KEYSYM_NO_FLAGS)).code);
    stroke(codes);
}

void DesktopDisplay::stroke(const std::vector<std::uint8_t>& codes) {
    // At once: the server repeats a key that is let go late, and a busy machine lets anybody wait.
    for (const std::uint8_t code : codes)
        queue(XCB_KEY_PRESS, code);
    for (auto code = codes.rbegin(); code != codes.rend(); ++code)
        queue(XCB_KEY_RELEASE, *code);
    sync();
}

void DesktopDisplay::type(const QString& text) {
    for (const QChar character : text) {
        // Keysyms of Latin-1 are its code points.
        const KeyPlace place = placeOf(character == QLatin1Char('\n') ? std::uint32_t(XKB_KEY_Return)
                                                                      : std::uint32_t(character.unicode()));
        if (place.shifted)
            stroke({placeOf(XKB_KEY_Shift_L).code, place.code});
        else
            stroke({place.code});
    }
}

void DesktopDisplay::setWallpaper(const QImage& image) {
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    if (m_wallpaper)
        xcb_free_pixmap(m_connection, m_wallpaper);
    m_wallpaper = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection, screen->root_depth, m_wallpaper, m_root, std::uint16_t(pixels.width()),
                      std::uint16_t(pixels.height()));
    const xcb_gcontext_t context = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, context, m_wallpaper, 0, nullptr);
    for (int y = 0; y < pixels.height(); ++y)
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_wallpaper, context,
                      std::uint16_t(pixels.width()), 1, 0, std::int16_t(y), 0, screen->root_depth,
                      std::uint32_t(pixels.width()) * 4, pixels.constScanLine(y));
    xcb_free_gc(m_connection, context);
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_BACK_PIXMAP, &m_wallpaper);
    // Compositors draw the root window from these.
    for (const char* name : {"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"})
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_root, atom(name), XCB_ATOM_PIXMAP, 32, 1,
                            &m_wallpaper);
    xcb_clear_area(m_connection, 0, m_root, 0, 0, 0, 0);
    sync();
}

void DesktopDisplay::activate(std::uint32_t window) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("_NET_ACTIVE_WINDOW");
    event.data.data32[0] = 2; // A pager asks: no focus-stealing doubts.
    xcb_send_event(m_connection, 0, m_root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    sync();
}

void DesktopDisplay::requestClose(std::uint32_t window) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    xcb_send_event(m_connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    sync();
}

} // namespace framora
