#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace framora::raster {

/// Premultiplied pixels with hard steps between them: white, clear, and opaque ones of any colour.
inline std::vector<std::uint32_t> randomPicture(std::mt19937& random, std::size_t count) {
    std::vector<std::uint32_t> pixels(count);
    for (std::uint32_t& pixel : pixels)
        pixel = random() % 3 == 0   ? 0xffffffffu
                : random() % 2 == 0 ? 0u
                                    : 0xff000000u | std::uint32_t(random());
    return pixels;
}

} // namespace framora::raster
