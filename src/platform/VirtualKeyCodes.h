#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace framora {

/// One key of a full-size keyboard: what the kernel calls it and what shortcuts store.
struct VirtualKey {
    std::uint16_t evdev;       ///< KEY_* of the kernel's input events. An X11 keycode is this plus 8.
    std::uint16_t virtualCode; ///< The key's position on a US keyboard; "4" is 21, "T" is 17, "A" is 0.
    const char* name;          ///< As printed on a US keyboard, in UTF-8.
};

/// The whole table. Each code on either side occurs once.
std::span<const VirtualKey> virtualKeys();

std::optional<std::uint16_t> virtualKeyFromEvdev(std::uint16_t evdev);
std::optional<std::uint16_t> evdevFromVirtualKey(std::uint16_t virtualCode);
/// Whether a key is one of those that writing and moving about take: not a function key, Print, Pause and
/// what else does little on its own, nor a code that no key has.
bool isForWriting(std::uint16_t virtualCode);
/// The key's name; null for a code that no key has.
const char* virtualKeyName(std::uint16_t virtualCode);

} // namespace framora
