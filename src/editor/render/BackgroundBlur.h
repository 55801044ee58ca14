#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/KeptPaint.h"
#include "editor/render/raster/BlurGrid.h"
#include "editor/render/raster/FineBlurredPaint.h"

#include <QtGlobal>
#include <functional>
#include <memory>
#include <optional>

namespace framora {

/// The Gaussian blur of a background. It keeps the cells of the last one: while only what stands before it
/// moves nothing is blurred again, and while the radius alone changes the background is rarely read again.
class BackgroundBlur {
public:
    /// Where the canvas lies, in pixels.
    struct Canvas {
        double left = 0;
        double top = 0;
        double width = 0;
        double height = 0;
        int outputWidth = 0;
        int outputHeight = 0;
        bool operator==(const Canvas&) const = default;

        /// The pixels whose middle lies on it, at least one.
        raster::FineBlurredPaint::Canvas pixels() const;
    };
    /// What is blurred: equal identities have equal colours.
    struct Identity {
        ScreenshotStyleConfig style;
        qint64 picture = 0;
        bool operator==(const Identity&) const = default;

        /// Of a colour or a gradient.
        static Identity ofColors(const ScreenshotStyleConfig& config);
    };
    using Make = std::function<std::shared_ptr<const raster::Paint>()>;
    using Reduce = std::function<raster::BlurGrid(const raster::BlurAxis&, const raster::BlurAxis&)>;

    /// The deviation in pixels of a radius in points; 0 where nothing is blurred. Radii beyond all proportion
    /// are cut.
    static double deviation(double radius, double pixelsPerPoint);
    /// Whether wide() is for it, or else fine().
    static bool isWide(const Canvas& canvas, double deviation);
    /// How many pixels beyond the output fine() wants to know.
    static int fineMargin(double deviation);

    /// The background that `reduce` makes, blurred; null when memory is short. The paint is the same object
    /// as long as all of it is the same.
    std::shared_ptr<const raster::Paint> wide(const Identity& identity, const Reduce& reduce,
                                              const Canvas& canvas, double deviation, bool isOpaque);

    /// The paint that `make` makes, whose pixel (margin, margin) is the output's first, blurred. Deviations
    /// that would take too long are cut: those of canvases far beyond any output. From the second time on the
    /// paint is the same object as long as all of it is the same.
    std::shared_ptr<const raster::Paint> fine(const Identity& identity, const Make& make, int margin,
                                              const Canvas& canvas, double deviation);
    /// Lets go of what fine() keeps: a paint that it was given may not outlive what it reads.
    void clearFine();

private:
    struct Kept {
        Identity identity;
        raster::BlurAxis columns;
        raster::BlurAxis rows;
        raster::BlurGrid reduced; ///< Empty when it is too large to keep.
        double deviation = 0;
        std::shared_ptr<const raster::BlurGrid> blurred;
        Canvas canvas;
        bool isOpaque = false;
        std::shared_ptr<const raster::Paint> paint; ///< Of `blurred` on `canvas`.
    };
    std::optional<Kept> m_kept;
    struct FineKey {
        Identity identity;
        Canvas canvas;
        double deviation = 0;
        bool operator==(const FineKey&) const = default;
    };
    KeptPaint<FineKey> m_fine{2};
    Identity m_fineIdentity; ///< Of the shades.
    raster::ShadeCache m_fineShades;
};

} // namespace framora
