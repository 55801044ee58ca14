#include "screencapture/PixelFormat.h"

#include "screencapture/XConnection.h"

#include <bit>
#include <cstring>

namespace framora {

namespace {

/// One channel of a pixel: its place, and its range.
struct Channel {
    explicit Channel(uint32_t channelMask)
        : mask(channelMask), shift(channelMask ? std::countr_zero(channelMask) : 0),
          most(channelMask >> shift) {}

    uint32_t read(uint32_t pixel) const {
        if (!most)
            return 255;
        return static_cast<uint32_t>(((pixel & mask) >> shift) * uint64_t{255} + most / 2) / most;
    }
    uint32_t write(uint32_t value) const {
        return static_cast<uint32_t>((uint64_t{value} * most + 127) / 255) << shift;
    }

    uint32_t mask;
    int shift;
    uint32_t most;
};

} // namespace

bool PixelFormat::supported() const {
    return (bitsPerPixel == 16 || bitsPerPixel == 24 || bitsPerPixel == 32) && red && green && blue;
}

bool PixelFormat::native() const {
    return bitsPerPixel == 32 && leastByteFirst && std::endian::native == std::endian::little &&
           red == 0xff0000 && green == 0xff00 && blue == 0xff && (alpha == 0 || alpha == 0xff000000);
}

std::size_t PixelFormat::stride(int width) const {
    const std::size_t bits = static_cast<std::size_t>(width) * static_cast<std::size_t>(bitsPerPixel);
    const auto pad = static_cast<std::size_t>(scanlinePad);
    return (bits + pad - 1) / pad * pad / 8;
}

void PixelFormat::toBgra(const uint8_t* row, int width, uint32_t* out) const {
    const Channel r(red);
    const Channel g(green);
    const Channel b(blue);
    const Channel a(alpha);
    const int bytes = bitsPerPixel / 8;
    for (int x = 0; x < width; ++x, row += bytes) {
        uint32_t pixel = 0;
        for (int i = 0; i < bytes; ++i)
            pixel |= uint32_t{row[i]} << 8 * (leastByteFirst ? i : bytes - 1 - i);
        out[x] = a.read(pixel) << 24 | r.read(pixel) << 16 | g.read(pixel) << 8 | b.read(pixel);
    }
}

void PixelFormat::fromBgra(const uint32_t* pixels, int width, uint8_t* row) const {
    const Channel r(red);
    const Channel g(green);
    const Channel b(blue);
    const Channel a(alpha);
    const int bytes = bitsPerPixel / 8;
    for (int x = 0; x < width; ++x, row += bytes) {
        const uint32_t p = pixels[x];
        uint32_t pixel = r.write(p >> 16 & 255) | g.write(p >> 8 & 255) | b.write(p & 255);
        if (alpha)
            pixel |= a.write(p >> 24);
        for (int i = 0; i < bytes; ++i)
            row[i] = static_cast<uint8_t>(pixel >> 8 * (leastByteFirst ? i : bytes - 1 - i));
    }
}

PixelFormat PixelFormat::of(const XConnection& connection, int depth, uint32_t visualId) {
    PixelFormat result;
    const auto* format = connection.format(depth);
    const auto* visual = connection.visual(visualId);
    if (!format || !visual ||
        (visual->_class != XCB_VISUAL_CLASS_TRUE_COLOR && visual->_class != XCB_VISUAL_CLASS_DIRECT_COLOR)) {
        result.bitsPerPixel = 0;
        return result;
    }
    result.bitsPerPixel = format->bits_per_pixel;
    result.scanlinePad = format->scanline_pad;
    result.leastByteFirst = xcb_get_setup(connection)->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    result.red = visual->red_mask;
    result.green = visual->green_mask;
    result.blue = visual->blue_mask;
    // The bits that belong to no colour are the alpha of a visual with 32 bits of depth, and padding
    // otherwise.
    result.alpha = depth == 32 ? ~(visual->red_mask | visual->green_mask | visual->blue_mask) : 0;
    return result;
}

} // namespace framora
