#include "desktop/support/ScriptedSeat.h"

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-server-protocol.h>
#include <xkbcommon/xkbcommon.h>

namespace framora {

namespace {

QByteArray usualKeymap() {
    xkb_context* const context = xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES);
    const xkb_rule_names names{"evdev", "pc105", "us", "", ""};
    xkb_keymap* const map = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    char* const text = xkb_keymap_get_as_string(map, XKB_KEYMAP_FORMAT_TEXT_V1);
    const QByteArray bytes(text);
    free(text);
    xkb_keymap_unref(map);
    xkb_context_unref(context);
    return bytes;
}

} // namespace

ScriptedSeat::ScriptedSeat(ScriptedPieces& pieces) : m_pieces(pieces) {
    offer();
}

void ScriptedSeat::offer() {
    m_global = offerGlobal(m_pieces.display, wl_seat_interface, m_pieces.script.seat, &m_pieces, bind);
}

void ScriptedSeat::withdraw() {
    wl_global_remove(m_global);
}

ScriptedSeat::~ScriptedSeat() = default;

void ScriptedSeat::bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    static constexpr struct wl_seat_interface requests {
        .get_pointer =
            [](wl_client* asking, wl_resource* seat, std::uint32_t pointer) {
                behind<ScriptedPieces>(seat).seat->addPointer(asking, pointer, wl_resource_get_version(seat));
            },
        .get_keyboard =
            [](wl_client* asking, wl_resource* seat, std::uint32_t keyboard) {
                behind<ScriptedPieces>(seat).seat->addKeyboard(asking, keyboard,
                                                               wl_resource_get_version(seat));
            },
        .get_touch = [](wl_client*, wl_resource* seat,
                        std::uint32_t) { wl_resource_post_error(seat, 0, "no touch here"); },
        .release = destroyResource,
    };
    auto& pieces = *static_cast<ScriptedPieces*>(data);
    wl_resource* const seat =
        makeResource(client, wl_seat_interface, int(version), id, &requests, data,
                     [](wl_resource* gone) { std::erase(behind<ScriptedPieces>(gone).seat->m_seats, gone); });
    pieces.seat->m_seats.push_back(seat);
    wl_seat_send_capabilities(seat, pieces.script.capabilities);
    if (version >= WL_SEAT_NAME_SINCE_VERSION)
        wl_seat_send_name(seat, "seat0");
}

void ScriptedSeat::setCapabilities(std::uint32_t capabilities) {
    m_pieces.script.capabilities = capabilities;
    if (!(capabilities & CompositorScript::Pointer))
        for (Device& pointer : m_pointers)
            pointer.inert = true;
    if (!(capabilities & CompositorScript::Keyboard))
        for (Device& keyboard : m_keyboards)
            keyboard.inert = true;
    for (wl_resource* seat : m_seats)
        wl_seat_send_capabilities(seat, capabilities);
}

bool ScriptedSeat::isHeard() const {
    const auto anyOf = [](const std::vector<Device>& devices) {
        return std::ranges::any_of(devices, [](const Device& device) { return !device.inert; });
    };
    const std::uint32_t there = m_pieces.script.capabilities;
    return (!(there & CompositorScript::Pointer) || anyOf(m_pointers)) &&
           (!(there & CompositorScript::Keyboard) || anyOf(m_keyboards));
}

void ScriptedSeat::forgetDevice(wl_resource* resource) {
    auto& seat = *behind<ScriptedPieces>(resource).seat;
    const auto isIt = [resource](const Device& device) { return device.resource == resource; };
    std::erase_if(seat.m_pointers, isIt);
    std::erase_if(seat.m_keyboards, isIt);
}

void ScriptedSeat::addPointer(wl_client* client, std::uint32_t id, int version) {
    static constexpr struct wl_pointer_interface requests {
        .set_cursor = [](wl_client*, wl_resource*, std::uint32_t, wl_resource*, std::int32_t,
                         std::int32_t) {},
        .release = destroyResource,
    };
    m_pointers.push_back(
        {makeResource(client, wl_pointer_interface, version, id, &requests, &m_pieces, forgetDevice)});
    m_pointers.back().inert = !(m_pieces.script.capabilities & CompositorScript::Pointer);
    tellPlace();
}

void ScriptedSeat::addKeyboard(wl_client* client, std::uint32_t id, int version) {
    static constexpr struct wl_keyboard_interface requests { .release = destroyResource };
    wl_resource* const keyboard =
        makeResource(client, wl_keyboard_interface, version, id, &requests, &m_pieces, forgetDevice);
    m_keyboards.push_back({keyboard});
    m_keyboards.back().inert = !(m_pieces.script.capabilities & CompositorScript::Keyboard);
    const QByteArray text = m_pieces.script.keymap.isEmpty() ? usualKeymap() : m_pieces.script.keymap;
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    [[maybe_unused]] const ssize_t written = write(file, text.constData(), std::size_t(text.size()) + 1);
    wl_keyboard_send_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file, std::uint32_t(text.size()) + 1);
    close(file);
    tellKeyboard();
}

void ScriptedSeat::pointTo(ScriptedSurfaces::Surface& surface, QPointF position) {
    m_over = &surface;
    m_position = position;
    tellPlace();
}

void ScriptedSeat::tellPlace() {
    if (!m_over)
        return;
    wl_client* const client = wl_resource_get_client(m_over->resource);
    const wl_fixed_t x = wl_fixed_from_double(m_position.x());
    const wl_fixed_t y = wl_fixed_from_double(m_position.y());
    for (Device& pointer : m_pointers) {
        if (pointer.inert || wl_resource_get_client(pointer.resource) != client)
            continue;
        if (std::exchange(pointer.over, m_over) != m_over)
            wl_pointer_send_enter(pointer.resource, wl_display_next_serial(m_pieces.display),
                                  m_over->resource, x, y);
        else
            wl_pointer_send_motion(pointer.resource, 0, x, y);
        if (wl_resource_get_version(pointer.resource) >= WL_POINTER_FRAME_SINCE_VERSION)
            wl_pointer_send_frame(pointer.resource);
    }
}

void ScriptedSeat::button(std::uint32_t code, bool pressed) {
    for (const Device& pointer : m_pointers)
        if (!pointer.inert && pointer.over && pointer.over == m_over)
            wl_pointer_send_button(pointer.resource, wl_display_next_serial(m_pieces.display), 0, code,
                                   pressed);
}

void ScriptedSeat::keyboardTo(ScriptedSurfaces::Surface& surface) {
    m_focus = &surface;
    tellKeyboard();
}

void ScriptedSeat::tellKeyboard() {
    if (!m_focus)
        return;
    wl_client* const client = wl_resource_get_client(m_focus->resource);
    for (Device& keyboard : m_keyboards) {
        if (keyboard.inert || wl_resource_get_client(keyboard.resource) != client ||
            std::exchange(keyboard.over, m_focus) == m_focus)
            continue;
        wl_array none;
        wl_array_init(&none);
        wl_keyboard_send_enter(keyboard.resource, wl_display_next_serial(m_pieces.display), m_focus->resource,
                               &none);
        wl_array_release(&none);
    }
}

void ScriptedSeat::key(std::uint32_t code, bool pressed) {
    for (const Device& keyboard : m_keyboards)
        if (!keyboard.inert && keyboard.over && keyboard.over == m_focus)
            wl_keyboard_send_key(keyboard.resource, wl_display_next_serial(m_pieces.display), 0, code,
                                 pressed);
}

void ScriptedSeat::forget(const ScriptedSurfaces::Surface& surface) {
    if (m_over == &surface)
        m_over = nullptr;
    if (m_focus == &surface)
        m_focus = nullptr;
    for (auto* devices : {&m_pointers, &m_keyboards})
        for (Device& device : *devices)
            if (device.over == &surface)
                device.over = nullptr;
}

} // namespace framora
