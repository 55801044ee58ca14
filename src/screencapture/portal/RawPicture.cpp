#include "screencapture/portal/RawPicture.h"

#include <bit>
#include <cstring>

namespace framora {

namespace {

/// Of QImage::Format: numbers that stay, since programs store them.
enum Format : uint32_t {
    Rgb32 = 4,
    Argb32 = 5,
    Argb32Premultiplied = 6,
    Rgbx8888 = 16,
    Rgba8888 = 17,
    Rgba8888Premultiplied = 18,
};
static_assert(std::endian::native == std::endian::little, "formats 4 to 6 are words, 16 to 18 bytes");

constexpr uint32_t kLongestSide = 32767;
constexpr uint32_t kOpaque = 0xff000000U;

bool known(uint32_t format) {
    return (format >= Rgb32 && format <= Argb32Premultiplied) ||
           (format >= Rgbx8888 && format <= Rgba8888Premultiplied);
}

uint32_t redAndBlueExchanged(uint32_t pixel) {
    return (pixel & 0xff00ff00U) | (pixel & 0xffU) << 16 | (pixel >> 16 & 0xffU);
}

/// A channel times alpha / 255, rounded.
uint32_t times(uint32_t channel, uint32_t alpha) {
    const uint32_t product = channel * alpha + 128;
    return (product + (product >> 8)) >> 8;
}

uint32_t premultiplied(uint32_t pixel) {
    const uint32_t alpha = pixel >> 24;
    return alpha << 24 | times(pixel >> 16 & 0xff, alpha) << 16 | times(pixel >> 8 & 0xff, alpha) << 8 |
           times(pixel & 0xff, alpha);
}

template <typename Convert>
void convertRow(const std::byte* from, uint32_t* to, uint32_t width, Convert convert) {
    for (uint32_t x = 0; x < width; ++x) {
        uint32_t pixel = 0;
        std::memcpy(&pixel, from + std::size_t{x} * 4, sizeof pixel);
        to[x] = convert(pixel);
    }
}

void unpackRow(const std::byte* from, uint32_t* to, uint32_t width, uint32_t format) {
    switch (format) {
    case Rgb32:
        return convertRow(from, to, width, [](uint32_t p) { return p | kOpaque; });
    case Argb32:
        return convertRow(from, to, width, premultiplied);
    case Rgbx8888:
        return convertRow(from, to, width, [](uint32_t p) { return redAndBlueExchanged(p) | kOpaque; });
    case Rgba8888:
        return convertRow(from, to, width, [](uint32_t p) { return premultiplied(redAndBlueExchanged(p)); });
    case Rgba8888Premultiplied:
        return convertRow(from, to, width, redAndBlueExchanged);
    default: // Argb32Premultiplied is ours.
        std::memcpy(to, from, std::size_t{width} * 4);
    }
}

} // namespace

std::size_t RawPicture::byteCount() const {
    if (!known(format) || width == 0 || height == 0 || width > kLongestSide || height > kLongestSide ||
        stride < std::size_t{width} * 4 || stride > 2 * std::size_t{kLongestSide} * 4)
        return 0;
    return std::size_t{stride} * height;
}

bool RawPicture::isPlain() const {
    return format == Argb32Premultiplied && stride == std::size_t{width} * 4;
}

std::unique_ptr<MemoryImage> RawPicture::unpack(std::span<const std::byte> bytes) const {
    if (byteCount() == 0 || bytes.size() != byteCount())
        return nullptr;
    auto image = MemoryImage::create(static_cast<int>(width), static_cast<int>(height));
    for (uint32_t y = 0; image && y < height; ++y)
        unpackRow(bytes.data() + std::size_t{y} * stride, image->row(static_cast<int>(y)), width, format);
    return image;
}

} // namespace framora
