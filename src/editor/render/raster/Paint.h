#pragma once

#include "editor/render/raster/Float4.h"

namespace framora::raster {

/// What a layer is filled with: a colour for every output pixel, taken at the pixel's centre.
class Paint {
public:
    virtual ~Paint() = default;
    /// The premultiplied colours, 0...1, of the `count` pixels from (x, y) to the right. Called from many
    /// threads.
    virtual void shade(int x, int y, int count, Float4* out) const = 0;
    /// Whether every colour has an alpha of exactly 1.
    virtual bool isOpaque() const = 0;
};

} // namespace framora::raster
