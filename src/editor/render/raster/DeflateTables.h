#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace framora::raster::deflate {

inline constexpr std::size_t literalSymbols = 286; ///< 256 bytes, the end of the block, 29 lengths
inline constexpr std::size_t literalCodes = 288;   ///< With two that only complete the fixed code.
inline constexpr std::size_t distanceSymbols = 30;
inline constexpr std::size_t endOfBlock = 256;
inline constexpr int longestMatch = 258;
inline constexpr int windowSize = 32768;

/// A match length or a distance as deflate sends it: a symbol and the bits that follow its code.
struct Slot {
    std::uint16_t symbol;
    std::uint16_t base; ///< The value less this is in the extra bits.
    std::uint8_t extraBits;
};

/// `length` from 3 to 258.
constexpr Slot lengthSlot(unsigned length) {
    if (length == unsigned(longestMatch))
        return {285, 258, 0};
    const unsigned value = length - 3;
    const unsigned extra = value < 8 ? 0 : unsigned(std::bit_width(value)) - 3;
    const unsigned step = value >> extra;
    return {std::uint16_t(257 + 4 * extra + step), std::uint16_t(3 + (step << extra)), std::uint8_t(extra)};
}

/// `distance` from 1 to 32768.
constexpr Slot distanceSlot(unsigned distance) {
    const unsigned value = distance - 1;
    const unsigned extra = value < 4 ? 0 : unsigned(std::bit_width(value)) - 2;
    const unsigned step = value >> extra;
    return {std::uint16_t(2 * extra + step), std::uint16_t(1 + (step << extra)), std::uint8_t(extra)};
}

inline constexpr std::array<Slot, longestMatch + 1> lengthSlots = [] {
    std::array<Slot, longestMatch + 1> slots{};
    for (unsigned length = 3; length <= unsigned(longestMatch); ++length)
        slots[length] = lengthSlot(length);
    return slots;
}();

} // namespace framora::raster::deflate
