#pragma once

#include "platform/CommandGate.h"
#include "platform/KeyMonitors.h"
#include "platform/desktop/WindowKeyMonitors.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Modifiers.h"

#include <functional>
#include <map>
#include <utility>

namespace framora {

/// Key-down events on X11. Other programs' keys come as raw events of the master keyboard, which nothing has
/// to be grabbed for, and which are told once, however long a key is held; their modifiers come from XKB's
/// state, whose changes the server reports in order with the keys. This program's own keys are seen before a
/// window gets them.
class X11KeyMonitors final : public KeyMonitors {
public:
    X11KeyMonitors(X11Connection& connection, CommandGate& gate);

    /// Whether this server offers what the global monitor needs.
    bool canMonitorGlobally() const { return m_inputOpcode != 0 && m_connection.isValid(); }

    /// Tells when this program takes the keys away from its own windows: they are seen globally then.
    void setHoldsKeys(std::function<bool()> holdsKeys) { m_holdsKeys = std::move(holdsKeys); }

    Token addGlobalMonitor(GlobalHandler handler) override;
    Token addLocalMonitor(LocalHandler handler) override;
    Token addRecordingMonitor(LocalHandler handler) override;
    void removeMonitor(Token token) override;

private:
    void selectEvents();
    void handleEvent(const xcb_generic_event_t& event);
    bool ownWindowHasFocus() const;
    void handleRawKey(std::uint32_t keycode);
    void handleStateChange(std::uint32_t keycode, std::uint32_t state);

    X11Connection& m_connection;
    CommandGate& m_gate;
    X11Modifiers m_modifiers;
    WindowKeyMonitors m_ownWindows;
    std::uint8_t m_inputOpcode = 0;
    std::uint8_t m_xkbFirstEvent = 0;
    std::uint32_t m_modifierState = 0;
    Token m_lastToken = 0;
    std::function<bool()> m_holdsKeys;
    std::map<Token, GlobalHandler> m_globalHandlers;
};

} // namespace framora
