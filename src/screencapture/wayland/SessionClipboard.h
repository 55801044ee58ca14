#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace framora {

/// Leaves `png` on the clipboard of the X server that DISPLAY names; see leaveOnClipboard().
bool leaveOnXClipboard(std::vector<uint8_t> png, const std::function<void()>& letGo = {});

/// Leaves `png` where this session's programs find it: by a data-control protocol of the Wayland compositor,
/// else on the X server's clipboard, which compositors share, else in the file that FRAMORA_PICTURE_FD names.
/// False when there is none of them.
bool leaveOnSessionClipboard(std::vector<uint8_t> png);

} // namespace framora
