#pragma once

#include "screencapture/MemoryImage.h"
#include "screencapture/wayland/PixelSpace.h"

#include <memory>
#include <span>
#include <vector>

namespace framora {

/// The selected part of the frozen outputs, in the pixels of the space: those of the home and of every output
/// of its scale bit for bit, others resampled; transparent where no output is. Null when the part is empty or
/// memory runs out. `outputs` and `frozen` correspond.
std::unique_ptr<MemoryImage> cutPicture(const PixelSpace& space, std::span<const Output> outputs,
                                        std::span<const std::unique_ptr<PixelImage>> frozen,
                                        const Rect& part);

} // namespace framora
