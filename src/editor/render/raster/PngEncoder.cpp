#include "editor/render/raster/PngEncoder.h"

#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <isa-l.h>
#include <limits>
#include <memory>
#include <string_view>

namespace framora::raster {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Rows are filtered and compressed in stripes of about this many bytes, each a chunk of its own, on all
// threads. The size is fixed so that the file does not depend on how many there are.
constexpr std::size_t stripeBytes = 1 << 20;

void append32(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(std::uint8_t(value >> shift));
}

/// Closes the chunk that starts at `start` with an unset length: fills in the length and appends the
/// checksum.
void finishChunk(Bytes& bytes, std::size_t start) {
    const std::size_t length = bytes.size() - start - 8;
    for (int i = 0; i < 4; ++i)
        bytes[start + std::size_t(i)] = std::uint8_t(length >> (24 - 8 * i));
    append32(bytes, crc32_gzip_refl(0, bytes.data() + start + 4, length + 4));
}

std::size_t startChunk(Bytes& bytes, std::string_view type) {
    const std::size_t start = bytes.size();
    append32(bytes, 0);
    bytes.insert(bytes.end(), type.begin(), type.end());
    return start;
}

bool isOpaque(PixelView picture) {
    std::atomic<bool> opaque = true;
    constexpr int rowsAtOnce = 64;
    parallelFor((picture.height + rowsAtOnce - 1) / rowsAtOnce, [&](int band) {
        const int end = std::min(picture.height, (band + 1) * rowsAtOnce);
        for (int y = band * rowsAtOnce; y < end && opaque.load(std::memory_order_relaxed); ++y) {
            std::uint32_t all = 0xff000000u;
            const std::uint32_t* row = picture.row(y);
            for (int x = 0; x < picture.width; ++x)
                all &= row[x];
            if (all != 0xff000000u)
                opaque.store(false, std::memory_order_relaxed);
        }
    });
    return opaque;
}

/// round(255 c / a) = (c * reciprocal[a] + half) >> 24 for every c <= a; the tests try them all.
struct Reciprocals {
    std::array<std::uint32_t, 256> value{};
    constexpr Reciprocals() {
        for (std::uint32_t a = 1; a < 256; ++a)
            value[a] = ((255u << 24) + a - 1) / a;
    }
};
constexpr Reciprocals reciprocals;

std::uint8_t unpremultiplied(std::uint32_t colour, std::uint32_t alpha) {
    // A colour above its alpha is no valid pixel; it saturates.
    const std::uint64_t scaled =
        std::uint64_t(std::min(colour, alpha)) * reciprocals.value[alpha] + (1u << 23);
    return std::uint8_t(std::min<std::uint64_t>(scaled >> 24, 255));
}

void writeRgb(const std::uint32_t* row, int width, std::uint8_t* out) {
    for (int x = 0; x < width; ++x, out += 3) {
        const std::uint32_t pixel = row[x];
        out[0] = std::uint8_t(pixel >> 16);
        out[1] = std::uint8_t(pixel >> 8);
        out[2] = std::uint8_t(pixel);
    }
}

void writeRgba(const std::uint32_t* row, int width, std::uint8_t* out) {
    for (int x = 0; x < width; ++x, out += 4) {
        const std::uint32_t pixel = row[x];
        const std::uint32_t alpha = pixel >> 24;
        if (alpha == 255) {
            out[0] = std::uint8_t(pixel >> 16);
            out[1] = std::uint8_t(pixel >> 8);
            out[2] = std::uint8_t(pixel);
        } else {
            out[0] = unpremultiplied(pixel >> 16 & 255, alpha);
            out[1] = unpremultiplied(pixel >> 8 & 255, alpha);
            out[2] = unpremultiplied(pixel & 255, alpha);
        }
        out[3] = std::uint8_t(alpha);
    }
}

struct Stripe {
    Bytes chunk; ///< The whole IDAT chunk; empty when memory was short.
    std::uint32_t adler = 1;
    std::size_t length = 0; ///< Filtered bytes.
};

/// The rows [firstRow, endRow), filtered with "up": a byte less the byte above it.
Bytes filteredRows(PixelView picture, bool opaque, int firstRow, int endRow) {
    const std::size_t rowBytes = std::size_t(picture.width) * (opaque ? 3 : 4);
    const auto write = opaque ? writeRgb : writeRgba;
    Bytes above(rowBytes, 0);
    Bytes current(rowBytes);
    if (firstRow > 0)
        write(picture.row(firstRow - 1), picture.width, above.data());
    Bytes filtered(std::size_t(endRow - firstRow) * (rowBytes + 1));
    std::uint8_t* out = filtered.data();
    for (int y = firstRow; y < endRow; ++y) {
        write(picture.row(y), picture.width, current.data());
        *out++ = 2;
        const std::uint8_t* now = current.data();
        const std::uint8_t* up = above.data();
        for (std::size_t i = 0; i < rowBytes; ++i)
            out[i] = std::uint8_t(now[i] - up[i]);
        out += rowBytes;
        current.swap(above);
    }
    return filtered;
}

bool deflateStripe(const Bytes& filtered, bool isLast, Bytes& out) {
    // What cannot be compressed is stored, with a few bytes a block of 64 KB.
    const std::size_t capacity = filtered.size() + filtered.size() / 1024 + 1024;
    const auto compressed = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
    const auto scratch = std::make_unique_for_overwrite<std::uint8_t[]>(ISAL_DEF_LVL1_DEFAULT);
    isal_zstream stream;
    isal_deflate_stateless_init(&stream);
    stream.next_in = const_cast<std::uint8_t*>(filtered.data());
    stream.avail_in = std::uint32_t(filtered.size());
    stream.next_out = compressed.get();
    stream.avail_out = std::uint32_t(capacity);
    stream.level = 1;
    stream.level_buf = scratch.get();
    stream.level_buf_size = ISAL_DEF_LVL1_DEFAULT;
    stream.gzip_flag = IGZIP_DEFLATE;
    // A full flush ends on a byte and keeps nothing, so that stripes can stand behind each other.
    stream.flush = isLast ? NO_FLUSH : FULL_FLUSH;
    stream.end_of_stream = isLast ? 1 : 0;
    if (isal_deflate_stateless(&stream) != COMP_OK)
        return false;
    out.insert(out.end(), compressed.get(), compressed.get() + stream.total_out);
    return true;
}

Stripe encodeStripe(PixelView picture, bool opaque, int firstRow, int endRow) {
    const bool isLast = endRow == picture.height;
    Stripe stripe;
    const Bytes filtered = filteredRows(picture, opaque, firstRow, endRow);
    stripe.length = filtered.size();
    stripe.adler = isal_adler32(1, filtered.data(), filtered.size());
    const std::size_t start = startChunk(stripe.chunk, "IDAT");
    if (firstRow == 0) {
        stripe.chunk.push_back(0x78); // zlib header: deflate, 32 KB window, fastest
        stripe.chunk.push_back(0x01);
    }
    if (!deflateStripe(filtered, isLast, stripe.chunk))
        return {};
    finishChunk(stripe.chunk, start);
    return stripe;
}

/// The checksum of two pieces in a row from the pieces' own.
std::uint32_t joinedAdler(std::uint32_t first, std::uint32_t second, std::size_t secondLength) {
    constexpr std::uint64_t base = 65521;
    const std::uint64_t firstSum = first & 0xffff;
    const std::uint64_t a = (firstSum + (second & 0xffff) + base - 1) % base;
    const std::uint64_t shift = (secondLength % base) * ((firstSum + base - 1) % base) % base;
    const std::uint64_t b = ((first >> 16) + (second >> 16) + shift) % base;
    return std::uint32_t(b << 16 | a);
}

Bytes header(PixelView picture, bool opaque, std::uint32_t resolution) {
    Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    std::size_t start = startChunk(bytes, "IHDR");
    append32(bytes, std::uint32_t(picture.width));
    append32(bytes, std::uint32_t(picture.height));
    bytes.push_back(8);
    bytes.push_back(opaque ? 2 : 6);
    bytes.insert(bytes.end(), {0, 0, 0});
    finishChunk(bytes, start);
    start = startChunk(bytes, "sRGB");
    bytes.push_back(0);
    finishChunk(bytes, start);
    if (resolution > 0) {
        start = startChunk(bytes, "pHYs");
        append32(bytes, resolution);
        append32(bytes, resolution);
        bytes.push_back(1);
        finishChunk(bytes, start);
    }
    return bytes;
}

} // namespace

std::uint32_t pixelsPerMetre(double dotsPerInch) {
    const double value = std::round(dotsPerInch / 0.0254);
    return value >= 1 && value <= std::numeric_limits<std::int32_t>::max() ? std::uint32_t(value) : 0;
}

std::vector<std::uint8_t> encodePng(PixelView picture, std::uint32_t pixelsPerMetre) {
    if (picture.isEmpty())
        return {};
    const bool opaque = isOpaque(picture);
    const std::size_t rowBytes = std::size_t(picture.width) * (opaque ? 3 : 4) + 1;
    const int rowsPerStripe =
        int(std::clamp<std::size_t>(stripeBytes / rowBytes, 1, std::size_t(picture.height)));
    const int count = (picture.height + rowsPerStripe - 1) / rowsPerStripe;
    std::vector<Stripe> stripes(static_cast<std::size_t>(count));
    parallelFor(count, [&](int i) {
        const int firstRow = i * rowsPerStripe;
        const int endRow = std::min(picture.height - firstRow, rowsPerStripe) + firstRow;
        stripes[std::size_t(i)] = encodeStripe(picture, opaque, firstRow, endRow);
    });

    Bytes png = header(picture, opaque, pixelsPerMetre);
    std::size_t size = png.size() + 64;
    for (const Stripe& stripe : stripes)
        size += stripe.chunk.size();
    png.reserve(size);
    std::uint32_t adler = 1;
    for (const Stripe& stripe : stripes) {
        if (stripe.chunk.empty())
            return {};
        png.insert(png.end(), stripe.chunk.begin(), stripe.chunk.end());
        adler = joinedAdler(adler, stripe.adler, stripe.length);
    }
    const std::size_t tail = startChunk(png, "IDAT");
    append32(png, adler);
    finishChunk(png, tail);
    finishChunk(png, startChunk(png, "IEND"));
    return png;
}

} // namespace framora::raster
