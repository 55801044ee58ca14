#pragma once

#include "screencapture/SelectionModel.h"

#include <array>
#include <cstdint>
#include <vector>

namespace framora {

class XConnection;

/// Which keys mean something to a capture, by their place in the keymap whatever modifiers are held.
class Keyboard {
public:
    explicit Keyboard(const XConnection& connection);

    SelectionModel::Key meaning(uint8_t keycode) const { return m_meanings[keycode]; }
    /// The keys that are down. A release is told only from the moment on at which the keyboard is held.
    static std::vector<uint8_t> keysDown(const XConnection& connection);

private:
    std::array<SelectionModel::Key, 256> m_meanings;
};

} // namespace framora
