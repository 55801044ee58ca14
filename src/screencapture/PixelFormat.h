#pragma once

#include <cstddef>
#include <cstdint>

namespace framora {

class XConnection;

/// How the server lays out the pixels of a drawable, and the way from and to 32-bit BGRA (blue in the lowest
/// byte).
struct PixelFormat {
    int bitsPerPixel = 32;
    int scanlinePad = 32; // bits
    bool leastByteFirst = true;
    uint32_t red = 0xff0000;
    uint32_t green = 0xff00;
    uint32_t blue = 0xff;
    uint32_t alpha = 0; // none: opaque

    /// False for what cannot be converted: palettes, and pixels of less than two bytes.
    bool supported() const;
    /// The pixels are BGRA as they are; the fourth byte means nothing where `alpha` is 0.
    bool native() const;
    /// Bytes of a line of `width` pixels.
    std::size_t stride(int width) const;

    /// `row` holds stride(width) bytes, `out` width pixels; fills alpha with 255 where there is none.
    void toBgra(const uint8_t* row, int width, uint32_t* out) const;
    void fromBgra(const uint32_t* pixels, int width, uint8_t* row) const;

    /// The format of a drawable with this depth and visual. Not supported() when the server knows neither.
    static PixelFormat of(const XConnection& connection, int depth, uint32_t visual);
};

} // namespace framora
