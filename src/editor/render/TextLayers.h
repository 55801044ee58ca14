#pragma once

#include "editor/model/TextOverlay.h"
#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/MixBuffer.h"

#include <QList>
#include <QPointF>
#include <QSize>
#include <memory>
#include <vector>

namespace framora {

/// Draws the text overlays. It keeps those of the last picture, so that what did not change is not drawn
/// again. Text needs a QGuiApplication; without one there is none.
class TextLayers {
public:
    /// A point is `pixelsPerPoint` pixels, and the canvas starts at `origin`, in the output's pixels.
    struct Place {
        QPointF origin;
        double pixelsPerPoint = 1;
        QSize output;
        bool operator==(const Place&) const = default;
    };

    /// The layers of the overlays that show, the first one undermost.
    std::vector<raster::Layer> layers(const QList<TextOverlay>& overlays, const Place& place);

private:
    struct Drawn {
        TextOverlay overlay;
        Place place;
        std::shared_ptr<const raster::MixBufferPaint> paint; ///< Null when nothing shows.
    };
    std::vector<Drawn> m_drawn;
};

} // namespace framora
