#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PixelView.h"

#include <memory>
#include <optional>

namespace framora::raster {

/// What a layer is filled with: a colour for every output pixel, taken at the pixel's centre.
///
/// shade() says what the paint is, plainly and in floats. mix() gives the same colours to within one step of
/// 255, a block at a time; it is what pictures are drawn with.
class Paint {
public:
    virtual ~Paint() = default;
    /// The premultiplied colours, 0...1, of the `count` pixels from (x, y) to the right. Called from many
    /// threads.
    virtual void shade(int x, int y, int count, Float4* out) const = 0;
    /// The colours of a block, row by row without gaps. Called from many threads. As it stands it rounds what
    /// shade() gives.
    virtual void mix(const TileRect& tile, MixPixel* out) const;
    /// What mix() gives, mixed in overlay mode onto a block whose rows are `stride` pixels apart, to within a
    /// step of 255. False, and nothing is done, for a paint that cannot do both at once, and so always.
    /// Called from many threads.
    virtual bool overlay(const TileRect& tile, MixPixel* under, std::ptrdiff_t stride) const;
    /// What overlay() makes of such a block, rounded as draw() does it; the block stays as it is. False, and
    /// nothing is done, as for both. Called from many threads.
    virtual bool drawOverlaid(const TileRect& tile, const MixRows& under, MutablePixelView out,
                              Storing storing) const;
    /// What mix() gives, rounded to the pixels of a picture that are the block; as packPixels() and
    /// streamPixels() do it. False, and nothing is done, where a paint cannot do both at once, and so always.
    /// Called from many threads.
    virtual bool draw(const TileRect& tile, MutablePixelView out, Storing storing) const;
    /// The same for an output of pixels `cell` times as large, which start at the same corner. Nothing unless
    /// the colours at their centres are as good as the means of all the pixels that each stands for, if they
    /// are blurred by some of them afterwards.
    virtual std::shared_ptr<const Paint> coarser(int cell) const;
    /// The deviation of a Gaussian that the colours are blurred by at least, in pixels; 0 when none is known.
    virtual double blurDeviation() const { return 0; }
    /// Whether every colour has an alpha of exactly 1.
    virtual bool isOpaque() const = 0;
    /// Whether mix() does best on blocks that are about as high as wide.
    virtual bool prefersSquareTiles() const { return false; }
    /// Where one of the blocks starts that mix() does all at once: they are as large as square tiles, so that
    /// tiles which begin there cost it least. Nothing when it has none.
    struct BlockCorner {
        int x;
        int y;
    };
    virtual std::optional<BlockCorner> blockCorner() const { return std::nullopt; }
};

} // namespace framora::raster
