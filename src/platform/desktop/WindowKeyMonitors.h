#pragma once

#include "platform/CommandGate.h"
#include "platform/KeyMonitors.h"

#include <QObject>
#include <functional>
#include <map>
#include <optional>

class QKeyEvent;

namespace framora {

/// The local half of the key monitors: the keys of this program's own windows, seen before a window gets
/// them. The same on every window system whose key codes are the kernel's, moved up by eight.
class WindowKeyMonitors final : public QObject {
    Q_OBJECT

public:
    using Token = KeyMonitors::Token;
    using LocalHandler = KeyMonitors::LocalHandler;
    /// The KeyModifier bits of a key press.
    using FlagsOfPress = std::function<std::uint64_t(const QKeyEvent&)>;

    WindowKeyMonitors(CommandGate& gate, FlagsOfPress flagsOf);

    /// The tokens are the caller's and never 0.
    void addLocal(Token token, LocalHandler handler) { m_localHandlers.emplace(token, std::move(handler)); }
    void addRecording(Token token, LocalHandler handler) {
        m_recordingHandlers.emplace(token, std::move(handler));
    }
    void remove(Token token);

    bool isRecording() const { return !m_recordingHandlers.empty(); }
    /// Tells the recording monitors of modifier keys that went down or up, unless the gate is closed.
    void offerModifierChange(std::uint16_t virtualKey, std::uint64_t flags);

    /// A key that the desktop took out of the windows' events. True when somebody was recording.
    bool offerToRecorder(const KeyEvent& key) { return offer(m_recordingHandlers, key); }

    /// Whether the key only changes what other keys mean.
    static bool isModifierKey(std::uint16_t virtualKey);
    /// `keycode` as the window system counts.
    static std::optional<std::uint16_t> virtualKeyOf(std::uint32_t keycode);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using LocalHandlers = std::map<Token, LocalHandler>;
    static bool offer(const LocalHandlers& monitors, const KeyEvent& key);

    CommandGate& m_gate;
    FlagsOfPress m_flagsOf;
    LocalHandlers m_localHandlers;
    LocalHandlers m_recordingHandlers;
};

} // namespace framora
