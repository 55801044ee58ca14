#pragma once

#include "editor/render/raster/EffectKernels.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PixelView.h"
#include "editor/render/raster/Placement.h"
#include "editor/render/raster/RoundedRect.h"
#include "editor/render/raster/TileGrid.h"

#include <memory>
#include <optional>
#include <vector>

namespace framora::raster {

/// One shape filled with one paint.
struct Layer {
    RoundedRect shape;
    std::optional<RoundedRect> hole; ///< Left out of the shape; it lies inside.
    Placement placement;
    std::shared_ptr<const Paint> paint;

    struct Adjustment {
        float saturation = 1;
        float brightness = 0;
        /// Whether adjustPixels() does it.
        bool isUsual() const {
            return saturation >= 0 && saturation <= mostSaturation && brightness >= -1 && brightness <= 1;
        }
        bool operator==(const Adjustment&) const = default;
    };
    std::optional<Adjustment> adjustment; ///< Of the paint's colours.

    struct Noise {
        float intensity = 0;
        int originX = 0; ///< The output pixel where the grain's own grid starts.
        int originY = 0;
        bool operator==(const Noise&) const = default;
    };
    std::optional<Noise> noise; ///< Over the paint's colours.

    float opacity = 1; ///< 0...1.

    enum class Blend {
        normal,
        overlay, ///< Darkens what is dark under it and lightens what is light.
        replace  ///< Takes the place of what lies under it, also where it is not opaque.
    };
    Blend blend = Blend::normal;
    /// Whether a layer further down has the same outline: then no fringe of it shows at the edge. Not for
    /// Blend::replace.
    bool sharesEdge = false;
    /// Whether both draw the same, and with the same paint.
    bool operator==(const Layer&) const = default;
};

class DrawnTiles;

/// Whether nothing shows through where the layer covers a pixel whole.
bool hidesWhatLiesUnder(const Layer& layer);

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
    /// Where bands begin, and how long tiles are, is a multiple of this.
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
