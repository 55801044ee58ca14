#include "editor/render/raster/Deflater.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace framora::raster {
namespace {

using namespace deflate;

constexpr int hashBits = 15;
constexpr int shortestMatch = 4;
constexpr int pricedLength = 12; ///< Up to this a match is held against its literals.
constexpr int densePart = 16;    ///< Positions at both ends of a match that later ones can find.
constexpr std::size_t chunkTokens = 4096;
constexpr std::size_t longestBlock = 32768; ///< Tokens.
/// What the description of one more code takes, about.
constexpr std::uint64_t blockOverhead = 700 * DeflateSymbols::entropyUnits;

/// The numbers behind an effort.
struct Search {
    int depth;       ///< Earlier places looked at,
    int lazyDepth;   ///< for a better match one byte later,
    int missedDepth; ///< and where the last positions had no match worth taking.
    int niceLength;  ///< From this on no better match is looked for.
    int lazyLength;  ///< Below this the next position is tried too.
    int sureRepeat;  ///< A run, or a repeat of the last distance, of this length is taken unseen.
    int hashedBytes; ///< The shortest match that is looked for, repeats aside.
    int patience;    ///< After so many positions without a match one byte more is passed over at a time.
};
template <DeflateEffort effort>
constexpr Search search = effort == DeflateEffort::quick ? Search{.depth = 12,
                                                                  .lazyDepth = 4,
                                                                  .missedDepth = 3,
                                                                  .niceLength = 66,
                                                                  .lazyLength = 20,
                                                                  .sureRepeat = 24,
                                                                  .hashedBytes = 8,
                                                                  .patience = 32}
                                                         : Search{.depth = 128,
                                                                  .lazyDepth = 64,
                                                                  .missedDepth = 64,
                                                                  .niceLength = 258,
                                                                  .lazyLength = 128,
                                                                  .sureRepeat = 128,
                                                                  .hashedBytes = 4,
                                                                  .patience = 64};
constexpr int fewMisses = 4;
constexpr int mostPassedOver = 8; ///< Bytes at once.
/// Above this many places a byte, as in smooth photographs, they are too many: only a quarter of them is
/// tried.
constexpr std::int64_t denseSteps = 12;

constexpr int readAhead = 8; ///< A hash reads this far.

std::uint32_t load32(const std::uint8_t* bytes) {
    std::uint32_t value;
    std::memcpy(&value, bytes, 4);
    return value;
}

std::uint64_t load64(const std::uint8_t* bytes) {
    std::uint64_t value;
    std::memcpy(&value, bytes, 8);
    return value;
}

template <DeflateEffort effort> std::size_t hashOf(const std::uint8_t* bytes) {
    return (load64(bytes) << (64 - 8 * search<effort>.hashedBytes)) * 0x9e3779b97f4a7c15u >> (64 - hashBits);
}

int commonLength(const std::uint8_t* a, const std::uint8_t* b, int limit) {
    int length = 0;
    for (; length + 8 <= limit; length += 8) {
        const std::uint64_t difference = load64(a + length) ^ load64(b + length);
        if (difference != 0)
            return length + std::countr_zero(difference) / 8;
    }
    while (length < limit && a[length] == b[length])
        ++length;
    return length;
}

} // namespace

Deflater::Deflater(DeflateEffort effort)
    : m_effort(effort), m_head(std::size_t(1) << hashBits), m_previous(windowSize),
      m_tokens(longestBlock + 3 * chunkTokens) {}

template <DeflateEffort effort> void Deflater::start(std::span<const std::uint8_t> data, std::size_t begin) {
    m_data = data.data();
    m_end = int(data.size());
    std::ranges::fill(m_head, -1);
    const int first = int(begin);
    for (int i = std::max(0, first - windowSize); i < std::min(first, m_end - readAhead + 1); ++i)
        if (i == 0 || load64(m_data + i) != load64(m_data + i - 1))
            insert<effort>(i, i + 1);
    m_steps = 0;
    m_isDense = false;
    m_tokenCount = 0;
    m_blockTokens = 0;
    m_block = m_chunk = {};
    m_blockEntropy = 0;
    m_blockBegin = m_chunkBegin = first;
    // The first prices: the bytes at the start, and matches of all kinds.
    DeflateSymbols guess;
    guess.literals.fill(1);
    guess.distances.fill(1);
    for (int i = first; i < std::min(m_end, first + 16384); ++i)
        guess.literals[m_data[i]] += 4;
    for (std::size_t i = endOfBlock + 1; i < literalSymbols; ++i)
        guess.literals[i] += 64;
    m_prices = DeflateCode::forSymbols(guess);
}

template <DeflateEffort effort> void Deflater::insert(int first, int end) {
    // In registers: for all the compiler knows, storing into the tables may change the members.
    const std::uint8_t* const data = m_data;
    int* const heads = m_head.data();
    int* const previous = m_previous.data();
    for (int i = first; i < end; ++i) {
        int& head = heads[hashOf<effort>(data + i)];
        previous[std::size_t(i) % windowSize] = head;
        head = i;
    }
}

template <DeflateEffort effort> void Deflater::insertMatched(int first, int end) {
    const int limit = std::min(end, m_end - readAhead + 1);
    if (end - first <= 2 * densePart) {
        insert<effort>(first, limit);
        return;
    }
    insert<effort>(first, std::min(first + densePart, limit));
    insert<effort>(end - densePart, limit);
}

// Inside its callers it is a tenth of the whole compression faster.
template <DeflateEffort effort>
[[gnu::always_inline]] inline Deflater::Match Deflater::findMatch(int position, int longerThan, int depth) {
    const std::uint8_t* const data = m_data;
    const std::uint8_t* const here = data + position;
    const int* const previous = m_previous.data();
    const int oldest = std::max(0, position - windowSize);
    const std::uint32_t start = load32(here);
    int candidate = m_head[hashOf<effort>(here)];
    int distance = 0;
    if (m_isDense)
        depth = (depth + 3) / 4;
    int left = depth;
    int length = std::max(longerThan, shortestMatch - 1);
    const int limit = std::min(longestMatch, m_end - position);
    if (length >= limit)
        return {};
    while (candidate >= oldest && left > 0) {
        --left;
        const std::uint8_t* const there = data + candidate;
        if (load32(there + length - 3) == load32(here + length - 3) && load32(there) == start) {
            const int common = commonLength(here, there, limit);
            if (common > length) {
                length = common;
                distance = position - candidate;
                if (length >= search<effort>.niceLength || length == limit)
                    break;
            }
        }
        candidate = previous[std::size_t(candidate) % windowSize];
    }
    m_steps += depth - left;
    return distance > 0 ? Match{.length = length, .distance = distance} : Match{};
}

bool Deflater::isWorthwhile(int position, Match match) const {
    if (match.length > pricedLength)
        return true;
    const auto price = [](unsigned length) { return length > 0 ? length : 14u; };
    const Slot length = lengthSlots[std::size_t(match.length)];
    const Slot distance = distanceSlot(unsigned(match.distance));
    const unsigned cost = price(m_prices.literals[length.symbol]) + length.extraBits +
                          price(m_prices.distances[distance.symbol]) + distance.extraBits;
    unsigned literals = 0;
    for (int i = 0; i < match.length; ++i)
        literals += price(m_prices.literals[m_data[position + i]]);
    return cost < literals;
}

inline void Deflater::addLiteral(int position) {
    const std::uint8_t value = m_data[position];
    m_tokens[m_tokenCount++] = value;
    ++m_chunk.literals[value];
}

inline void Deflater::addMatch(Match match) {
    m_tokens[m_tokenCount++] = std::uint32_t(match.length) << 16 | std::uint32_t(match.distance - 1);
    ++m_chunk.literals[lengthSlots[std::size_t(match.length)].symbol];
    ++m_chunk.distances[distanceSlot(unsigned(match.distance)).symbol];
}

/// A run of one byte, above all of zeros, or what repeats at the distance of the last match.
inline Deflater::Match Deflater::repeatAt(int position, int lastDistance) const {
    const std::uint8_t* const here = m_data + position;
    const std::uint32_t start = load32(here);
    const bool isRun = start == load32(here - 1);
    const bool isRepeat = start == load32(here - lastDistance);
    if (!isRun && !isRepeat)
        return {};
    const int limit = std::min(longestMatch, m_end - position);
    Match match;
    if (isRun)
        match = {.length = commonLength(here, here - 1, limit), .distance = 1};
    if (isRepeat && match.length < limit) {
        const int length = commonLength(here, here - lastDistance, limit);
        if (length > match.length)
            match = {.length = length, .distance = lastDistance};
    }
    return match;
}

template <DeflateEffort effort> void Deflater::parse(BitWriter& writer) {
    int position = m_blockBegin;
    const int end = m_end - readAhead;
    int lastDistance = 1;
    int misses = 0;
    if (position == 0 && m_end > 0)
        addLiteral(position++); // so that there is always a byte before
    while (position < end) {
        if (m_tokenCount - m_blockTokens >= chunkTokens)
            endChunk(writer, position);
        const Match repeat = repeatAt(position, lastDistance);
        if (repeat.length >= search<effort>.sureRepeat) {
            addMatch(repeat);
            // Inside a run all places are alike.
            const int inRun = repeat.distance == 1 ? repeat.length - search<effort>.hashedBytes + 1 : 0;
            insertMatched<effort>(position + std::max(inRun, 0), position + repeat.length);
            position += repeat.length;
            lastDistance = repeat.distance > 1 ? repeat.distance : lastDistance;
            misses = 0;
            continue;
        }
        // A repeat's distance is cheap, so another match has to be longer by two.
        Match match =
            findMatch<effort>(position, repeat.length > 0 ? repeat.length + 1 : 0,
                              misses > fewMisses ? search<effort>.missedDepth : search<effort>.depth);
        if (match.length == 0)
            match = repeat;
        insert<effort>(position, position + 1);
        if (match.length == 0 || !isWorthwhile(position, match)) {
            // Where nothing repeats, as in noise, ever fewer places are tried.
            ++misses;
            const int literals = std::min(1 + misses / search<effort>.patience, mostPassedOver);
            for (int i = 0; i < literals; ++i)
                addLiteral(position++);
            continue;
        }
        misses = 0;
        while (match.length < search<effort>.lazyLength && position < end) {
            const Match next = findMatch<effort>(position + 1, match.length, search<effort>.lazyDepth);
            if (next.length == 0)
                break;
            const int gain = 4 * (next.length - match.length) + std::bit_width(unsigned(match.distance)) -
                             std::bit_width(unsigned(next.distance));
            if (gain <= 2)
                break;
            addLiteral(position++);
            insert<effort>(position, position + 1);
            match = next;
        }
        addMatch(match);
        insertMatched<effort>(position + 1, position + match.length);
        position += match.length;
        lastDistance = match.distance > 1 ? match.distance : lastDistance;
    }
    while (position < m_end)
        addLiteral(position++);
}

template <DeflateEffort effort>
void Deflater::run(std::span<const std::uint8_t> data, std::size_t begin, BitWriter& writer) {
    start<effort>(data, begin);
    parse<effort>(writer);
}

void Deflater::compress(std::span<const std::uint8_t> data, std::size_t begin, bool isLast,
                        std::vector<std::uint8_t>& out) {
    BitWriter writer(out);
    if (m_effort == DeflateEffort::quick)
        run<DeflateEffort::quick>(data, begin, writer);
    else
        run<DeflateEffort::thorough>(data, begin, writer);
    endChunk(writer, m_end);
    writeBlock(writer, isLast);
    writer.reserve(16);
    if (!isLast) { // an empty stored block brings the next piece to a byte boundary
        writer.put(0, 3);
        writer.alignToByte();
        writer.put(0xffff0000u, 32);
    }
    writer.alignToByte();
}

void Deflater::endChunk(BitWriter& writer, int position) {
    // The chunk goes on with the block when one code for both is no dearer than two.
    const std::uint64_t chunkEntropy = m_chunk.entropy();
    DeflateSymbols joined = m_block;
    joined.add(m_chunk);
    std::uint64_t joinedEntropy = joined.entropy();
    if (m_blockTokens > 0 &&
        (m_blockTokens >= longestBlock || joinedEntropy > m_blockEntropy + chunkEntropy + blockOverhead)) {
        const std::size_t chunkBegin = m_blockTokens;
        writeBlock(writer, false);
        std::copy(m_tokens.begin() + std::ptrdiff_t(chunkBegin),
                  m_tokens.begin() + std::ptrdiff_t(m_tokenCount), m_tokens.begin());
        m_tokenCount -= chunkBegin;
        joined = m_chunk;
        joinedEntropy = chunkEntropy;
    }
    m_block = joined;
    m_blockEntropy = joinedEntropy;
    m_blockTokens = m_tokenCount;
    m_chunk = {};
    m_isDense = (m_isDense ? 4 : 1) * m_steps > denseSteps * (position - m_chunkBegin);
    m_steps = 0;
    m_chunkBegin = position;
}

void Deflater::writeBlock(BitWriter& writer, bool isLast) {
    const std::span<const std::uint8_t> bytes(m_data + m_blockBegin,
                                              std::size_t(m_chunkBegin - m_blockBegin));
    m_prices = writeDeflateBlock(writer, std::span(m_tokens).first(m_blockTokens), m_block, bytes, isLast);
    m_blockBegin = m_chunkBegin;
}

} // namespace framora::raster
