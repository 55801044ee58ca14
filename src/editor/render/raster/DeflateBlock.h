#pragma once

#include "editor/render/raster/DeflateTables.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace framora::raster {

/// Bytes as deflate packs them, lowest bit first. A local one stays in registers.
struct BitSink {
    std::uint8_t* at;       ///< Where the next whole byte goes; 8 bytes from here may be written.
    std::uint64_t bits = 0; ///< Fewer than 8 between two calls.
    unsigned count = 0;

    /// At most 56 bits at once; `more` has none set beyond `moreCount`.
    void put(std::uint64_t more, unsigned moreCount) {
        bits |= more << count;
        count += moreCount;
        std::memcpy(at, &bits, sizeof bits);
        at += count / 8;
        bits >>= count & ~7u;
        count &= 7;
    }
};

/// Bits appended to a vector.
class BitWriter {
public:
    explicit BitWriter(std::vector<std::uint8_t>& out) : m_out(out), m_sink{out.data() + out.size()} {}
    BitWriter(const BitWriter&) = delete;
    BitWriter& operator=(const BitWriter&) = delete;
    ~BitWriter() { m_out.resize(size()); }

    /// Makes room for `bytes` more; what is put is written only into room that was made.
    void reserve(std::size_t bytes);
    void put(std::uint64_t bits, unsigned count) { m_sink.put(bits, count); }
    void alignToByte() { put(0, (8 - m_sink.count) & 7); }
    /// On a byte boundary only.
    void append(std::span<const std::uint8_t> bytes);

    /// For many bits at once: a copy to put them into, which then takes the place of this one's.
    BitSink sink() const { return m_sink; }
    void setSink(BitSink sink) { m_sink = sink; }

private:
    std::size_t size() const { return std::size_t(m_sink.at - m_out.data()); }

    std::vector<std::uint8_t>& m_out;
    BitSink m_sink;
};

/// A piece of a deflate stream on its way to a block: literals and matches in order, and how often each
/// symbol occurs.
struct DeflateSymbols {
    std::array<std::uint32_t, deflate::literalSymbols> literals{};
    std::array<std::uint32_t, deflate::distanceSymbols> distances{};

    void add(const DeflateSymbols& other);
    /// What an ideal code of the symbols themselves would take, without extra bits, in entropyUnits of a bit.
    std::uint64_t entropy() const;
    static constexpr std::uint64_t entropyUnits = 65536;
};

/// The code lengths of one block, also the prices for what comes after it.
struct DeflateCode {
    std::array<std::uint8_t, deflate::literalCodes> literals{};
    std::array<std::uint8_t, deflate::distanceSymbols> distances{};

    static DeflateCode forSymbols(const DeflateSymbols& symbols);
};

/// One token: a literal's value, or a match as length << 16 | (distance - 1) with length >= 3.
using DeflateToken = std::uint32_t;

/// Writes the tokens as the smallest kind of block: its own code, the fixed code, or stored. `bytes` is what
/// the tokens stand for. Gives the code used, for prices.
DeflateCode writeDeflateBlock(BitWriter& writer, std::span<const DeflateToken> tokens,
                              const DeflateSymbols& symbols, std::span<const std::uint8_t> bytes,
                              bool isLast);

} // namespace framora::raster
