#include "desktop/support/VirtualInput.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <wayland-protocols/virtual-keyboard-unstable-v1.h>
#include <wayland-protocols/wlr-virtual-pointer-unstable-v1.h>
#include <xkbcommon/xkbcommon.h>

namespace framora {
namespace {

/// What xkb counts more than the kernel.
constexpr std::uint32_t xkbOffset = 8;

struct Globals {
    wl_seat* seat = nullptr;
    zwlr_virtual_pointer_manager_v1* pointers = nullptr;
    zwp_virtual_keyboard_manager_v1* keyboards = nullptr;
};

template <typename Object>
Object* bound(wl_registry* registry, std::uint32_t name, const wl_interface& interface) {
    return static_cast<Object*>(wl_registry_bind(registry, name, &interface, 1));
}

void announce(void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
    auto& globals = *static_cast<Globals*>(data);
    const std::string_view offered = interface;
    if (offered == wl_seat_interface.name && !globals.seat)
        globals.seat = bound<wl_seat>(registry, name, wl_seat_interface);
    else if (offered == zwlr_virtual_pointer_manager_v1_interface.name)
        globals.pointers =
            bound<zwlr_virtual_pointer_manager_v1>(registry, name, zwlr_virtual_pointer_manager_v1_interface);
    else if (offered == zwp_virtual_keyboard_manager_v1_interface.name)
        globals.keyboards =
            bound<zwp_virtual_keyboard_manager_v1>(registry, name, zwp_virtual_keyboard_manager_v1_interface);
}

void withdraw(void*, wl_registry*, std::uint32_t) {}

constexpr wl_registry_listener registryListener = {announce, withdraw};

} // namespace

VirtualInput::VirtualInput(const QString& waylandDisplay, std::function<QSizeF()> layoutSize)
    : m_layoutSize(std::move(layoutSize)),
      m_display(wl_display_connect(waylandDisplay.toUtf8().constData())) {
    if (!m_display)
        throw std::runtime_error("no compositor for the virtual input");
    Globals globals;
    wl_registry* registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(registry, &registryListener, &globals);
    wl_display_roundtrip(m_display);
    wl_registry_destroy(registry);
    if (!globals.seat || !globals.pointers || !globals.keyboards) {
        wl_display_disconnect(m_display);
        throw std::runtime_error("the compositor has no virtual pointer and keyboard");
    }
    m_seat = globals.seat;
    m_pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(globals.pointers, globals.seat);
    m_keyboard = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(globals.keyboards, globals.seat);
    zwlr_virtual_pointer_manager_v1_destroy(globals.pointers);
    zwp_virtual_keyboard_manager_v1_destroy(globals.keyboards);
    sendKeymap();
    finish();
}

VirtualInput::~VirtualInput() {
    zwlr_virtual_pointer_v1_destroy(m_pointer);
    zwp_virtual_keyboard_v1_destroy(m_keyboard);
    wl_seat_destroy(m_seat);
    wl_display_disconnect(m_display);
    xkb_state_unref(m_state);
    xkb_keymap_unref(m_keymap);
}

void VirtualInput::sendKeymap() {
    xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES);
    const xkb_rule_names names = {"evdev", "pc105", "us", "", ""};
    m_keymap = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    xkb_context_unref(context);
    if (!m_keymap)
        throw std::runtime_error("no US keymap");
    m_state = xkb_state_new(m_keymap);
    char* text = xkb_keymap_get_as_string(m_keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    const std::size_t size = std::strlen(text) + 1;
    const int file = ::memfd_create("keymap", MFD_CLOEXEC);
    if (::write(file, text, size) != ssize_t(size))
        throw std::runtime_error("no memory for the keymap");
    std::free(text);
    zwp_virtual_keyboard_v1_keymap(m_keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file, std::uint32_t(size));
    finish();
    ::close(file);
}

void VirtualInput::finish() {
    if (wl_display_roundtrip(m_display) < 0)
        throw std::runtime_error("the compositor has ended the virtual input");
}

std::uint32_t VirtualInput::now() const {
    using namespace std::chrono;
    return std::uint32_t(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void VirtualInput::moveTo(const QPointF& position) {
    // The protocol counts in whole parts of the layout: a thousand of them to a logical pixel.
    const QSizeF layout = m_layoutSize() * 1000;
    zwlr_virtual_pointer_v1_motion_absolute(m_pointer, now(), std::uint32_t(std::lround(position.x() * 1000)),
                                            std::uint32_t(std::lround(position.y() * 1000)),
                                            std::uint32_t(std::lround(layout.width())),
                                            std::uint32_t(std::lround(layout.height())));
    zwlr_virtual_pointer_v1_frame(m_pointer);
    finish();
}

void VirtualInput::press(Button button) {
    zwlr_virtual_pointer_v1_button(m_pointer, now(), std::uint32_t(button), WL_POINTER_BUTTON_STATE_PRESSED);
    zwlr_virtual_pointer_v1_frame(m_pointer);
    finish();
}

void VirtualInput::release(Button button) {
    zwlr_virtual_pointer_v1_button(m_pointer, now(), std::uint32_t(button), WL_POINTER_BUTTON_STATE_RELEASED);
    zwlr_virtual_pointer_v1_frame(m_pointer);
    finish();
}

void VirtualInput::click(const QPointF& position, Button button) {
    moveTo(position);
    press(button);
    release(button);
}

void VirtualInput::doubleClick(const QPointF& position) {
    click(position);
    click(position);
}

void VirtualInput::drag(const QPointF& from, const QPointF& to, int steps) {
    moveTo(from);
    press();
    for (int step = 1; step <= steps; ++step)
        moveTo(from + (to - from) * step / steps);
    release();
}

void VirtualInput::wheel(int notches) {
    // What a mouse sends a notch.
    constexpr double notch = 15;
    zwlr_virtual_pointer_v1_axis_source(m_pointer, WL_POINTER_AXIS_SOURCE_WHEEL);
    zwlr_virtual_pointer_v1_axis_discrete(m_pointer, now(), WL_POINTER_AXIS_VERTICAL_SCROLL,
                                          wl_fixed_from_double(notch * notches), notches);
    zwlr_virtual_pointer_v1_frame(m_pointer);
    finish();
}

void VirtualInput::sendKey(std::uint32_t evdevCode, bool down) {
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), evdevCode,
                                down ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
    // The compositor leaves the modifiers of such a keyboard to us.
    if (xkb_state_update_key(m_state, evdevCode + xkbOffset, down ? XKB_KEY_DOWN : XKB_KEY_UP))
        zwp_virtual_keyboard_v1_modifiers(m_keyboard,
                                          xkb_state_serialize_mods(m_state, XKB_STATE_MODS_DEPRESSED),
                                          xkb_state_serialize_mods(m_state, XKB_STATE_MODS_LATCHED),
                                          xkb_state_serialize_mods(m_state, XKB_STATE_MODS_LOCKED),
                                          xkb_state_serialize_layout(m_state, XKB_STATE_LAYOUT_EFFECTIVE));
    finish();
}

void VirtualInput::keyDown(std::uint32_t evdevCode) {
    sendKey(evdevCode, true);
}

void VirtualInput::keyUp(std::uint32_t evdevCode) {
    sendKey(evdevCode, false);
}

VirtualInput::Place VirtualInput::placeOf(std::uint32_t keysym) const {
    for (xkb_keycode_t code = xkb_keymap_min_keycode(m_keymap); code <= xkb_keymap_max_keycode(m_keymap);
         ++code)
        for (xkb_level_index_t level = 0; level < 2; ++level) {
            const xkb_keysym_t* symbols = nullptr;
            if (xkb_keymap_key_get_syms_by_level(m_keymap, code, 0, level, &symbols) == 1 &&
                symbols[0] == keysym)
                return {code - xkbOffset, level == 1};
        }
    throw std::runtime_error("no key for the keysym " + std::to_string(keysym));
}

void VirtualInput::keyDown(const char* name) {
    sendKey(placeOf(xkb_keysym_from_name(name, XKB_KEYSYM_NO_FLAGS)).code, true);
}

void VirtualInput::keyUp(const char* name) {
    sendKey(placeOf(xkb_keysym_from_name(name, XKB_KEYSYM_NO_FLAGS)).code, false);
}

void VirtualInput::key(std::initializer_list<const char*> names) {
    for (const char* name : names)
        keyDown(name);
    for (auto name = std::rbegin(names); name != std::rend(names); ++name)
        keyUp(*name);
}

void VirtualInput::type(const QString& text) {
    for (const QChar character : text) {
        // Keysyms of Latin-1 are its code points.
        const Place place = placeOf(character == QLatin1Char('\n') ? std::uint32_t(XKB_KEY_Return)
                                                                   : std::uint32_t(character.unicode()));
        if (place.shifted)
            keyDown("Shift_L");
        sendKey(place.code, true);
        sendKey(place.code, false);
        if (place.shifted)
            keyUp("Shift_L");
    }
}

} // namespace framora
