#pragma once

#include "screencapture/SelectionModel.h"

#include <array>
#include <cstdint>
#include <vector>

namespace framora {

class XConnection;

/// Which keys mean something to a capture, by their place in the keymap whatever modifiers are held, and
/// which were down when it began.
class Keyboard {
public:
    explicit Keyboard(const XConnection& connection);

    SelectionModel::Key meaning(uint8_t keycode) const { return m_meanings[keycode]; }
    const std::vector<uint8_t>& heldAtStart() const { return m_held; }

private:
    std::array<SelectionModel::Key, 256> m_meanings;
    std::vector<uint8_t> m_held;
};

} // namespace framora
