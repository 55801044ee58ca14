#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace framora::raster {

/// The five row filters of PNG, by the number that stands before the row.
enum class PngFilter : std::uint8_t { none, sub, up, average, paeth };
inline constexpr std::size_t pngFilterCount = 5;

/// A row of samples as the filters take it: `pixelBytes` (1 to 4) bytes before `data` are readable and zero,
/// and `pngRowPadding` bytes behind the row are readable, whatever they hold.
struct PngRow {
    const std::uint8_t* data = nullptr;
    const std::uint8_t* above = nullptr; ///< The row above, on the same terms; zeros above the first row.
    std::size_t size = 0;                ///< Bytes.
    std::size_t pixelBytes = 3;
};

/// Kernels may read and write this many bytes past the end of a row.
inline constexpr std::size_t pngRowPadding = 256;

/// Of rows longer than `wholePngRow` bytes the costs are those of the first `pngCostSample` bytes in every
/// `pngCostStep`: as good a choice, in half the time.
inline constexpr std::size_t wholePngRow = 4096;
inline constexpr std::size_t pngCostSample = 64;
inline constexpr std::size_t pngCostStep = 256;

/// About how many bits each filter's result would take, by filter: nothing for a zero, and 3 to 8 bits for
/// residuals from 1 up to 32 and more, either sign. This finds rows that compress well more often than the
/// plain sum of the residuals does.
std::array<std::uint64_t, pngFilterCount> pngFilterCosts(const PngRow& row);

/// Writes the filtered row. What lies in the padding behind `out` is overwritten.
void applyPngFilter(PngFilter filter, const PngRow& row, std::uint8_t* out);

/// Premultiplied pixels, all of them opaque, as R, G, B.
void packRgb(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out);
/// Premultiplied pixels as R, G, B, A with the colours divided by the alpha, to the nearest; nothing of what
/// has none. A colour above its alpha saturates.
void packRgba(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out);

/// The same in plain loops, which define the results.
namespace plain {
std::array<std::uint64_t, pngFilterCount> pngFilterCosts(const PngRow& row);
void applyPngFilter(PngFilter filter, const PngRow& row, std::uint8_t* out);
void packRgb(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out);
void packRgba(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out);
} // namespace plain

} // namespace framora::raster
