#pragma once

#include "platform/KeyboardLayout.h"
#include "platform/NotificationCenter.h"
#include "platform/x11/X11Connection.h"

#include <memory>

struct xkb_context;
struct xkb_keymap;

namespace framora {

/// The keymap of the X server with the group that is chosen. It is read at the first question and again after
/// it has changed: a program that nobody asks holds none.
class X11KeyboardLayout final : public KeyboardLayout {
public:
    /// Both outlive this.
    X11KeyboardLayout(X11Connection& connection, NotificationCenter& notifications);
    ~X11KeyboardLayout() override;

    QString textOfKey(std::uint16_t virtualKey) const override;

private:
    struct ContextReleaser {
        void operator()(xkb_context* context) const;
    };
    struct KeymapReleaser {
        void operator()(xkb_keymap* keymap) const;
    };

    void watch() const;
    void read() const;
    void handleEvent(const xcb_generic_event_t& event);

    X11Connection& m_connection;
    NotificationCenter& m_notifications;
    mutable std::unique_ptr<xkb_context, ContextReleaser> m_context;
    mutable std::unique_ptr<xkb_keymap, KeymapReleaser> m_keymap;
    mutable std::uint32_t m_group = 0;
    mutable std::uint8_t m_firstEvent = 0; ///< 0 while nothing is watched.
};

} // namespace framora
