#pragma once

#include <QImage>

namespace framora {

/// A layer of grain alone: the standard grey with the "noiseTexture" effect, mixed in soft light with what
/// lies under it. It takes no mouse events.
struct NoiseTextureView {
    double intensity = 0; ///< 0...1; not above 0 leaves the grey even.

    /// The grey with its grain, opaque. Null when a side is not positive or memory is short.
    QImage texture(QSize size) const;
    /// Mixes the layer over all of `picture`, whose format becomes ARGB32_Premultiplied. Where the picture
    /// holds nothing, the grey shows.
    void drawOver(QImage& picture) const;
};

} // namespace framora
