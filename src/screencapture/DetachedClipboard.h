#pragma once

#include "screencapture/ClipboardOwner.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace framora {

/// Makes the owner in the process that is left behind.
using ClipboardOwnerMaker = std::function<std::unique_ptr<ClipboardOwner>(std::vector<uint8_t> png)>;

/// Leaves a small process behind that owns the clipboard and serves `png` until another program takes over.
/// `letGo`, when given, frees memory that the new process has no use for. False when no process could be made
/// or it could not take the clipboard; nothing is left behind then.
bool leaveOnClipboard(std::vector<uint8_t> png, const ClipboardOwnerMaker& make,
                      const std::function<void()>& letGo = {});

} // namespace framora
