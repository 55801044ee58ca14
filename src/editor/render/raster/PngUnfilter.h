#pragma once

#include "editor/render/raster/PngFilters.h"

#include <cstddef>
#include <cstdint>

namespace framora::raster {

/// One row of a PNG as it is read: `pixelBytes` is 3 or 4, `size` a multiple of it. Behind each of the three
/// rows lie `pngRowPadding` bytes: readable, and behind `out` writable; what they hold is of no matter.
struct FilteredPngRow {
    const std::uint8_t* data = nullptr;  ///< Without the filter's number.
    const std::uint8_t* above = nullptr; ///< The samples of the row above; zeros above the first row.
    std::uint8_t* out = nullptr;         ///< Where the samples go; apart from the other two.
    std::size_t size = 0;                ///< Bytes.
    std::size_t pixelBytes = 3;
};

/// Undoes what applyPngFilter() does.
void undoPngFilter(PngFilter filter, const FilteredPngRow& row);

/// R, G, B as opaque pixels. Reads up to `pngRowPadding` bytes past the samples.
void unpackRgb(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels);

/// R, G, B, A as premultiplied pixels: each colour times its alpha over 255, rounded to the nearest.
void unpackRgba(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels);

/// The same in plain loops, which define the results.
namespace plain {
void undoPngFilter(PngFilter filter, const FilteredPngRow& row);
void unpackRgb(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels);
void unpackRgba(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels);
} // namespace plain

} // namespace framora::raster
