#include "platform/wayland/WaylandKeyboardLayout.h"

#include "platform/Notifications.h"
#include "platform/x11/XkbKeyText.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <cstring>
#include <poll.h>
#include <qpa/qplatformnativeinterface.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace framora {

namespace {

constexpr std::uint32_t seatVersion = 3; ///< The first whose keyboard can be given back.
constexpr int answerMilliseconds = 1000;
constexpr int pollMilliseconds = 20;

/// Null where Qt speaks something else.
wl_display* displayOfQt() {
    if (!QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
        return nullptr;
    QPlatformNativeInterface* const native = QGuiApplication::platformNativeInterface();
    return native ? static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display")) : nullptr;
}

} // namespace

void WaylandKeyboardLayout::ContextReleaser::operator()(xkb_context* context) const {
    xkb_context_unref(context);
}
void WaylandKeyboardLayout::KeymapReleaser::operator()(xkb_keymap* keymap) const {
    xkb_keymap_unref(keymap);
}

const wl_registry_listener WaylandKeyboardLayout::registryListener{
    [](void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
        auto& self = *static_cast<WaylandKeyboardLayout*>(data);
        if (self.m_seat || std::string_view(interface) != wl_seat_interface.name)
            return;
        self.m_seat = static_cast<wl_seat*>(
            wl_registry_bind(registry, name, &wl_seat_interface, std::min(version, seatVersion)));
        wl_seat_add_listener(self.m_seat, &seatListener, data);
    },
    [](void*, wl_registry*, std::uint32_t) {},
};

const wl_seat_listener WaylandKeyboardLayout::seatListener{
    [](void* data, wl_seat*, std::uint32_t capabilities) {
        static_cast<WaylandKeyboardLayout*>(data)->takeKeyboard(capabilities & WL_SEAT_CAPABILITY_KEYBOARD);
    },
    [](void*, wl_seat*, const char*) {},
};

const wl_keyboard_listener WaylandKeyboardLayout::keyboardListener{
    .keymap =
        [](void* data, wl_keyboard*, std::uint32_t format, std::int32_t descriptor, std::uint32_t size) {
            if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1)
                static_cast<WaylandKeyboardLayout*>(data)->takeKeymap(descriptor, size);
            close(descriptor);
        },
    .enter = [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
    .leave = [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
    .key = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
    .modifiers = [](void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                    std::uint32_t group) { static_cast<WaylandKeyboardLayout*>(data)->takeGroup(group); },
    .repeat_info = [](void*, wl_keyboard*, std::int32_t, std::int32_t) {},
};

WaylandKeyboardLayout::WaylandKeyboardLayout(WaylandConnection& connection, NotificationCenter& notifications)
    : m_connection(connection), m_notifications(notifications) {}

WaylandKeyboardLayout::~WaylandKeyboardLayout() {
    takeKeyboard(false);
    if (m_seat)
        wl_seat_destroy(m_seat);
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (m_queue)
        wl_event_queue_destroy(m_queue);
}

void WaylandKeyboardLayout::watch() {
    if (m_display || !m_connection.isValid())
        return;
    wl_display* const ofQt = displayOfQt();
    m_display = ofQt ? ofQt : static_cast<wl_display*>(m_connection);
    // A queue of its own: what it hears is nobody else's, on whichever thread the connection is read.
    m_queue = wl_display_create_queue(m_display);
    auto* const wrapped = static_cast<wl_display*>(wl_proxy_create_wrapper(m_display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapped), m_queue);
    m_registry = wl_display_get_registry(wrapped);
    wl_proxy_wrapper_destroy(wrapped);
    wl_registry_add_listener(m_registry, &registryListener, this);
    // The seat, then its keyboard, then the keymap.
    for (int round = 0; round < 3; ++round)
        roundTrip();
    // What was read along with it is delivered by no socket's word any more.
    m_connection.processEvents();
    m_isWatching = true;
    // Whoever reads the connection wakes this thread.
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &WaylandKeyboardLayout::dispatch);
}

void WaylandKeyboardLayout::roundTrip() {
    static constexpr wl_callback_listener listener{
        [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
    bool done = false;
    auto* const wrapped = static_cast<wl_display*>(wl_proxy_create_wrapper(m_display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapped), m_queue);
    wl_callback* const callback = wl_display_sync(wrapped);
    wl_proxy_wrapper_destroy(wrapped);
    wl_callback_add_listener(callback, &listener, &done);
    const QDeadlineTimer patience(answerMilliseconds);
    while (!done && wl_display_get_error(m_display) == 0 && !patience.hasExpired()) {
        if (wl_display_prepare_read_queue(m_display, m_queue) != 0) {
            dispatch();
            continue;
        }
        wl_display_flush(m_display);
        pollfd descriptor{wl_display_get_fd(m_display), POLLIN, 0};
        // Another thread may be the one that reads.
        if (poll(&descriptor, 1, pollMilliseconds) > 0)
            wl_display_read_events(m_display);
        else
            wl_display_cancel_read(m_display);
        dispatch();
    }
    wl_callback_destroy(callback);
}

void WaylandKeyboardLayout::dispatch() {
    if (wl_display_get_error(m_display) == 0)
        wl_display_dispatch_queue_pending(m_display, m_queue);
}

void WaylandKeyboardLayout::takeKeyboard(bool exists) {
    if (exists == (m_keyboard != nullptr))
        return;
    if (exists) {
        m_keyboard = wl_seat_get_keyboard(m_seat);
        wl_keyboard_add_listener(m_keyboard, &keyboardListener, this);
        wl_display_flush(m_display);
        return;
    }
    wl_keyboard* const keyboard = std::exchange(m_keyboard, nullptr);
    if (wl_keyboard_get_version(keyboard) >= WL_KEYBOARD_RELEASE_SINCE_VERSION)
        wl_keyboard_release(keyboard);
    else
        wl_keyboard_destroy(keyboard);
}

void WaylandKeyboardLayout::takeKeymap(int descriptor, std::uint32_t size) {
    if (size == 0)
        return;
    void* const memory = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (memory == MAP_FAILED)
        return;
    if (!m_context)
        m_context.reset(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    // The text ends with a zero, which need not be its last byte.
    const auto* const text = static_cast<const char*>(memory);
    xkb_keymap* const keymap =
        m_context ? xkb_keymap_new_from_buffer(m_context.get(), text, strnlen(text, size),
                                               XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS)
                  : nullptr;
    munmap(memory, size);
    if (!keymap)
        return;
    m_keymap.reset(keymap);
    // The first answer is no news; one to a keyboard that comes later is.
    if (m_isWatching)
        m_notifications.post(notifications::keyboardLayoutChanged);
}

void WaylandKeyboardLayout::takeGroup(std::uint32_t group) {
    if (std::exchange(m_group, group) != group && m_isWatching)
        m_notifications.post(notifications::keyboardLayoutChanged);
}

QString WaylandKeyboardLayout::text(std::uint16_t virtualKey, bool shifted) const {
    // To begin to watch changes nothing that anybody sees.
    const_cast<WaylandKeyboardLayout*>(this)->watch();
    return m_keymap ? xkbKeyText(m_keymap.get(), m_group, virtualKey, shifted) : QString();
}

} // namespace framora
