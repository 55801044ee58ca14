#include "screencapture/wayland/SeatInput.h"

#include "screencapture/wayland/WaylandConnection.h"

#include <linux/input-event-codes.h>
#include <unistd.h>
#include <utility>
#include <wayland-client-protocol.h>

namespace framora {

namespace {

SelectionModel::Button buttonOf(uint32_t code) {
    switch (code) {
    case BTN_LEFT:
        return SelectionModel::Button::Primary;
    case BTN_RIGHT:
        return SelectionModel::Button::Secondary;
    default:
        return SelectionModel::Button::Other;
    }
}

} // namespace

SeatInput::SeatInput(WaylandConnection& connection, InputSink& sink)
    : m_sink(sink), m_seat(connection.bind<wl_seat>(wl_seat_interface, 3)) {
    static const wl_seat_listener listener{
        .capabilities = [](void* data, wl_seat*,
                           uint32_t what) { static_cast<SeatInput*>(data)->capabilities(what); },
        .name = [](void*, wl_seat*, const char*) {},
    };
    if (m_seat)
        wl_seat_add_listener(m_seat, &listener, this);
}

SeatInput::~SeatInput() {
    if (m_pointer)
        wl_pointer_destroy(m_pointer);
    if (m_keyboard)
        wl_keyboard_destroy(m_keyboard);
    if (m_seat)
        wl_seat_destroy(m_seat);
}

void SeatInput::capabilities(uint32_t what) {
    // What a device of the seat was asked for falls silent with it, also when another one comes.
    if (m_pointer && !(what & WL_SEAT_CAPABILITY_POINTER)) {
        wl_pointer_destroy(std::exchange(m_pointer, nullptr));
        m_sink.pointerLeft();
    }
    if (m_keyboard && !(what & WL_SEAT_CAPABILITY_KEYBOARD)) {
        wl_keyboard_destroy(std::exchange(m_keyboard, nullptr));
        for (const uint32_t code : std::set(m_down))
            key(code, false);
    }
    if (!m_pointer && (what & WL_SEAT_CAPABILITY_POINTER))
        listenToPointer();
    if (!m_keyboard && (what & WL_SEAT_CAPABILITY_KEYBOARD))
        listenToKeyboard();
}

void SeatInput::listenToPointer() {
    static const wl_pointer_listener listener{
        .enter =
            [](void* data, wl_pointer*, uint32_t serial, wl_surface* surface, wl_fixed_t x, wl_fixed_t y) {
                auto& self = *static_cast<SeatInput*>(data);
                self.m_enterSerial = serial;
                if (surface)
                    self.m_sink.pointerEntered(surface, wl_fixed_to_double(x), wl_fixed_to_double(y));
            },
        .leave = [](void* data, wl_pointer*, uint32_t,
                    wl_surface*) { static_cast<SeatInput*>(data)->m_sink.pointerLeft(); },
        .motion =
            [](void* data, wl_pointer*, uint32_t, wl_fixed_t x, wl_fixed_t y) {
                static_cast<SeatInput*>(data)->m_sink.pointerMoved(wl_fixed_to_double(x),
                                                                   wl_fixed_to_double(y));
            },
        .button =
            [](void* data, wl_pointer*, uint32_t, uint32_t, uint32_t button, uint32_t state) {
                static_cast<SeatInput*>(data)->m_sink.buttonChanged(buttonOf(button),
                                                                    state == WL_POINTER_BUTTON_STATE_PRESSED);
            },
        .axis = [](void*, wl_pointer*, uint32_t, uint32_t, wl_fixed_t) {},
        // Of later versions than the one asked for.
        .frame = nullptr,
        .axis_source = nullptr,
        .axis_stop = nullptr,
        .axis_discrete = nullptr,
        .axis_value120 = nullptr,
    };
    m_pointer = wl_seat_get_pointer(m_seat);
    wl_pointer_add_listener(m_pointer, &listener, this);
}

void SeatInput::listenToKeyboard() {
    static const wl_keyboard_listener listener{
        .keymap =
            [](void* data, wl_keyboard*, uint32_t format, int32_t file, uint32_t size) {
                if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1)
                    static_cast<SeatInput*>(data)->m_meanings.adopt(file, size);
                else
                    close(file);
            },
        .enter = [](void* data, wl_keyboard*, uint32_t, wl_surface*,
                    wl_array* keys) { static_cast<SeatInput*>(data)->keyboardEntered(*keys); },
        .leave = [](void*, wl_keyboard*, uint32_t, wl_surface*) {},
        .key =
            [](void* data, wl_keyboard*, uint32_t, uint32_t, uint32_t code, uint32_t state) {
                static_cast<SeatInput*>(data)->key(code, state == WL_KEYBOARD_KEY_STATE_PRESSED);
            },
        .modifiers = [](void*, wl_keyboard*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t) {},
        .repeat_info = nullptr,
    };
    m_keyboard = wl_seat_get_keyboard(m_seat);
    wl_keyboard_add_listener(m_keyboard, &listener, this);
}

void SeatInput::keyboardEntered(const wl_array& keys) {
    const auto* first = static_cast<const uint32_t*>(keys.data);
    const std::set<uint32_t> down(first, first + keys.size / sizeof(uint32_t));
    // Between two of our surfaces, what is held stays held; what came up meanwhile is told nowhere else.
    const std::set<uint32_t> before = m_down;
    for (const uint32_t code : before)
        if (!down.contains(code))
            key(code, false);
    for (const uint32_t code : down)
        if (m_down.insert(code).second)
            m_sink.keyHeldBefore(code);
}

void SeatInput::key(uint32_t code, bool pressed) {
    if (pressed)
        m_down.insert(code);
    else
        m_down.erase(code);
    m_sink.keyChanged(code, m_meanings.meaning(code), pressed);
}

void SeatInput::setCursor(wl_surface* picture, int hotX, int hotY) {
    if (m_pointer)
        wl_pointer_set_cursor(m_pointer, m_enterSerial, picture, hotX, hotY);
}

} // namespace framora
