#pragma once

#include <cstdint>
#include <functional>

namespace framora {

/// The modifier keys' bits, as shortcuts store them.
namespace KeyModifier {
inline constexpr std::uint64_t capsLock = 0x10000;
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;   ///< Alt
inline constexpr std::uint64_t command = 0x100000; ///< Super
inline constexpr std::uint64_t shortcutMask = shift | control | option | command;
} // namespace KeyModifier

enum class KeyEventType {
    keyDown,
    modifiersChanged ///< A modifier key went down or up; it never comes as a key-down.
};

/// One key event. `keyCode` is the virtual key code of the key's position on a US keyboard.
struct KeyEvent {
    std::uint16_t keyCode = 0;
    std::uint64_t modifierFlags = 0; ///< After the event, where it changes them.
    KeyEventType type = KeyEventType::keyDown;
};

/// Watches keys: "global" events go to other programs, "local" ones to this program's own windows.
class KeyMonitors {
public:
    /// Names a running monitor; it runs until removeMonitor().
    using Token = std::uint64_t;
    using GlobalHandler = std::function<void(const KeyEvent&)>;
    /// Returns true to consume the event: no window sees it then.
    using LocalHandler = std::function<bool(const KeyEvent&)>;

    virtual ~KeyMonitors() = default;
    /// Only observes. Returns 0 where the desktop offers no way to watch keys.
    virtual Token addGlobalMonitor(GlobalHandler handler) = 0;
    /// Key-down events alone.
    virtual Token addLocalMonitor(LocalHandler handler) = 0;
    /// A local monitor for one who is about to learn a shortcut: it sees key-down and modifier-change events,
    /// before every other local monitor and before the toolkit looks for shortcuts of its own. Returns 0
    /// where there is none to be had.
    virtual Token addRecordingMonitor(LocalHandler handler) = 0;
    /// A token that is 0 or unknown is ignored. Handlers may remove monitors, their own included.
    virtual void removeMonitor(Token token) = 0;
};

} // namespace framora
