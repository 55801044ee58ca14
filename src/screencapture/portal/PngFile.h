#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace framora {

/// Pixels of a PNG file.
struct PngSize {
    int width = 0;
    int height = 0;
};

/// The size of the picture when `file` is a whole PNG file: every part there and undamaged, no more than
/// 65535 pixels a side. Its pixels are not unpacked.
std::optional<PngSize> pngSizeOf(std::span<const uint8_t> file);

/// The same file, which pngSizeOf() took, with this resolution for both axes and no other. Its pixels stay
/// the bytes they are.
std::vector<uint8_t> pngWithResolution(std::vector<uint8_t> file, uint32_t pixelsPerMetre);

} // namespace framora
