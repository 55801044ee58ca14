#pragma once

#include "editor/render/Composition.h"
#include "editor/render/KeptPaint.h"
#include "editor/render/raster/Compositor.h"

#include <QList>
#include <QSize>
#include <optional>

namespace framora {

/// Makes the layer of the shadow scene.
class SceneLayer {
public:
    /// The style's shadow scene over the canvas of `size` points, which lies in the output as `placement`
    /// says; none where the style has none or hides it.
    std::optional<raster::Layer> layer(const ScreenshotStyleConfig& config, QSizeF size,
                                       const raster::Placement& placement, QSize output);

private:
    struct Key {
        QList<Color> colors;
        double opacity = 0; ///< 0...1.
        double width = 0;   ///< Points.
        double height = 0;
        raster::Homography toCanvas;
        QSize output;
        bool operator==(const Key&) const = default;
    };
    KeptPaint<Key> m_paint;
};

} // namespace framora
