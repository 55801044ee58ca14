#pragma once

#include <cstddef>
#include <cstdint>

namespace framora::raster {

/// One pixel is 0xAARRGGBB in a native 32-bit word, sRGB-encoded, colours premultiplied by alpha: in memory
/// what QImage::Format_ARGB32_Premultiplied is. Rows lie `stride` bytes apart; the stride is never assumed to
/// be the width, and what lies between two rows is neither read nor written.
struct PixelView {
    const std::byte* data = nullptr;
    int width = 0;  ///< Pixels.
    int height = 0; ///< Rows.
    std::ptrdiff_t stride = 0;

    const std::uint32_t* row(int y) const {
        return reinterpret_cast<const std::uint32_t*>(data + y * stride);
    }
    bool isEmpty() const { return width <= 0 || height <= 0; }
};

/// The same, to be written.
struct MutablePixelView {
    std::byte* data = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0;

    std::uint32_t* row(int y) const { return reinterpret_cast<std::uint32_t*>(data + y * stride); }
    bool isEmpty() const { return width <= 0 || height <= 0; }
    operator PixelView() const { return {data, width, height, stride}; }
};

/// How a picture's pixels are written: for a picture that is larger than the caches, past them. flushPixels()
/// ends a thread's run of what is streamed.
enum class Storing { cached, streamed };

} // namespace framora::raster
