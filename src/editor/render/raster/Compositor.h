#pragma once

#include "editor/render/raster/Layer.h"
#include "editor/render/raster/PixelView.h"
#include "editor/render/raster/TileGrid.h"

#include <memory>
#include <vector>

namespace framora::raster {

class DrawnTiles;

/// Draws the layers, the first one undermost, over nothing, and overwrites all of `output`. Colours are mixed
/// with fifteen bits and rounded once at the end. The pixels depend neither on the number of threads nor on
/// the kind of vector unit. With `drawn`, which is of this picture, tiles that show the same already are left
/// out.
void compose(MutablePixelView output, const std::vector<Layer>& layers, DrawnTiles* drawn = nullptr);

/// compose() in pieces, each as large as is wanted when it is wanted: the whole picture need not be in
/// memory.
class Compositor {
public:
    /// Of a picture of so many pixels. What the layers use must live as long as this.
    Compositor(int width, int height, std::vector<Layer> layers);
    ~Compositor();

    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Draws the picture's rows from `top` on, as many as `rows` has; it is as wide as the picture. By this
    /// thread alone, but at once by several ones, also the same rows unless a layer's paint has a ShadeCache.
    void draw(MutablePixelView rows, int top) const;
    /// Where draw() is best begun and ended.
    const TileAxis& rowTiles() const;
    /// Whether every pixel is known to be opaque without drawing it.
    bool isSurelyOpaque() const;

private:
    struct Shapes;
    const int m_width;
    const int m_height;
    const std::vector<Layer> m_layers;
    const std::unique_ptr<const Shapes> m_shapes;
};

/// Who gets the tiles that composeTiles() makes: those of a band of rows one after the other, those of
/// different bands from different threads.
class TileTaker {
public:
    /// Where bands begin is a multiple of this, and how long tiles are, but for the last one of a piece.
    static constexpr int grain = 16;
    /// The columns [first, end).
    struct Columns {
        int first;
        int end;
    };
    virtual ~TileTaker() = default;
    /// Appends what is wanted of the rows [top, bottom), from left to right. Tiles begin where a piece does,
    /// and behind one another.
    virtual void findWanted(int top, int bottom, std::vector<Columns>& wanted) const = 0;
    /// Offers a tile of which nothing is seen but one layer, as its paint has it. When this gives false the
    /// tile is mixed.
    virtual bool takeSole(const TileRect& tile, std::size_t layer) = 0;
    virtual void take(const TileRect& tile, const MixPixel* pixels) = 0;
};
/// Mixes the layers as compose() does, without rounding them to a picture, where `taker` wants them and a
/// layer touches them.
void composeTiles(int width, int height, const std::vector<Layer>& layers, TileTaker& taker);

namespace plain {
/// compose() in floats, row by row, from what Paint::shade() gives: what compose() is held to, within one
/// step of 255.
void compose(MutablePixelView output, const std::vector<Layer>& layers);
} // namespace plain

} // namespace framora::raster
