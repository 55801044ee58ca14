#pragma once

#include <cstdint>
#include <span>

namespace framora::raster {

/// The lengths in bits of a prefix code for symbols of these frequencies, none longer than `limit` (at most
/// 15); 0 where a symbol does not occur. The code is the best there is unless the limit is met. At most 288
/// symbols, and no more used ones than `limit` bits can tell apart. At least two symbols are given a code,
/// because some decoders refuse less.
void chooseCodeLengths(std::span<const std::uint32_t> frequencies, int limit,
                       std::span<std::uint8_t> lengths);

/// The canonical code of these lengths, each code's first bit lowest, as deflate sends them.
void assignCodes(std::span<const std::uint8_t> lengths, std::span<std::uint16_t> codes);

} // namespace framora::raster
