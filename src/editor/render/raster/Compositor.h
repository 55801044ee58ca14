#pragma once

#include "editor/render/raster/EffectKernels.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PixelView.h"
#include "editor/render/raster/Placement.h"
#include "editor/render/raster/RoundedRect.h"
#include "editor/render/raster/TileGrid.h"

#include <functional>
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

/// Where tiles start is a multiple of this.
inline constexpr int tileGrain = 16;
/// Mixes the layers as compose() does, without rounding them to a picture, where isWanted() says so of a
/// piece tileGrain pixels wide: take(tile, pixels) gets tiles of such pieces, unless no layer touches them.
/// The tiles of a row come one after the other, those of different rows from different threads.
void composeTiles(int width, int height, const std::vector<Layer>& layers,
                  const std::function<bool(const TileRect&)>& isWanted,
                  const std::function<void(const TileRect&, const MixPixel*)>& take);

namespace plain {
/// compose() in floats, row by row, from what Paint::shade() gives: what compose() is held to, within one
/// step of 255.
void compose(MutablePixelView output, const std::vector<Layer>& layers);
} // namespace plain

} // namespace framora::raster
