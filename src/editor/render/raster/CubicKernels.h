#pragma once

#include "editor/render/raster/CubicTaps.h"
#include "editor/render/raster/FootprintKernels.h"

namespace framora::raster {

/// Reads four by four pixels for each of a row of outputs, weighed by CubicTaps: the colours, 0...mixOne,
/// valid pixels. The places are those of the first of the four pixels, in steps of CubicTaps::phases a pixel
/// and counted from (left, top) of the box; they are kept inside it. `line` is in the same steps; the widths
/// are below CubicTaps::widthCount.
struct CubicOrigin {
    int left = 0;
    int top = 0;
};
void interpolateRow(const SourceBox& box, CubicOrigin origin, const FootprintPlaces& places,
                    std::size_t first, const FootprintLine& line, std::size_t count, MixPixel* out);

namespace plain {
/// The same bytes.
void interpolateRow(const SourceBox& box, CubicOrigin origin, const FootprintPlaces& places,
                    std::size_t first, const FootprintLine& line, std::size_t count, MixPixel* out);
} // namespace plain

} // namespace framora::raster
