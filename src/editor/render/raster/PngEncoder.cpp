#include "editor/render/raster/PngEncoder.h"

#include "editor/render/raster/Deflater.h"
#include "editor/render/raster/Opacity.h"
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
// threads. The size is fixed so that the file does not depend on how many there are. Where rows are drawn
// for it, a stripe's begin and end cost more than others: those of large pictures are of so many rows as
// tiles have.
constexpr std::size_t stripeBytes = 1 << 20;
constexpr int stripeRows = 32;

// Pictures up to this many bytes get the better and slower search for matches.
constexpr std::size_t thoroughBytes = 8u << 20;

// Rows are drawn and filtered about so many bytes of pixels at a time, which stay in the second-level cache,
// but at least so many rows.
constexpr std::size_t bandBytes = 512 << 10;
constexpr std::size_t bandRows = 32;

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
bool isSmall(const PngSource& picture, PngRowFormat format) {
    return format.rowBytes(picture.width) * std::size_t(picture.height) <= thoroughBytes;
}

int stripeHeight(const PngSource& picture, PngRowFormat format) {
    const int rows = int(std::clamp<std::size_t>(stripeBytes / format.rowBytes(picture.width), 1,
                                                 std::size_t(picture.height)));
    return isSmall(picture, format) || rows < stripeRows ? rows
                                                         : (rows + stripeRows - 1) / stripeRows * stripeRows;
}

/// What one thread encodes with; its memory is used again for the next stripe.
struct Workshop {
    explicit Workshop(DeflateEffort effort) : deflater(effort) {}

    /// Memory for so many bytes of filtered rows, and their padding.
    std::span<std::uint8_t> filteredRoom(std::size_t size) {
        if (m_filteredSize < size) {
            m_filtered = std::make_unique_for_overwrite<std::uint8_t[]>(size + pngRowPadding);
            m_filteredSize = size;
        }
        return {m_filtered.get(), size};
    }

    PixelBuffer room;
    Deflater deflater;

private:
    std::unique_ptr<std::uint8_t[]> m_filtered;
    std::size_t m_filteredSize = 0;
};

/// A workshop for each thread that asks for one meanwhile.
class Workshops {
public:
    explicit Workshops(DeflateEffort effort) : m_effort(effort) {}

    std::unique_ptr<Workshop> take() {
        const std::lock_guard lock(m_mutex);
        if (m_free.empty())
            return std::make_unique<Workshop>(m_effort);
        std::unique_ptr<Workshop> workshop = std::move(m_free.back());
        m_free.pop_back();
        return workshop;
    }
    void giveBack(std::unique_ptr<Workshop> workshop) {
        const std::lock_guard lock(m_mutex);
        m_free.push_back(std::move(workshop));
    }

private:
    const DeflateEffort m_effort;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Workshop>> m_free;
};

/// The rows [firstRow, endRow) as PNG rows, in the workshop's memory.
std::span<const std::uint8_t> filteredRows(const PngSource& picture, PngRowFormat format, int firstRow,
                                           int endRow, Workshop& workshop) {
    const std::size_t rowBytes = format.rowBytes(picture.width);
    const auto filtered = workshop.filteredRoom(std::size_t(endRow - firstRow) * rowBytes);
    PngRowFilter filter(format, picture.width);
    const std::size_t pixelBytes = std::size_t(picture.width) * sizeof(std::uint32_t);
    const TileAxis tiles = picture.tiles.length > 0 ? picture.tiles : TileAxis{picture.height, stripeRows};
    const int tilesAtOnce = std::max(1, int(std::max(bandRows, bandBytes / pixelBytes)) / tiles.size);
    std::uint8_t* out = filtered.data();
    for (int y = firstRow > 0 ? firstRow - 1 : 0, end = 0; y < endRow; y = end) {
        end = std::min(tiles.start((tiles.indexOf(y) / tilesAtOnce + 1) * tilesAtOnce), endRow);
        PixelView rows = picture.rows(y, end, workshop.room);
        if (rows.isEmpty())
            throw std::bad_alloc();
        if (y < firstRow) {
            filter.startBelow(rows.row(0));
            rows.data += rows.stride;
            --rows.height;
        }
        filter.add(rows, out);
        out += std::size_t(rows.height) * rowBytes;
    }
    return filtered;
}

/// `room` becomes the chunk.
Stripe encodeStripe(const PngSource& picture, PngRowFormat format, PngSpeed speed, int firstRow, int endRow,
                    Workshop& workshop, Bytes room) {
    const std::size_t rowBytes = format.rowBytes(picture.width);
    // A small picture's compact stream goes on from the stripe before, so the rows in its window are filtered
    // once more. A large one's would be smaller by a thousandth.
    const std::size_t windowRows = (std::size_t(deflate::windowSize) + rowBytes - 1) / rowBytes;
    const bool goesOn = speed == PngSpeed::compact && isSmall(picture, format);
    const int rowsBefore = goesOn ? std::min(firstRow, int(windowRows)) : 0;
    const std::span<const std::uint8_t> rows =
        filteredRows(picture, format, firstRow - rowsBefore, endRow, workshop);
    const std::size_t begin = std::size_t(rowsBefore) * rowBytes;
    const std::span<const std::uint8_t> filtered = rows.subspan(begin);
    const bool isLast = endRow == picture.height;

    Stripe stripe{.chunk = std::move(room)};
    stripe.length = filtered.size();
    stripe.adler = isal_adler32(1, filtered.data(), filtered.size());
    const std::size_t start = startChunk(stripe.chunk, "IDAT");
    if (firstRow == 0) {
        stripe.chunk.push_back(0x78); // zlib header: deflate, 32 KB window, fastest
        stripe.chunk.push_back(0x01);
    }
    if (speed == PngSpeed::compact)
        workshop.deflater.compress(rows, begin, isLast, stripe.chunk);
    else if (!deflateFast(filtered, isLast, stripe.chunk))
        return {};
    if (!isLast)
        finishChunk(stripe.chunk, start);
    return stripe;
}

/// What compresses better, tried on the whole of a small picture and on a few strips of a large one.
PngFiltering chooseFiltering(const PngSource& picture, PngRowFormat format, Workshops& workshops) {
    const std::size_t rowBytes = format.rowBytes(picture.width);
    const int affordable = int(std::max<std::size_t>(1, stripeBytes / rowBytes));
    const bool isWhole = isSmall(picture, format);
    const int strips = isWhole ? 1 : sampledStrips;
    const int rows = isWhole ? picture.height : std::max(1, affordable / (2 * sampledStrips));
    constexpr std::array tried = {PngFiltering::cheapest, PngFiltering::none, PngFiltering::leastSum};
    const int candidates = isWhole ? int(tried.size()) : 2;
    std::array<std::atomic<std::size_t>, tried.size()> sizes{};
    std::atomic<bool> failed = false;
    parallelFor(strips * candidates, [&](int i) {
        const std::size_t which = std::size_t(i % candidates);
        const int strip = i / candidates;
        const int first = int(std::int64_t(picture.height - rows) * (2 * strip + 1) / (2 * strips));
        PngRowFormat candidate = format;
        candidate.filtering = tried[which];
        try {
            std::unique_ptr<Workshop> workshop = workshops.take();
            const auto filtered = filteredRows(picture, candidate, first, first + rows, *workshop);
            Bytes out;
            workshop->deflater.compress(filtered, 0, true, out);
            sizes[which] += out.size();
            workshops.giveBack(std::move(workshop));
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    });
    if (failed)
        throw std::bad_alloc();
    // In strips by themselves rows without a filter look better than they are.
    if (!isWhole)
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

Bytes header(const PngSource& picture, std::uint32_t resolution) {
    Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    std::size_t start = startChunk(bytes, "IHDR");
    append32(bytes, std::uint32_t(picture.width));
    append32(bytes, std::uint32_t(picture.height));
    bytes.push_back(8);
    bytes.push_back(picture.isOpaque ? 2 : 6);
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

    /// Empty bytes, where possible in the memory of a stripe that was handed on: fresh memory takes longer
    /// than what is written into it.
    Bytes room() {
        const std::lock_guard lock(m_mutex);
        if (m_rooms.empty())
            return {};
        Bytes room = std::move(m_rooms.back());
        m_rooms.pop_back();
        return room;
    }
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
            next.chunk.clear();
            m_rooms.push_back(std::move(next.chunk));
        }
    }
    bool isComplete() const { return m_next == m_waiting.size(); }

private:
    std::mutex m_mutex;
    std::vector<Stripe> m_waiting;
    std::vector<Bytes> m_rooms;
    std::size_t m_next = 0;
    std::uint32_t m_adler = 1;
    const PngSink& m_sink;
};

} // namespace

std::uint32_t pixelsPerMetre(double dotsPerInch) {
    const double value = std::round(dotsPerInch / 0.0254);
    return value >= 1 && value <= std::numeric_limits<std::int32_t>::max() ? std::uint32_t(value) : 0;
}

bool writePng(const PngSource& picture, std::uint32_t pixelsPerMetre, PngSpeed speed,
              const PngSink& sink) try {
    if (picture.width <= 0 || picture.height <= 0)
        return false;
    PngRowFormat format{.isOpaque = picture.isOpaque, .filtering = PngFiltering::up};
    Workshops workshops(isSmall(picture, format) ? DeflateEffort::thorough : DeflateEffort::quick);
    if (speed == PngSpeed::compact)
        format.filtering = chooseFiltering(picture, format, workshops);
    const int rowsPerStripe = stripeHeight(picture, format);
    const int count = (picture.height - 1) / rowsPerStripe + 1;
    sink(header(picture, pixelsPerMetre));
    StripeQueue queue(std::size_t(count), sink);
    std::atomic<bool> failed = false;
    parallelFor(count, [&](int i) {
        if (failed)
            return;
        const int firstRow = i * rowsPerStripe;
        const int endRow = std::min(picture.height - firstRow, rowsPerStripe) + firstRow;
        try {
            std::unique_ptr<Workshop> workshop = workshops.take();
            queue.add(std::size_t(i),
                      encodeStripe(picture, format, speed, firstRow, endRow, *workshop, queue.room()));
            workshops.giveBack(std::move(workshop));
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    });
    return !failed && queue.isComplete();
} catch (const std::bad_alloc&) {
    return false;
}

bool writePng(PixelView picture, std::uint32_t pixelsPerMetre, PngSpeed speed, const PngSink& sink) {
    if (picture.isEmpty())
        return false;
    const auto rows = [picture](int first, int end, PixelBuffer&) {
        return PixelView{picture.data + first * picture.stride, picture.width, end - first, picture.stride};
    };
    return writePng({picture.width, picture.height, isOpaque(picture), rows}, pixelsPerMetre, speed, sink);
}

std::vector<std::uint8_t> encodePng(PixelView picture, std::uint32_t pixelsPerMetre, PngSpeed speed) {
    Bytes png;
    const bool complete = writePng(picture, pixelsPerMetre, speed, [&](std::span<const std::uint8_t> bytes) {
        png.insert(png.end(), bytes.begin(), bytes.end());
    });
    return complete ? png : Bytes();
}

} // namespace framora::raster
