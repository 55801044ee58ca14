#include "editor/render/raster/HuffmanCode.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace framora::raster {
namespace {

constexpr std::size_t maximumSymbols = 288;
constexpr int maximumLength = 15;

/// A symbol and its frequency in one number, in the order of rarity; of two alike the later symbol first.
class Leaf {
public:
    Leaf() = default;
    Leaf(std::uint32_t frequency, std::size_t symbol)
        : m_key(std::uint64_t(frequency) << 16 | (0xffff - symbol)) {}
    std::uint32_t frequency() const { return std::uint32_t(m_key >> 16); }
    std::size_t symbol() const { return 0xffff - (m_key & 0xffff); }
    friend bool operator<(const Leaf& a, const Leaf& b) { return a.m_key < b.m_key; }

private:
    std::uint64_t m_key;
};

/// How many leaves of the optimal tree lie at each depth; what lies deeper than `limit` counts as `limit`.
/// `leaves` are sorted, rarest first.
std::array<int, maximumLength + 1> countDepths(std::span<const Leaf> leaves, int limit) {
    // The inner nodes come into being in order of weight, so the two lightest nodes are always at the heads
    // of two queues: the leaves and the inner nodes.
    std::array<std::uint64_t, maximumSymbols> weight{};
    std::array<std::size_t, maximumSymbols> innerParent{};
    std::array<std::size_t, maximumSymbols> leafParent{};
    const std::size_t innerCount = leaves.size() - 1;
    std::size_t leaf = 0;
    std::size_t inner = 0;
    for (std::size_t made = 0; made < innerCount; ++made)
        for (int child = 0; child < 2; ++child) {
            const bool takeLeaf =
                leaf < leaves.size() && (inner == made || leaves[leaf].frequency() <= weight[inner]);
            weight[made] += takeLeaf ? leaves[leaf].frequency() : weight[inner];
            (takeLeaf ? leafParent[leaf++] : innerParent[inner++]) = made;
        }
    std::array<int, maximumSymbols> depth{};
    for (std::size_t i = innerCount - 1; i-- > 0;)
        depth[i] = depth[innerParent[i]] + 1;
    std::array<int, maximumLength + 1> counts{};
    for (std::size_t i = 0; i < leaves.size(); ++i)
        ++counts[std::size_t(std::min(depth[leafParent[i]] + 1, limit))];
    return counts;
}

/// Clipped depths claim more codes than there are: leaves move down from above until they fit.
void fitDepths(std::array<int, maximumLength + 1>& counts, int limit) {
    std::int64_t claimed = 0;
    for (int length = 1; length <= limit; ++length)
        claimed += std::int64_t(counts[std::size_t(length)]) << (limit - length);
    for (; claimed > std::int64_t(1) << limit; --claimed) {
        int length = limit - 1;
        while (counts[std::size_t(length)] == 0)
            --length;
        --counts[std::size_t(limit)];
        --counts[std::size_t(length)];
        counts[std::size_t(length) + 1] += 2;
    }
}

} // namespace

void chooseCodeLengths(std::span<const std::uint32_t> frequencies, int limit,
                       std::span<std::uint8_t> lengths) {
    std::array<Leaf, maximumSymbols> storage;
    std::size_t used = 0;
    for (std::size_t i = 0; i < frequencies.size(); ++i)
        if (frequencies[i] > 0)
            storage[used++] = Leaf(frequencies[i], i);
    for (std::size_t i = 0; used < 2; ++i)
        if (frequencies[i] == 0)
            storage[used++] = Leaf(1, i);
    const std::span<Leaf> leaves(storage.data(), used);
    std::sort(leaves.begin(), leaves.end());
    std::array<int, maximumLength + 1> counts = countDepths(leaves, limit);
    fitDepths(counts, limit);
    std::ranges::fill(lengths, std::uint8_t(0));
    std::size_t leaf = 0;
    for (int length = limit; length > 0; --length)
        for (int i = 0; i < counts[std::size_t(length)]; ++i)
            lengths[leaves[leaf++].symbol()] = std::uint8_t(length);
}

void assignCodes(std::span<const std::uint8_t> lengths, std::span<std::uint16_t> codes) {
    std::array<unsigned, maximumLength + 2> next{};
    for (const std::uint8_t length : lengths)
        if (length > 0)
            ++next[std::size_t(length) + 1];
    // next[l]: first the codes that are shorter by one, then the first code of length l.
    next[1] = 0;
    for (std::size_t length = 2; length < next.size(); ++length)
        next[length] = (next[length - 1] + next[length]) << 1;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        unsigned code = lengths[i] > 0 ? next[lengths[i]]++ : 0;
        unsigned reversed = 0;
        for (int bit = 0; bit < lengths[i]; ++bit, code >>= 1)
            reversed = reversed << 1 | (code & 1);
        codes[i] = std::uint16_t(reversed);
    }
}

} // namespace framora::raster
