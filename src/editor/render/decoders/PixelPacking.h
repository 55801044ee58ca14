#pragma once

#include <cstdint>
#include <span>

namespace framora {

/// One pixel as DecodedPicture has it, from straight channels of 0 to 255.
inline std::uint32_t packedPixel(std::uint32_t red, std::uint32_t green, std::uint32_t blue,
                                 std::uint32_t alpha) {
    const auto premultiplied = [alpha](std::uint32_t value) { return (value * alpha + 127) / 255; };
    if (alpha == 255)
        return 0xff000000u | red << 16 | green << 8 | blue;
    return alpha << 24 | premultiplied(red) << 16 | premultiplied(green) << 8 | premultiplied(blue);
}

/// Rounds straight 16-bit red, green, blue and alpha (65535 is full) to pixels; four values a pixel.
inline void packRow(std::span<const std::uint16_t> rgba, std::uint32_t* pixels) {
    const auto byte = [](std::uint16_t value) { return (value * 255u + 32767u) / 65535u; };
    for (std::size_t at = 0; at + 4 <= rgba.size(); at += 4)
        *pixels++ = packedPixel(byte(rgba[at]), byte(rgba[at + 1]), byte(rgba[at + 2]), byte(rgba[at + 3]));
}

} // namespace framora
