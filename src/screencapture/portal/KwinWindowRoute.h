#pragma once

#include "screencapture/CaptureRoute.h"
#include "screencapture/Geometry.h"
#include "screencapture/PixelImage.h"

#include <memory>

namespace framora {

/// A window that the user picks in KWin's own way: KWin says what to do, marks nothing and takes the window
/// whole, also where others cover it.
class KwinWindowRoute : public CaptureRoute {
public:
    /// Null where KWin is missing or does not permit it.
    static std::unique_ptr<KwinWindowRoute> create();

    CaptureResult run(CaptureMode mode) override;
};

/// The box of a window picture without the shadow around it: what the fully opaque pixels span, when that has
/// the size of the window's frame within a pixel; otherwise, as for a translucent window, the whole picture.
Rect withoutShadow(const PixelImage& picture, double frameWidth, double frameHeight);

} // namespace framora
