#include "screencapture/portal/PngFile.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace framora {

namespace {

constexpr std::array<uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr std::size_t kFrame = 12; ///< a chunk's length, name and checksum
constexpr std::size_t kHeaderLength = 13;
constexpr uint32_t kLongestSide = 65535;

uint32_t number(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

void putNumber(uint8_t* bytes, uint32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

/// Eight bytes a step, by tables that each move a byte one place further.
class Checksum {
public:
    Checksum() {
        for (uint32_t byte = 0; byte < 256; ++byte) {
            uint32_t value = byte;
            for (int bit = 0; bit < 8; ++bit)
                value = value & 1 ? value >> 1 ^ 0xedb88320U : value >> 1;
            m_tables[0][byte] = value;
        }
        for (std::size_t table = 1; table < m_tables.size(); ++table)
            for (std::size_t byte = 0; byte < 256; ++byte) {
                const uint32_t before = m_tables[table - 1][byte];
                m_tables[table][byte] = before >> 8 ^ m_tables[0][before & 255];
            }
    }

    uint32_t of(std::span<const uint8_t> bytes) const {
        uint32_t value = ~0U;
        std::size_t at = 0;
        for (; at + 8 <= bytes.size(); at += 8) {
            const uint8_t* b = bytes.data() + at;
            value = m_tables[7][b[0] ^ (value & 255)] ^ m_tables[6][b[1] ^ (value >> 8 & 255)] ^
                    m_tables[5][b[2] ^ (value >> 16 & 255)] ^ m_tables[4][b[3] ^ value >> 24] ^
                    m_tables[3][b[4]] ^ m_tables[2][b[5]] ^ m_tables[1][b[6]] ^ m_tables[0][b[7]];
        }
        for (; at < bytes.size(); ++at)
            value = value >> 8 ^ m_tables[0][(value ^ bytes[at]) & 255];
        return ~value;
    }

private:
    std::array<std::array<uint32_t, 256>, 8> m_tables;
};

const Checksum& checksum() {
    static const Checksum instance;
    return instance;
}

/// One part of the file: all of it, with its frame.
struct Chunk {
    std::span<const uint8_t> whole;

    bool is(const char* name) const { return std::memcmp(whole.data() + 4, name, 4) == 0; }
    std::span<const uint8_t> content() const { return whole.subspan(8, whole.size() - kFrame); }
    bool undamaged() const {
        return checksum().of(whole.subspan(4, whole.size() - 8)) == number(&*(whole.end() - 4));
    }
};

/// The chunk that starts there; nothing when it does not fit into the file.
std::optional<Chunk> chunkAt(std::span<const uint8_t> file, std::size_t at) {
    if (file.size() - at < kFrame)
        return std::nullopt;
    const std::size_t length = number(file.data() + at);
    if (length > file.size() - at - kFrame)
        return std::nullopt;
    return Chunk{file.subspan(at, length + kFrame)};
}

} // namespace

std::optional<PngSize> pngSizeOf(std::span<const uint8_t> file) {
    if (file.size() < kSignature.size() || !std::equal(kSignature.begin(), kSignature.end(), file.begin()))
        return std::nullopt;
    PngSize size;
    bool pixels = false;
    for (std::size_t at = kSignature.size();;) {
        const auto chunk = chunkAt(file, at);
        if (!chunk || !chunk->undamaged())
            return std::nullopt;
        if (chunk->is("IHDR")) {
            const auto header = chunk->content();
            if (at != kSignature.size() || header.size() != kHeaderLength)
                return std::nullopt;
            const uint32_t width = number(header.data());
            const uint32_t height = number(header.data() + 4);
            if (width == 0 || height == 0 || width > kLongestSide || height > kLongestSide)
                return std::nullopt;
            size = {static_cast<int>(width), static_cast<int>(height)};
        } else if (size.width == 0) {
            return std::nullopt;
        }
        pixels = pixels || chunk->is("IDAT");
        if (chunk->is("IEND"))
            return pixels ? std::optional(size) : std::nullopt;
        at += chunk->whole.size();
    }
}

std::vector<uint8_t> pngWithResolution(std::vector<uint8_t> file, uint32_t pixelsPerMetre) {
    std::array<uint8_t, kFrame + 9> resolution = {0, 0, 0, 9, 'p', 'H', 'Y', 's'};
    putNumber(resolution.data() + 8, pixelsPerMetre);
    putNumber(resolution.data() + 12, pixelsPerMetre);
    resolution[16] = 1; // a metre is the unit
    putNumber(resolution.data() + 17, checksum().of(std::span(resolution).subspan(4, 13)));

    std::size_t at = kSignature.size();
    std::size_t afterHeader = at;
    while (const auto chunk = chunkAt(file, at)) {
        const auto begin = file.begin() + static_cast<std::ptrdiff_t>(at);
        const auto length = static_cast<std::ptrdiff_t>(chunk->whole.size());
        if (chunk->is("IDAT") || chunk->is("IEND")) // It stands before the pixels, or not at all.
            break;
        if (chunk->is("pHYs")) {
            file.erase(begin, begin + length);
            continue;
        }
        if (chunk->is("IHDR"))
            afterHeader = at + chunk->whole.size();
        at += chunk->whole.size();
    }
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(afterHeader), resolution.begin(),
                resolution.end());
    return file;
}

} // namespace framora
