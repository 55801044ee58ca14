#include "editor/render/raster/DeflateBlock.h"

#include "editor/render/raster/HuffmanCode.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace framora::raster {
namespace {

using namespace deflate;

static_assert(std::endian::native == std::endian::little, "whole words are written at once");

constexpr std::size_t longestStored = 65535;
constexpr std::array<std::uint8_t, 19> codeLengthOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                          11, 4,  12, 3, 13, 2, 14, 1, 15};

unsigned literalExtraBits(std::size_t symbol) {
    return symbol < 265 || symbol == 285 ? 0 : unsigned(symbol - 261) / 4;
}

unsigned distanceExtraBits(std::size_t symbol) {
    return symbol < 4 ? 0 : unsigned(symbol) / 2 - 1;
}

std::uint64_t costInBits(const DeflateSymbols& symbols, const DeflateCode& code) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < literalSymbols; ++i)
        bits += std::uint64_t(symbols.literals[i]) * (code.literals[i] + literalExtraBits(i));
    for (std::size_t i = 0; i < distanceSymbols; ++i)
        bits += std::uint64_t(symbols.distances[i]) * (code.distances[i] + distanceExtraBits(i));
    return bits;
}

DeflateCode fixedCode() {
    DeflateCode code;
    for (std::size_t i = 0; i < literalCodes; ++i)
        code.literals[i] = i < 144 ? 8 : i < 256 ? 9 : i < 280 ? 7 : 8;
    code.distances.fill(5);
    return code;
}

/// The code lengths of a block as deflate sends them: repeats and runs of zeros shortened, then coded
/// themselves.
class CodeDescription {
public:
    explicit CodeDescription(const DeflateCode& code) {
        m_literals = literalSymbols;
        while (m_literals > 257 && code.literals[m_literals - 1] == 0)
            --m_literals;
        m_distances = distanceSymbols;
        while (m_distances > 1 && code.distances[m_distances - 1] == 0)
            --m_distances;
        std::array<std::uint8_t, literalSymbols + distanceSymbols> all;
        std::copy_n(code.literals.begin(), m_literals, all.begin());
        std::copy_n(code.distances.begin(), m_distances, all.begin() + std::ptrdiff_t(m_literals));
        shorten({all.data(), m_literals + m_distances});
        std::array<std::uint32_t, 19> counts{};
        for (std::size_t i = 0; i < m_size; ++i)
            ++counts[m_items[i].symbol];
        chooseCodeLengths(counts, 7, m_lengths);
        assignCodes(m_lengths, m_codes);
        m_sent = codeLengthOrder.size();
        while (m_sent > 4 && m_lengths[codeLengthOrder[m_sent - 1]] == 0)
            --m_sent;
    }

    std::uint64_t bits() const {
        std::uint64_t bits = 14 + 3 * m_sent;
        for (std::size_t i = 0; i < m_size; ++i)
            bits += m_lengths[m_items[i].symbol] + m_items[i].extraBits;
        return bits;
    }

    void write(BitWriter& writer) const {
        writer.put(m_literals - 257, 5);
        writer.put(m_distances - 1, 5);
        writer.put(m_sent - 4, 4);
        for (std::size_t i = 0; i < m_sent; ++i)
            writer.put(m_lengths[codeLengthOrder[i]], 3);
        for (std::size_t i = 0; i < m_size; ++i) {
            const Item& item = m_items[i];
            writer.put(m_codes[item.symbol], m_lengths[item.symbol]);
            writer.put(item.extra, item.extraBits);
        }
    }

private:
    struct Item {
        std::uint8_t symbol;
        std::uint8_t extra;
        std::uint8_t extraBits;
    };

    void shorten(std::span<const std::uint8_t> all) {
        for (std::size_t i = 0; i < all.size();) {
            const std::uint8_t length = all[i];
            std::size_t end = i + 1;
            while (end < all.size() && all[end] == length)
                ++end;
            std::size_t run = end - i;
            i = end;
            if (length == 0) {
                for (; run >= 11; run -= std::min<std::size_t>(run, 138))
                    add(18, std::min<std::size_t>(run, 138) - 11, 7);
                if (run >= 3) {
                    add(17, run - 3, 3);
                    run = 0;
                }
            } else {
                add(length, 0, 0);
                for (--run; run >= 3; run -= std::min<std::size_t>(run, 6))
                    add(16, std::min<std::size_t>(run, 6) - 3, 2);
            }
            for (; run > 0; --run)
                add(length, 0, 0);
        }
    }
    void add(std::uint8_t symbol, std::size_t extra, std::uint8_t extraBits) {
        m_items[m_size++] = {symbol, std::uint8_t(extra), extraBits};
    }

    std::size_t m_literals;
    std::size_t m_distances;
    std::array<Item, literalSymbols + distanceSymbols> m_items;
    std::size_t m_size = 0;
    std::array<std::uint8_t, 19> m_lengths{};
    std::array<std::uint16_t, 19> m_codes{};
    std::size_t m_sent;
};

/// A symbol's code, or several in a row.
struct Bits {
    std::uint64_t bits = 0;
    unsigned count = 0;

    friend Bits operator+(Bits first, Bits then) {
        return {first.bits | then.bits << first.count, first.count + then.count};
    }
};

void writeTokens(BitWriter& writer, std::span<const DeflateToken> tokens, const DeflateCode& code) {
    std::array<std::uint16_t, deflate::literalCodes> literalCodes;
    std::array<std::uint16_t, distanceSymbols> distanceCodes;
    assignCodes(code.literals, literalCodes);
    assignCodes(code.distances, distanceCodes);
    const auto literal = [&](std::size_t symbol) {
        return Bits{literalCodes[symbol], code.literals[symbol]};
    };
    std::array<Bits, longestMatch + 1> lengths; // with the extra bits
    for (unsigned length = 3; length <= unsigned(longestMatch); ++length) {
        const Slot slot = lengthSlots[length];
        lengths[length] = literal(slot.symbol) + Bits{length - slot.base, slot.extraBits};
    }
    BitSink sink = writer.sink();
    const auto put = [&sink](Bits more) { sink.put(more.bits, more.count); };
    const DeflateToken* token = tokens.data();
    const DeflateToken* const end = token + tokens.size();
    while (token != end) {
        // Where one literal stands there are often many.
        if (end - token >= 3 && (token[0] | token[1] | token[2]) < 256) {
            put(literal(token[0]) + (literal(token[1]) + literal(token[2]))); // at most 45
            token += 3;
        } else if (*token < 256) {
            put(literal(*token++));
        } else {
            const unsigned distance = (*token & 0xffff) + 1;
            const Bits length = lengths[*token++ >> 16];
            const Slot slot = distanceSlot(distance);
            put(length + Bits{distanceCodes[slot.symbol], code.distances[slot.symbol]} +
                Bits{distance - slot.base, slot.extraBits}); // at most 48
        }
    }
    put(literal(endOfBlock));
    writer.setSink(sink);
}

void writeStored(BitWriter& writer, std::span<const std::uint8_t> bytes, bool isLast) {
    do {
        const std::size_t size = std::min(bytes.size(), longestStored);
        writer.put(isLast && size == bytes.size() ? 1 : 0, 3);
        writer.alignToByte();
        writer.put(size | (size ^ 0xffff) << 16, 32);
        writer.append(bytes.first(size));
        bytes = bytes.subspan(size);
    } while (!bytes.empty());
}

// The fractions of logarithms to the base 2 in entropyUnits, by a number's first bits behind the highest. In
// integers, since a library's logarithm differs between processors in its last bit, and then the files would.
constexpr unsigned fractionIndexBits = 10;
constexpr auto fractions = [] {
    std::array<std::uint16_t, std::size_t(1) << fractionIndexBits> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        // From 1 to 2 in 2^31sts; each squaring brings the next binary digit to light.
        std::uint64_t value = (table.size() + i) << (31 - fractionIndexBits);
        for (std::uint64_t digit = DeflateSymbols::entropyUnits / 2; digit > 0; digit /= 2) {
            value = value * value >> 31;
            if (value >> 32) {
                table[i] = std::uint16_t(table[i] + digit);
                value >>= 1;
            }
        }
    }
    return table;
}();

/// log2(number) in entropyUnits, `number` from 1.
std::uint64_t logarithm(std::uint32_t number) {
    const int zeros = std::countl_zero(number);
    const std::uint32_t fraction = number << zeros << 1;
    return (31 - unsigned(zeros)) * DeflateSymbols::entropyUnits +
           fractions[fraction >> (32 - fractionIndexBits)];
}

std::uint64_t entropyOf(std::span<const std::uint32_t> counts) {
    std::uint32_t total = 0;
    std::uint64_t sum = 0;
    for (const std::uint32_t count : counts)
        if (count > 0) {
            total += count;
            sum += count * logarithm(count);
        }
    return total > 0 ? total * logarithm(total) - sum : 0;
}

} // namespace

void BitWriter::reserve(std::size_t bytes) {
    constexpr std::size_t spare = 16;
    const std::size_t used = size();
    if (m_out.size() < used + bytes + spare)
        m_out.resize(used + bytes + spare + used / 2);
    m_sink.at = m_out.data() + used;
}

void BitWriter::append(std::span<const std::uint8_t> bytes) {
    std::memcpy(m_sink.at, bytes.data(), bytes.size());
    m_sink.at += bytes.size();
}

void DeflateSymbols::add(const DeflateSymbols& other) {
    for (std::size_t i = 0; i < literals.size(); ++i)
        literals[i] += other.literals[i];
    for (std::size_t i = 0; i < distances.size(); ++i)
        distances[i] += other.distances[i];
}

std::uint64_t DeflateSymbols::entropy() const {
    return entropyOf(literals) + entropyOf(distances);
}

DeflateCode DeflateCode::forSymbols(const DeflateSymbols& symbols) {
    DeflateCode code;
    chooseCodeLengths(symbols.literals, 15, code.literals);
    chooseCodeLengths(symbols.distances, 15, code.distances);
    return code;
}

DeflateCode writeDeflateBlock(BitWriter& writer, std::span<const DeflateToken> tokens,
                              const DeflateSymbols& symbols, std::span<const std::uint8_t> bytes,
                              bool isLast) {
    DeflateSymbols all = symbols;
    ++all.literals[endOfBlock];
    const DeflateCode own = DeflateCode::forSymbols(all);
    const CodeDescription description(own);
    static const DeflateCode fixed = fixedCode();
    const std::uint64_t ownBits = 3 + description.bits() + costInBits(all, own);
    const std::uint64_t fixedBits = 3 + costInBits(all, fixed);
    const std::uint64_t storedBits = 8 * bytes.size() + 40 * (bytes.size() / longestStored + 1);
    writer.reserve(std::min({ownBits, fixedBits, storedBits}) / 8 + 16);
    const unsigned last = isLast ? 1 : 0;
    if (storedBits < std::min(ownBits, fixedBits)) {
        writeStored(writer, bytes, isLast);
    } else if (fixedBits <= ownBits) {
        writer.put(last | 1 << 1, 3);
        writeTokens(writer, tokens, fixed);
    } else {
        writer.put(last | 2 << 1, 3);
        description.write(writer);
        writeTokens(writer, tokens, own);
    }
    return own;
}

} // namespace framora::raster
