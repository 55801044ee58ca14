#pragma once

#include "platform/KeyboardLayout.h"
#include "platform/NotificationCenter.h"
#include "platform/wayland/WaylandConnection.h"

#include <QObject>
#include <memory>

struct xkb_context;
struct xkb_keymap;

namespace framora {

/// The keymap that the compositor gives, with the group that is chosen. A compositor tells the group to the
/// windows with the focus alone, which are Qt's: so this asks on Qt's own connection where that is a Wayland
/// one. It asks nothing before the first question.
class WaylandKeyboardLayout final : public QObject, public KeyboardLayout {
    Q_OBJECT

public:
    /// Both outlive this.
    WaylandKeyboardLayout(WaylandConnection& connection, NotificationCenter& notifications);
    ~WaylandKeyboardLayout() override;

    QString textOfKey(std::uint16_t virtualKey) const override { return text(virtualKey, false); }
    QString shiftedTextOfKey(std::uint16_t virtualKey) const override { return text(virtualKey, true); }

private:
    struct ContextReleaser {
        void operator()(xkb_context* context) const;
    };
    struct KeymapReleaser {
        void operator()(xkb_keymap* keymap) const;
    };
    static const wl_registry_listener registryListener;
    static const wl_seat_listener seatListener;
    static const wl_keyboard_listener keyboardListener;

    QString text(std::uint16_t virtualKey, bool shifted) const;
    void watch();
    /// The compositor has answered all that was asked; or it has not within a second.
    void roundTrip();
    void dispatch();
    void takeKeyboard(bool exists);
    void takeKeymap(int descriptor, std::uint32_t size);
    void takeGroup(std::uint32_t group);

    WaylandConnection& m_connection;
    NotificationCenter& m_notifications;
    wl_display* m_display = nullptr; ///< Qt's or the program's own; null before the first question.
    wl_event_queue* m_queue = nullptr;
    wl_registry* m_registry = nullptr;
    wl_seat* m_seat = nullptr;
    wl_keyboard* m_keyboard = nullptr;
    std::unique_ptr<xkb_context, ContextReleaser> m_context;
    std::unique_ptr<xkb_keymap, KeymapReleaser> m_keymap;
    std::uint32_t m_group = 0;
    bool m_isWatching = false; ///< After the first answers.
};

} // namespace framora
