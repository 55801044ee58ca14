#include "editor/render/raster/PngEncoder.h"

#include "editor/render/raster/Deflater.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PngRows.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <isa-l.h>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>

namespace framora::raster {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Rows are filtered and compressed in stripes of about this many bytes, each a chunk of its own, on all
// threads. The size is fixed so that the file does not depend on how many there are.
constexpr std::size_t stripeBytes = 1 << 20;

// Pictures up to this many bytes get the better and slower search for matches.
constexpr std::size_t thoroughBytes = 8u << 20;

// A large picture's filtering is tried on this many strips of it, half a stripe together.
constexpr int sampledStrips = 4;

// The colour space is said in pictures of this many pixels; below, the words would weigh too much.
constexpr std::int64_t taggedPixels = 1 << 15;

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

struct Stripe {
    Bytes chunk; ///< The IDAT chunk, whole but for the last stripe's checksums; empty when memory was short.
    std::uint32_t adler = 1;
    std::size_t length = 0; ///< Filtered bytes.
};

bool deflateFast(std::span<const std::uint8_t> filtered, bool isLast, Bytes& out) {
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

/// A small picture takes little time either way.
DeflateEffort effortFor(PixelView picture, PngRowFormat format) {
    return format.rowBytes(picture.width) * std::size_t(picture.height) <= thoroughBytes
               ? DeflateEffort::thorough
               : DeflateEffort::quick;
}

Stripe encodeStripe(PixelView picture, PngRowFormat format, PngSpeed speed, int firstRow, int endRow) {
    const std::size_t rowBytes = format.rowBytes(picture.width);
    // The compact stream goes on from the stripe before, so the rows in its window are filtered once more.
    const std::size_t windowRows = (std::size_t(deflate::windowSize) + rowBytes - 1) / rowBytes;
    const int rowsBefore = speed == PngSpeed::compact ? std::min(firstRow, int(windowRows)) : 0;
    const Bytes rows = filteredPngRows(picture, format, firstRow - rowsBefore, endRow);
    const std::size_t begin = std::size_t(rowsBefore) * rowBytes;
    const std::span<const std::uint8_t> filtered = std::span(rows).subspan(begin);
    const bool isLast = endRow == picture.height;

    Stripe stripe;
    stripe.length = filtered.size();
    stripe.adler = isal_adler32(1, filtered.data(), filtered.size());
    const std::size_t start = startChunk(stripe.chunk, "IDAT");
    if (firstRow == 0) {
        stripe.chunk.push_back(0x78); // zlib header: deflate, 32 KB window, fastest
        stripe.chunk.push_back(0x01);
    }
    if (speed == PngSpeed::compact)
        Deflater(effortFor(picture, format)).compress(rows, begin, isLast, stripe.chunk);
    else if (!deflateFast(filtered, isLast, stripe.chunk))
        return {};
    if (!isLast)
        finishChunk(stripe.chunk, start);
    return stripe;
}

/// What compresses better, tried on the whole of a small picture and on a few strips of a large one.
PngFiltering chooseFiltering(PixelView picture, PngRowFormat format) {
    const std::size_t rowBytes = format.rowBytes(picture.width);
    const int affordable = int(std::max<std::size_t>(1, stripeBytes / rowBytes));
    const bool isSmall = format.rowBytes(picture.width) * std::size_t(picture.height) <= thoroughBytes;
    const int strips = isSmall ? 1 : sampledStrips;
    const int rows = isSmall ? picture.height : std::max(1, affordable / (2 * sampledStrips));
    constexpr std::array tried = {PngFiltering::cheapest, PngFiltering::none, PngFiltering::leastSum};
    const int candidates = isSmall ? int(tried.size()) : 2;
    std::array<std::atomic<std::size_t>, tried.size()> sizes{};
    std::atomic<bool> failed = false;
    parallelFor(strips * candidates, [&](int i) {
        const std::size_t which = std::size_t(i % candidates);
        const int strip = i / candidates;
        const int first = int(std::int64_t(picture.height - rows) * (2 * strip + 1) / (2 * strips));
        PngRowFormat candidate = format;
        candidate.filtering = tried[which];
        try {
            Bytes out;
            Deflater(effortFor(picture, format))
                .compress(filteredPngRows(picture, candidate, first, first + rows), 0, true, out);
            sizes[which] += out.size();
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    });
    if (failed)
        throw std::bad_alloc();
    // In strips by themselves rows without a filter look better than they are.
    if (!isSmall)
        return sizes[1] < sizes[0] - sizes[0] / 32 ? tried[1] : tried[0];
    return tried[std::size_t(std::min_element(sizes.begin(), sizes.begin() + candidates) - sizes.begin())];
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
    if (std::int64_t(picture.width) * picture.height >= taggedPixels) {
        start = startChunk(bytes, "sRGB");
        bytes.push_back(0);
        finishChunk(bytes, start);
    }
    if (resolution > 0) {
        start = startChunk(bytes, "pHYs");
        append32(bytes, resolution);
        append32(bytes, resolution);
        bytes.push_back(1);
        finishChunk(bytes, start);
    }
    return bytes;
}

/// Hands finished stripes on in their order; one that comes too early waits, compressed.
class StripeQueue {
public:
    StripeQueue(std::size_t count, const PngSink& sink) : m_waiting(count), m_sink(sink) {}

    void add(std::size_t index, Stripe stripe) {
        const std::lock_guard lock(m_mutex);
        m_waiting[index] = std::move(stripe);
        for (; m_next < m_waiting.size() && !m_waiting[m_next].chunk.empty(); ++m_next) {
            Stripe& next = m_waiting[m_next];
            m_adler = joinedAdler(m_adler, next.adler, next.length);
            if (m_next + 1 == m_waiting.size()) {
                append32(next.chunk, m_adler);
                finishChunk(next.chunk, 0);
                finishChunk(next.chunk, startChunk(next.chunk, "IEND"));
            }
            m_sink(next.chunk);
            next.chunk = {};
        }
    }
    bool isComplete() const { return m_next == m_waiting.size(); }

private:
    std::mutex m_mutex;
    std::vector<Stripe> m_waiting;
    std::size_t m_next = 0;
    std::uint32_t m_adler = 1;
    const PngSink& m_sink;
};

} // namespace

std::uint32_t pixelsPerMetre(double dotsPerInch) {
    const double value = std::round(dotsPerInch / 0.0254);
    return value >= 1 && value <= std::numeric_limits<std::int32_t>::max() ? std::uint32_t(value) : 0;
}

bool writePng(PixelView picture, std::uint32_t pixelsPerMetre, PngSpeed speed, const PngSink& sink) try {
    if (picture.isEmpty())
        return false;
    PngRowFormat format{.isOpaque = isOpaque(picture), .filtering = PngFiltering::up};
    if (speed == PngSpeed::compact)
        format.filtering = chooseFiltering(picture, format);
    const int rowsPerStripe = int(std::clamp<std::size_t>(stripeBytes / format.rowBytes(picture.width), 1,
                                                          std::size_t(picture.height)));
    const int count = (picture.height + rowsPerStripe - 1) / rowsPerStripe;
    sink(header(picture, format.isOpaque, pixelsPerMetre));
    StripeQueue queue(std::size_t(count), sink);
    std::atomic<bool> failed = false;
    parallelFor(count, [&](int i) {
        if (failed)
            return;
        const int firstRow = i * rowsPerStripe;
        const int endRow = std::min(picture.height - firstRow, rowsPerStripe) + firstRow;
        try {
            queue.add(std::size_t(i), encodeStripe(picture, format, speed, firstRow, endRow));
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    });
    return !failed && queue.isComplete();
} catch (const std::bad_alloc&) {
    return false;
}

std::vector<std::uint8_t> encodePng(PixelView picture, std::uint32_t pixelsPerMetre, PngSpeed speed) {
    Bytes png;
    const bool complete = writePng(picture, pixelsPerMetre, speed, [&](std::span<const std::uint8_t> bytes) {
        png.insert(png.end(), bytes.begin(), bytes.end());
    });
    return complete ? png : Bytes();
}

} // namespace framora::raster
