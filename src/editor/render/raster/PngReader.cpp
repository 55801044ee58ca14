#include "editor/render/raster/PngReader.h"

#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PngUnfilter.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <isa-l.h>
#include <limits>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string_view>
#include <system_error>
#include <thread>

namespace framora::raster {
namespace {

using namespace std::string_view_literals;
using Span = std::span<const std::uint8_t>;

constexpr std::uint8_t signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};

// What programs write for sRGB into gAMA and cHRM, with sRGB itself or instead of it, in 100000ths; some of
// them rounded on the way.
constexpr std::array<std::uint32_t, 1> srgbGamma = {45455};
constexpr std::array<std::uint32_t, 8> srgbPrimaries = {31270, 32900, 64000, 33000,
                                                        30000, 60000, 15000, 6000};
constexpr std::uint32_t gammaRounding = 50;
constexpr std::uint32_t primariesRounding = 5;

// So many bytes of rows are decompressed at a time: they stay in the second-level cache.
constexpr std::size_t bandBytes = 256 << 10;

// From so many bytes of rows on another thread decompresses them.
constexpr std::size_t severalThreadsBytes = 4 << 20;

std::uint32_t read32(const std::uint8_t* bytes) {
    return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 |
           bytes[3];
}

struct Chunk {
    std::string_view type;
    Span content;
};

/// Whether a chunk holds these numbers, give or take `rounding`.
template <std::size_t count>
bool holds(const Chunk& chunk, const std::array<std::uint32_t, count>& numbers, std::uint32_t rounding) {
    if (chunk.content.size() != 4 * count)
        return false;
    for (std::size_t i = 0; i < count; ++i)
        if (read32(chunk.content.data() + 4 * i) + rounding - numbers[i] > 2 * rounding)
            return false;
    return true;
}

/// Takes the next chunk off the front of `rest`. Nothing when it is cut off or its checksum is wrong.
std::optional<Chunk> takeChunk(Span& rest) {
    constexpr std::size_t frame = 12;
    if (rest.size() < frame)
        return {};
    const std::size_t length = read32(rest.data());
    if (length > rest.size() - frame)
        return {};
    const Span covered = rest.subspan(4, length + 4);
    if (crc32_gzip_refl(0, covered.data(), covered.size()) != read32(rest.data() + 8 + length))
        return {};
    rest = rest.subspan(frame + length);
    return Chunk{{reinterpret_cast<const char*>(covered.data()), 4}, covered.subspan(4)};
}

/// Reads IHDR. False for a kind of picture that is not plain.
bool readHeader(const Chunk& chunk, PlainPng& png) {
    if (chunk.type != "IHDR"sv || chunk.content.size() != 13)
        return false;
    const std::uint8_t* header = chunk.content.data();
    const std::uint32_t width = read32(header);
    const std::uint32_t height = read32(header + 4);
    constexpr std::uint32_t most = std::numeric_limits<int>::max();
    if (width == 0 || height == 0 || width > most || height > most)
        return false;
    png.width = int(width);
    png.height = int(height);
    png.hasAlpha = header[9] == 6;
    const bool hasColours = header[9] == 2 || header[9] == 6;
    return header[8] == 8 && hasColours && header[10] == 0 && header[11] == 0 && header[12] == 0;
}

/// The compressed rows as one stream.
class RowStream {
public:
    explicit RowStream(const std::vector<Span>& pieces) : m_pieces(pieces) {
        isal_inflate_init(&m_state);
        m_state.crc_flag = ISAL_ZLIB;
    }

    /// Fills `out`. False when the data is damaged or ends before.
    bool read(std::span<std::uint8_t> out) {
        m_state.next_out = out.data();
        m_state.avail_out = std::uint32_t(out.size());
        while (m_state.avail_out > 0)
            if (!step())
                return false;
        return true;
    }

    /// Whether nothing but the stream's own end follows, with the right checksum.
    bool isAtEnd() {
        std::uint8_t more;
        m_state.next_out = &more;
        m_state.avail_out = 1;
        while (m_state.block_state != ISAL_BLOCK_FINISH)
            if (!step() || m_state.avail_out == 0)
                return false;
        return m_state.avail_out == 1;
    }

private:
    bool step() {
        if (m_state.block_state == ISAL_BLOCK_FINISH)
            return false;
        if (m_state.avail_in == 0) {
            if (m_next == m_pieces.size())
                return false;
            const Span piece = m_pieces[m_next++];
            m_state.next_in = const_cast<std::uint8_t*>(piece.data()); // the interface's; it only reads
            m_state.avail_in = std::uint32_t(piece.size());
        }
        return isal_inflate(&m_state) == ISAL_DECOMP_OK;
    }

    const std::vector<Span>& m_pieces;
    std::size_t m_next = 0;
    inflate_state m_state{};
};

} // namespace

std::optional<PlainPng> plainPng(std::span<const std::uint8_t> file) {
    if (file.size() < sizeof signature ||
        !std::equal(std::begin(signature), std::end(signature), file.begin()))
        return {};
    Span rest = file.subspan(sizeof signature);
    PlainPng png;
    std::optional<Chunk> chunk = takeChunk(rest);
    if (!chunk || !readHeader(*chunk, png))
        return {};
    bool isSrgb = false;
    bool hasOtherColours = false; // unless sRGB overrules them
    bool dataHasEnded = false;
    while ((chunk = takeChunk(rest))) {
        const std::string_view type = chunk->type;
        if (type == "IEND"sv)
            return png.data.empty() || (hasOtherColours && !isSrgb) ? std::nullopt : std::optional(png);
        if (type == "IDAT"sv) {
            if (dataHasEnded)
                return {};
            png.data.push_back(chunk->content);
            continue;
        }
        dataHasEnded = !png.data.empty();
        isSrgb = isSrgb || type == "sRGB"sv;
        hasOtherColours = hasOtherColours || (type == "gAMA"sv && !holds(*chunk, srgbGamma, gammaRounding)) ||
                          (type == "cHRM"sv && !holds(*chunk, srgbPrimaries, primariesRounding));
        // What changes the pixels' meaning, and whatever a reader must know.
        const bool isCritical = type[0] >= 'A' && type[0] <= 'Z';
        if (isCritical || type == "tRNS"sv || type == "iCCP"sv || type == "cICP"sv || type == "eXIf"sv)
            return {};
    }
    return {};
}

namespace {

/// Decompresses rows band by band, for large pictures on a thread of its own, some bands ahead.
class BandReader {
public:
    BandReader(const PlainPng& png, std::size_t filteredBytes)
        : m_stream(std::make_unique<RowStream>(png.data)), m_filteredBytes(filteredBytes),
          m_bandRows(int(std::clamp<std::size_t>(bandBytes / filteredBytes, 1, std::size_t(png.height)))),
          m_height(png.height) {
        const bool isLarge = filteredBytes * std::size_t(png.height) >= severalThreadsBytes;
        m_bands.resize(isLarge && mayUseThreads() ? bandsAhead : 1);
        for (Band& band : m_bands)
            band.resize(filteredBytes * std::size_t(m_bandRows) + pngRowPadding);
        if (m_bands.size() == 1)
            return;
        try {
            m_thread = std::jthread([this](const std::stop_token& stop) { readAhead(stop); });
            m_isAhead = true;
        } catch (const std::system_error&) {
            // No more threads: by this one.
        }
    }

    /// The rows in the band that begins with row `first`.
    int rows(int first) const { return std::min(m_bandRows, m_height - first); }

    /// The next band; null where the data is damaged. The one before is used again.
    const std::uint8_t* next() {
        if (!m_isAhead)
            return read(m_taken++) ? m_bands[0].data() : nullptr;
        std::unique_lock lock(m_mutex);
        m_released = m_taken;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_ready > m_taken || m_hasEnded; });
        return m_ready > m_taken ? m_bands[std::size_t(m_taken++) % m_bands.size()].data() : nullptr;
    }

    /// Whether nothing follows the last band, which has been taken.
    bool isAtEnd() {
        if (m_isAhead)
            m_thread.join();
        return m_stream->isAtEnd();
    }

private:
    using Band = std::vector<std::uint8_t>;
    static constexpr std::size_t bandsAhead = 4;

    bool read(int index) {
        const int first = index * m_bandRows;
        return m_stream->read({m_bands[std::size_t(index) % m_bands.size()].data(),
                               m_filteredBytes * std::size_t(rows(first))});
    }

    void readAhead(const std::stop_token& stop) {
        const int count = (m_height - 1) / m_bandRows + 1;
        for (int i = 0; i < count && waitForRoom(i, stop) && read(i); ++i) {
            const std::lock_guard lock(m_mutex);
            ++m_ready;
            m_changed.notify_all();
        }
        // Whatever ended it, nobody waits for more.
        const std::lock_guard lock(m_mutex);
        m_hasEnded = true;
        m_changed.notify_all();
    }

    bool waitForRoom(int index, const std::stop_token& stop) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait(lock, stop, [&] { return index - m_released < int(bandsAhead); });
    }

    const std::unique_ptr<RowStream> m_stream;
    const std::size_t m_filteredBytes;
    const int m_bandRows;
    const int m_height;
    bool m_isAhead = false;
    std::vector<Band> m_bands;
    int m_taken = 0; ///< Bands handed out so far.

    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    int m_ready = 0;         ///< Bands read so far.
    int m_released = 0;      ///< Bands that are not looked at any more.
    bool m_hasEnded = false; ///< No more bands are read.
    std::jthread m_thread;   // ends before what it uses
};

/// Decodes each row into the memory that `rowOf` says, then calls `done` with it; false ends it.
template <typename RowOf, typename Done>
bool decodeRows(const PlainPng& png, const RowOf& rowOf, const Done& done) {
    const std::size_t pixelBytes = png.hasAlpha ? 4 : 3;
    const std::size_t rowBytes = std::size_t(png.width) * pixelBytes;
    const std::size_t filteredBytes = rowBytes + 1;
    std::vector<std::uint8_t> above(rowBytes + pngRowPadding);
    std::vector<std::uint8_t> now(rowBytes + pngRowPadding);
    BandReader bands(png, filteredBytes);
    for (int first = 0; first < png.height; first += bands.rows(first)) {
        const std::uint8_t* filtered = bands.next();
        if (!filtered)
            return false;
        for (int y = first; y < first + bands.rows(first); ++y, filtered += filteredBytes) {
            if (filtered[0] >= pngFilterCount)
                return false;
            undoPngFilter(PngFilter(filtered[0]),
                          {filtered + 1, above.data(), now.data(), rowBytes, pixelBytes});
            const auto unpack = png.hasAlpha ? unpackRgba : unpackRgb;
            std::uint32_t* row = rowOf(y);
            unpack(now.data(), std::size_t(png.width), row);
            if (!done(y, row))
                return false;
            above.swap(now);
        }
    }
    return bands.isAtEnd();
}

} // namespace

bool decodePlainPngRows(const PlainPng& png, const PngRowTaker& takeRow) {
    std::vector<std::uint32_t> row(std::size_t(png.width));
    return decodeRows(
        png, [&](int) { return row.data(); }, takeRow);
}

bool decodePlainPng(const PlainPng& png, MutablePixelView out, const std::function<bool(int y)>& goesOn) {
    if (out.width != png.width || out.height != png.height)
        return false;
    return decodeRows(
        png, [&](int y) { return out.row(y); },
        [&](int y, const std::uint32_t*) { return !goesOn || goesOn(y); });
}

} // namespace framora::raster
