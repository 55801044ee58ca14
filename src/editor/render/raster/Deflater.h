#pragma once

#include "editor/render/raster/DeflateBlock.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace framora::raster {

/// How hard matches are looked for.
enum class DeflateEffort : std::uint8_t {
    quick,    ///< Matches of eight bytes and more, few places.
    thorough, ///< Matches of four bytes and more, many places: several times slower, a few percent smaller.
};

/// A deflate encoder for filtered picture rows, made so that pieces of one stream can be compressed on
/// different threads: every piece sees the bytes before it, and ends on a byte boundary. What it does
/// otherwise than a general encoder: it passes over the long runs that filtered rows are made of without
/// entering them into its tables, takes a short match only where it is cheaper than the literals in the
/// code of the block before, and starts a block wherever the statistics change.
///
/// It holds 600 KB of tables and may be used for many pieces in turn; the bytes depend only on the piece.
class Deflater {
public:
    explicit Deflater(DeflateEffort effort = DeflateEffort::quick);

    /// Appends the blocks for data[begin, size) to `out`; the up to 32 KB before `begin` are what the stream
    /// already holds. At most 2^30 bytes.
    void compress(std::span<const std::uint8_t> data, std::size_t begin, bool isLast,
                  std::vector<std::uint8_t>& out);

private:
    struct Match {
        int length = 0;
        int distance = 0;
    };

    // The search is compiled for each effort.
    template <DeflateEffort effort>
    void run(std::span<const std::uint8_t> data, std::size_t begin, BitWriter& writer);
    template <DeflateEffort effort> void start(std::span<const std::uint8_t> data, std::size_t begin);
    template <DeflateEffort effort> void parse(BitWriter& writer);
    template <DeflateEffort effort> void insert(int first, int end);
    template <DeflateEffort effort> void insertMatched(int first, int end);
    template <DeflateEffort effort> Match findMatch(int position, int longerThan, int depth);
    bool isWorthwhile(int position, Match match) const;
    void addLiteral(int position);
    void addMatch(Match match);
    Match repeatAt(int position, int lastDistance) const;
    void endChunk(BitWriter& writer, int position);
    void writeBlock(BitWriter& writer, bool isLast);

    DeflateEffort m_effort;
    const std::uint8_t* m_data = nullptr;
    int m_end = 0;
    std::vector<int> m_head;     ///< The last position with this hash, or -1.
    std::vector<int> m_previous; ///< By position modulo the window: the one before with the same hash.

    std::int64_t m_steps = 0; ///< Places looked at for the chunk so far.
    bool m_isDense = false;   ///< They were many in the one before.

    // The block so far, and the chunk that is about to join it or to start the next one.
    std::vector<DeflateToken> m_tokens; ///< Room for as many as there can be.
    std::size_t m_tokenCount = 0;
    std::size_t m_blockTokens = 0;
    DeflateSymbols m_block;
    DeflateSymbols m_chunk;
    std::uint64_t m_blockEntropy = 0;
    int m_blockBegin = 0;
    int m_chunkBegin = 0;
    DeflateCode m_prices;
};

} // namespace framora::raster
