#include "platform/x11/X11ColorPicker.h"

#include "platform/Screens.h"
#include "platform/x11/ColorLoupe.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <xcb/xcb_cursor.h>

namespace framora {
namespace {

// Keys by what is printed on them; the numbers are the protocol's.
constexpr xcb_keysym_t keyReturn = 0xff0d;
constexpr xcb_keysym_t keyEnter = 0xff8d;
constexpr xcb_keysym_t keyEscape = 0xff1b;
constexpr xcb_keysym_t keySpace = 0x20;
constexpr xcb_keysym_t keyLeft = 0xff51;
constexpr xcb_keysym_t keyUp = 0xff52;
constexpr xcb_keysym_t keyRight = 0xff53;
constexpr xcb_keysym_t keyDown = 0xff54;

// As long as what opened the picker may still hold the pointer.
constexpr std::chrono::milliseconds grabPause{20};
constexpr int grabTries = 15;

constexpr std::uint16_t pointerEvents =
    XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

/// How Qt calls the server's pixels; invalid for kinds that no server of today has.
QImage::Format formatOf(const xcb_setup_t& setup, std::uint8_t depth) {
    if (setup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
        return QImage::Format_Invalid;
    switch (depth) {
    case 16:
        return QImage::Format_RGB16;
    case 24:
    case 32:
        return QImage::Format_RGB32;
    case 30:
        return QImage::Format_RGB30;
    default:
        return QImage::Format_Invalid;
    }
}

} // namespace

X11ColorPicker::X11ColorPicker(X11Connection& connection, Screens& screens, std::chrono::milliseconds bound)
    : m_connection(connection), m_screens(screens) {
    m_connection.addEventHandler([this](const xcb_generic_event_t& event) {
        if (m_loupe)
            handle(event);
    });
    m_nextTry.setSingleShot(true);
    m_forgotten.setSingleShot(true);
    m_forgotten.setInterval(bound);
    connect(&m_forgotten, &QTimer::timeout, this, [this] { end(std::nullopt); });
}

X11ColorPicker::~X11ColorPicker() {
    cancel();
}

void X11ColorPicker::queryAvailable(std::function<void(bool)> answer) {
    QMetaObject::invokeMethod(
        this, [this, answer = std::move(answer)] { answer(m_connection.isValid()); }, Qt::QueuedConnection);
}

void X11ColorPicker::pick(QWindow* parent, Picked picked, Failed failed) {
    Q_UNUSED(parent)
    end(std::nullopt);
    m_picked = std::move(picked);
    m_failed = std::move(failed);
    start(grabTries);
}

void X11ColorPicker::start(int triesLeft) {
    if (!grab()) {
        if (triesLeft <= 1 || !m_connection.isValid()) {
            fail();
            return;
        }
        m_nextTry.disconnect();
        connect(&m_nextTry, &QTimer::timeout, this, [this, triesLeft] { start(triesLeft - 1); });
        m_nextTry.start(grabPause);
        return;
    }
    // After the grab: whatever is released from now on is heard of.
    m_heldBefore = keysDown();
    m_deciding = 0;
    m_loupe = std::make_unique<ColorLoupe>(hasCompositor());
    m_forgotten.start();
    readPointer();
    follow();
}

void X11ColorPicker::dismiss() {
    end(std::nullopt);
}

void X11ColorPicker::cancel() {
    ++m_cancellations;
    if (std::exchange(m_picked, nullptr))
        release();
}

bool X11ColorPicker::grab() {
    if (!m_connection.isValid())
        return false;
    const xcb_cursor_t cursor = crosshair();
    const XcbReply<xcb_grab_pointer_reply_t> pointer(xcb_grab_pointer_reply(
        m_connection,
        xcb_grab_pointer(m_connection, false, m_connection.root(), pointerEvents, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, cursor, XCB_CURRENT_TIME),
        nullptr));
    if (cursor != XCB_NONE)
        xcb_free_cursor(m_connection, cursor);
    if (!pointer || pointer->status != XCB_GRAB_STATUS_SUCCESS)
        return false;
    const XcbReply<xcb_grab_keyboard_reply_t> keyboard(
        xcb_grab_keyboard_reply(m_connection,
                                xcb_grab_keyboard(m_connection, false, m_connection.root(), XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    if (keyboard && keyboard->status == XCB_GRAB_STATUS_SUCCESS)
        return true;
    release();
    return false;
}

void X11ColorPicker::release() {
    m_nextTry.stop();
    m_forgotten.stop();
    m_loupe.reset();
    if (!m_connection.isValid())
        return;
    xcb_ungrab_pointer(m_connection, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
    m_connection.flush();
}

xcb_cursor_t X11ColorPicker::crosshair() {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    while (screens.rem > 1 && screens.data->root != m_connection.root())
        xcb_screen_next(&screens);
    xcb_cursor_context_t* context = nullptr;
    if (xcb_cursor_context_new(m_connection, screens.data, &context) < 0)
        return XCB_NONE;
    xcb_cursor_t cursor = XCB_NONE;
    for (const char* name : {"crosshair", "cross", "tcross"}) {
        cursor = xcb_cursor_load_cursor(context, name);
        if (cursor != XCB_NONE)
            break;
    }
    xcb_cursor_context_free(context);
    return cursor;
}

bool X11ColorPicker::hasCompositor() {
    int number = 0;
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
         screens.rem > 1 && screens.data->root != m_connection.root(); xcb_screen_next(&screens))
        ++number;
    const xcb_atom_t selection = m_connection.atom("_NET_WM_CM_S" + std::to_string(number));
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, selection), nullptr));
    return owner && owner->owner != XCB_NONE;
}

void X11ColorPicker::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case XCB_MOTION_NOTIFY: {
        const auto& motion = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
        m_forgotten.start();
        m_pointer = {motion.root_x, motion.root_y};
        follow();
        return;
    }
    case XCB_BUTTON_RELEASE: {
        const auto& button = reinterpret_cast<const xcb_button_release_event_t&>(event);
        m_pointer = {button.root_x, button.root_y};
        if (button.detail == XCB_BUTTON_INDEX_1)
            take();
        else if (button.detail <= XCB_BUTTON_INDEX_3)
            end(std::nullopt);
        return;
    }
    case XCB_KEY_PRESS: {
        const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
        m_forgotten.start();
        if (!m_heldBefore[key.detail])
            pressed(key.detail, key.state & XCB_MOD_MASK_SHIFT);
        return;
    }
    case XCB_KEY_RELEASE:
        released(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
        return;
    default:
        return;
    }
}

void X11ColorPicker::pressed(xcb_keycode_t key, bool many) {
    const auto go = [&](int dx, int dy) {
        const int step = many ? 10 : 1;
        xcb_warp_pointer(m_connection, XCB_NONE, XCB_NONE, 0, 0, 0, 0, std::int16_t(dx * step),
                         std::int16_t(dy * step));
        readPointer();
        follow();
    };
    switch (printedOn(key)) {
    case keyReturn:
    case keyEnter:
    case keySpace:
    case keyEscape:
        m_deciding = key;
        break;
    case keyLeft:
        go(-1, 0);
        break;
    case keyRight:
        go(1, 0);
        break;
    case keyUp:
        go(0, -1);
        break;
    case keyDown:
        go(0, 1);
        break;
    default:
        break;
    }
}

void X11ColorPicker::released(xcb_keycode_t key) {
    // A held key's repeats are releases as well.
    if (keysDown()[key])
        return;
    m_heldBefore[key] = false;
    if (key != m_deciding)
        return;
    if (printedOn(key) == keyEscape)
        end(std::nullopt);
    else
        take();
}

xcb_keysym_t X11ColorPicker::printedOn(xcb_keycode_t key) {
    const XcbReply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, key, 1), nullptr));
    return mapping && xcb_get_keyboard_mapping_keysyms_length(mapping.get()) > 0
               ? *xcb_get_keyboard_mapping_keysyms(mapping.get())
               : 0;
}

X11ColorPicker::Keys X11ColorPicker::keysDown() {
    const XcbReply<xcb_query_keymap_reply_t> reply(
        xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr));
    Keys keys;
    for (std::size_t key = 0; reply && key < keys.size(); ++key)
        keys[key] = reply->keys[key / 8] >> key % 8 & 1;
    return keys;
}

void X11ColorPicker::readPointer() {
    const XcbReply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_connection.root()), nullptr));
    if (reply)
        m_pointer = {reply->root_x, reply->root_y};
}

void X11ColorPicker::follow() {
    if (std::exchange(m_followQueued, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_followQueued = false;
            if (!m_loupe)
                return;
            showLoupe();
            // Waiting for replies may have brought events along, which no socket announces any more.
            m_connection.processEvents();
        },
        Qt::QueuedConnection);
}

void X11ColorPicker::showLoupe() {
    const QImage pixels = pixelsAround(m_pointer);
    const auto screens = m_screens.screens();
    const auto under = std::find_if(screens.begin(), screens.end(), [&](const Screen& screen) {
        return screen.pixelFrame.contains(m_pointer);
    });
    if (pixels.isNull() || under == screens.end())
        return;
    // Qt leaves a screen's origin where the server has it and measures from there in points.
    const QPointF origin = under->pixelFrame.topLeft();
    m_loupe->show(pixels, origin + (m_pointer - origin) / under->pixelRatio,
                  QRectF(origin, QSizeF(under->pixelFrame.size()) / under->pixelRatio));
}

void X11ColorPicker::take() {
    const QImage pixels = pixelsAround(m_pointer);
    if (pixels.isNull())
        fail();
    else
        end(pixels.pixelColor(ColorLoupe::reach, ColorLoupe::reach));
}

void X11ColorPicker::end(std::optional<QColor> color) {
    if (!m_picked)
        return;
    release();
    answer([picked = std::exchange(m_picked, nullptr), color] { picked(color); });
}

void X11ColorPicker::fail() {
    if (!std::exchange(m_picked, nullptr))
        return;
    release();
    answer(std::exchange(m_failed, nullptr));
}

void X11ColorPicker::answer(std::function<void()> word) {
    // Out of the connection's events first: whoever hears of it may pick again.
    QMetaObject::invokeMethod(
        this,
        [this, word = std::move(word), cancellations = m_cancellations] {
            if (m_cancellations == cancellations)
                word();
        },
        Qt::QueuedConnection);
}

QImage X11ColorPicker::pixelsAround(QPoint middle) {
    const XcbReply<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, m_connection.root()), nullptr));
    if (!root)
        return {};
    const QRect wanted(middle - QPoint(ColorLoupe::reach, ColorLoupe::reach),
                       QSize(ColorLoupe::pixelsAcross, ColorLoupe::pixelsAcross));
    const QRect there = wanted.intersected(QRect(0, 0, root->width, root->height));
    if (there.isEmpty())
        return {};
    const XcbReply<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.root(),
                                          std::int16_t(there.x()), std::int16_t(there.y()),
                                          std::uint16_t(there.width()), std::uint16_t(there.height()), ~0U),
                            nullptr));
    if (!reply)
        return {};
    const QImage::Format format = formatOf(*xcb_get_setup(m_connection), reply->depth);
    const int stride = xcb_get_image_data_length(reply.get()) / there.height();
    if (format == QImage::Format_Invalid ||
        stride * 8 < there.width() * QImage::toPixelFormat(format).bitsPerPixel())
        return {};
    const QImage read(xcb_get_image_data(reply.get()), there.width(), there.height(), stride, format);
    QImage pixels(wanted.size(), QImage::Format_RGB32);
    pixels.fill(Qt::black);
    QPainter(&pixels).drawImage(there.topLeft() - wanted.topLeft(), read);
    return pixels;
}

} // namespace framora
