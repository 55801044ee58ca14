#pragma once

#include "editor/render/raster/PixelView.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace framora::raster {

/// A PNG as programs that take screenshots write them: 8 bits a channel, RGB or RGBA, not interlaced, in sRGB
/// or in no colour space that it names. The gamma and the primaries that are written for sRGB count as it.
struct PlainPng {
    int width = 0;
    int height = 0;
    bool hasAlpha = false;
    /// The compressed rows, piece by piece; inside the file.
    std::vector<std::span<const std::uint8_t>> data;
};

/// The parts of such a file, which must outlive the result. Nothing for any other PNG, for other files, and
/// for one that is cut off or whose checksums are wrong: those are for a reader that knows all kinds and says
/// what is amiss.
std::optional<PlainPng> plainPng(std::span<const std::uint8_t> file);

/// Gets each row in turn, premultiplied; false ends it.
using PngRowTaker = std::function<bool(int y, const std::uint32_t* row)>;

/// Decodes it row by row; besides, it takes half a megabyte. False when it was ended, or when the compressed
/// data is damaged, too short or too long.
bool decodePlainPngRows(const PlainPng& png, const PngRowTaker& takeRow);

/// Decodes it into `out`, which has its size, premultiplied. Besides, it takes half a megabyte. False when
/// the compressed data is damaged, too short or too long; `out` then holds something. `goesOn`, if there is
/// one, is asked after each row and may end it.
bool decodePlainPng(const PlainPng& png, MutablePixelView out, const std::function<bool(int y)>& goesOn = {});

} // namespace framora::raster
