#pragma once

#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/TileGrid.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace framora::raster {

/// What a PNG is made for. Either is a plain PNG file of the same pixels.
enum class PngSpeed : std::uint8_t {
    compact, ///< A file to keep: small, yet many times faster than the usual encoder.
    fastest, ///< The clipboard: nobody waits, but the bytes are of no lasting use.
};

/// A resolution in dots per inch as PNG stores it, in pixels per metre: 144 gives 5669.
std::uint32_t pixelsPerMetre(double dotsPerInch);

/// Takes the next bytes of a file, in order, one call at a time but from changing threads.
using PngSink = std::function<void(std::span<const std::uint8_t>)>;

/// The picture as a whole PNG file, 8 bits a channel: RGB when every pixel is opaque, otherwise RGBA with the
/// colours divided by their alpha. `pixelsPerMetre` is written for both axes; 0 writes no resolution. The
/// same pixels give the same bytes whatever the number of threads. Besides what the sink keeps, it takes a
/// few megabytes for each thread. False when the view is empty or memory is short; what the sink got is then
/// no file.
bool writePng(PixelView picture, std::uint32_t pixelsPerMetre, PngSpeed speed, const PngSink& sink);

/// A picture that is made while it is written, some rows at a time, and some of them more than once.
struct PngSource {
    int width = 0;
    int height = 0;
    bool isOpaque = true; ///< Every pixel. A picture that is not has a pixel that says so.
    /// The rows [first, end): a view of them alone, in `room` or elsewhere; empty when that fails. From
    /// several threads at once, each with its own room, which may hold rows of before.
    std::function<PixelView(int first, int end, PixelBuffer& room)> rows;
    TileAxis tiles = {}; ///< Rows are asked for in whole ones of these, wherever possible.
};
/// The same file as of the finished picture. False also where no rows are given.
bool writePng(const PngSource& source, std::uint32_t pixelsPerMetre, PngSpeed speed, const PngSink& sink);

/// The same into memory; empty on failure.
std::vector<std::uint8_t> encodePng(PixelView picture, std::uint32_t pixelsPerMetre = 0,
                                    PngSpeed speed = PngSpeed::compact);

} // namespace framora::raster
