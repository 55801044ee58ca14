#pragma once

#include "editor/render/raster/DeflateTables.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace framora::raster {

/// Bytes as deflate packs them, lowest bit first, appended to a vector.
class BitWriter {
public:
    explicit BitWriter(std::vector<std::uint8_t>& out) : m_out(out), m_size(out.size()) {}
    BitWriter(const BitWriter&) = delete;
    BitWriter& operator=(const BitWriter&) = delete;
    ~BitWriter() { m_out.resize(m_size); }

    /// Makes room for `bytes` more; put() writes only into room that was made.
    void reserve(std::size_t bytes) {
        if (m_out.size() < m_size + bytes + 16)
            m_out.resize(m_size + bytes + 16 + m_size / 2);
    }
    /// At most 56 bits at once; `bits` has none set beyond `count`.
    void put(std::uint64_t bits, unsigned count);
    void alignToByte();
    /// On a byte boundary only.
    void append(std::span<const std::uint8_t> bytes);

private:
    std::vector<std::uint8_t>& m_out;
    std::size_t m_size;
    std::uint64_t m_bits = 0; ///< Fewer than 8 between two calls.
    unsigned m_count = 0;
};

/// A piece of a deflate stream on its way to a block: literals and matches in order, and how often each
/// symbol occurs.
struct DeflateSymbols {
    std::array<std::uint32_t, deflate::literalSymbols> literals{};
    std::array<std::uint32_t, deflate::distanceSymbols> distances{};

    void add(const DeflateSymbols& other);
    /// Bits that an ideal code of the symbols themselves would take, without extra bits.
    double entropy() const;
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
