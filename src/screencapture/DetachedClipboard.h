#pragma once

#include "screencapture/Picture.h"

#include <cstdint>
#include <vector>

namespace framora {

/// Leaves a small process behind that owns the clipboard and serves `png` until another client takes over.
/// `image`, when given, is memory the new process lets go of. False when no process could be made or it could
/// not take the clipboard; nothing is left behind then.
bool leaveOnClipboard(std::vector<uint8_t> png, Picture& picture);

} // namespace framora
