#pragma once

#include "editor/render/BackgroundBlur.h"
#include "editor/render/Composition.h"
#include "editor/render/KeptPaint.h"
#include "editor/render/LivePicture.h"
#include "editor/render/SceneLayer.h"
#include "editor/render/TextLayers.h"
#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/PicturePyramid.h"
#include "editor/render/raster/ShadeCache.h"

#include <QImage>
#include <QPointF>
#include <QSize>
#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace framora {

/// Draws compositions: the preview at any zoom and the export, by one path.
///
/// An object keeps what it prepared of the last pictures, so that a preview is drawn again quickly; the
/// pixels are the same as a new object's. One object is used by one thread at a time.
class CompositionRasterizer {
public:
    /// The part of the plane that is drawn: an image of `pixelSize` in which a point is `pixelsPerPoint`
    /// pixels and the canvas centre lies at `canvasCentre`, in pixels from the top left corner.
    struct Viewport {
        QSize pixelSize;
        double pixelsPerPoint = 1;
        QPointF canvasCentre;
    };

    /// More pixels than these are never drawn: two gigabytes. A screen of 3840 x 2160 at the largest scale,
    /// with the largest padding and frame, takes four fifths of it.
    static constexpr int longestSide = 65535;
    static constexpr qint64 mostPixels = 500'000'000;

    /// The picture as ARGB32_Premultiplied with a devicePixelRatio of 1, transparent where no layer is. Null
    /// when the viewport is empty or too large, or memory is short. A style with numbers that are not finite,
    /// or with layers turned edge-on, is drawn without what cannot be drawn.
    QImage draw(const Composition& composition, const Viewport& viewport);
    /// The same into `target`, whose memory is used again when it fits and nobody else holds it. False, and a
    /// null target, where draw() gives null.
    bool drawInto(QImage& target, const Composition& composition, const Viewport& viewport);
    /// The same as the next frame of a picture that this object alone draws.
    bool drawInto(LivePicture& target, const Composition& composition, const Viewport& viewport);

    /// A frame of `size` points with the canvas centred in it, at `scale` pixels a point; the result has
    /// round(size x scale) pixels and `scale` as its devicePixelRatio. Null when that is nothing, not finite
    /// or too large.
    QImage drawFrame(const Composition& composition, QSizeF size, double scale);

    /// What drawFrame() draws; nothing where it gives null, memory aside.
    static std::optional<Viewport> frameViewport(QSizeF size, double scale);

    /// What draw() composes, the first layer undermost; nothing where it gives null. The layers use what this
    /// object keeps: they are good until it is asked for anything again.
    std::vector<raster::Layer> layers(const Composition& composition, const Viewport& viewport);

    /// Whether nothing shines through what was drawn last where the canvas covers a pixel wholly.
    bool isCanvasOpaque() const { return m_isCanvasOpaque; }

private:
    /// Where a background or a picture is stretched to.
    struct PaintPlace {
        double width = 0; ///< Points.
        double height = 0;
        raster::Placement placement;
        int outputWidth = 0;
        int outputHeight = 0;
        bool operator==(const PaintPlace&) const = default;
    };
    /// A picture in the kernels' format, its reductions, and its colours in the last frame.
    struct Prepared {
        qint64 key = 0;
        QImage pixels;
        std::shared_ptr<const raster::PicturePyramid> pyramid;
        raster::ShadeCache shades;
        KeptPaint<PaintPlace> paint{2};
    };
    /// What a background of colours is made of.
    struct ColorsKey {
        BackgroundBlur::Identity identity;
        double width = 0;
        double height = 0;
        raster::Homography toCanvas;
        bool operator==(const ColorsKey&) const = default;
    };
    enum Slot { screenshotSlot, backgroundSlot, slotCount };

    Prepared& prepared(Slot slot, const QImage& image);
    /// The picture stretched over `size` points; null when memory is short.
    std::shared_ptr<const raster::Paint> picturePaint(Slot slot, const QImage& image, QSizeF size,
                                                      const raster::Placement& placement,
                                                      const Viewport& viewport);
    /// Whether the background is a picture that is still to be prepared.
    bool isBackgroundNew(const Composition& composition) const;
    void appendBackground(std::vector<raster::Layer>& layers, const Composition& composition,
                          const Viewport& viewport);
    /// The background's paint, blurred by `deviation` pixels; null when memory is short. Not for a
    /// transparent background.
    std::shared_ptr<const raster::Paint> blurredBackground(const Composition& composition,
                                                           const Viewport& viewport, double deviation);
    /// A `color` or `gradient` background, not adjusted; null for none.
    std::shared_ptr<const raster::Paint> coloredPaint(const ScreenshotStyleConfig& config, QSizeF size,
                                                      const raster::Homography& toCanvas);
    void appendScene(std::vector<raster::Layer>& layers, const Composition& composition,
                     const Viewport& viewport);
    void appendTexts(std::vector<raster::Layer>& layers, const Composition& composition,
                     const Viewport& viewport);
    /// The screenshot itself, and where it goes.
    struct Screenshot {
        raster::Placement placement;
        std::shared_ptr<const raster::Paint> paint; ///< Null when nothing shows.
    };
    Screenshot screenshot(const Composition& composition, const Viewport& viewport);

    std::array<Prepared, slotCount> m_prepared;
    KeptPaint<ColorsKey> m_colors;
    KeptPaint<raster::Homography> m_checkerboard;
    bool m_isCanvasOpaque = false;
    SceneLayer m_scene;
    TextLayers m_texts;
    BackgroundBlur m_blur;
};

} // namespace framora
