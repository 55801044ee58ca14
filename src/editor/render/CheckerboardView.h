#pragma once

#include "editor/render/CheckerboardShaderView.h"

namespace framora {

/// What stands for transparency in the preview.
struct CheckerboardView {
    double squareSize = 12; ///< Points.

    std::shared_ptr<const raster::Paint> paint(const raster::Homography& toLocal) const {
        return CheckerboardShaderView{squareSize}.paint(toLocal);
    }
};

} // namespace framora
