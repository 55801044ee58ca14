#pragma once

#include "screencapture/wayland/WindowStack.h"

#include <optional>
#include <string_view>

namespace framora {

/// The windows to be seen in the answer that sway gives to "get_tree". A window is what the eye takes for it:
/// with its borders, and with its title bar where that is its own and not one tab among others. Nothing when
/// the text is no such answer; windows that make no sense in it are left out.
std::optional<WindowStack> windowsOfSwayTree(std::string_view json);

} // namespace framora
