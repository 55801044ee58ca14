#pragma once

#include <cstddef>
#include <cstdint>

namespace framora {

/// What a decoder leaves in its standard output, a memory file: this at the start, the rows at
/// `pixelsOffset`, then the colour profile. A pixel is 32 bits, blue in the lowest, then green, red and
/// alpha; premultiplied; rows lie close together.
struct DecodedPicture {
    static constexpr std::uint32_t finished = 0x46726d31;
    static constexpr std::size_t pixelsOffset = 4096;

    std::uint32_t state; ///< `finished`, written last
    std::int32_t width;
    std::int32_t height;
    std::uint32_t hasAlpha; ///< 0: every pixel is opaque
    /// The ICC profile that the pixels are in; 0 bytes: they are sRGB.
    std::uint32_t profileBytes;

    static std::size_t pixelBytes(std::int32_t width, std::int32_t height) {
        return std::size_t(width) * std::size_t(height) * 4;
    }
};

/// Pictures beyond these are refused before memory is taken for them.
inline constexpr int maximumPictureSide = 32767;
inline constexpr std::int64_t maximumPicturePixels = std::int64_t(1) << 27;
constexpr bool isWithinPictureBounds(std::int64_t width, std::int64_t height) {
    return width <= maximumPictureSide && height <= maximumPictureSide &&
           width * height <= maximumPicturePixels;
}

} // namespace framora
