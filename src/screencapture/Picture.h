#pragma once

#include "screencapture/Geometry.h"
#include "screencapture/ServerImage.h"

#include <memory>

namespace framora {

/// A captured picture: a part of an image whose pixels are premultiplied BGRA.
struct Picture {
    std::unique_ptr<ServerImage> image;
    Rect part;

    explicit operator bool() const { return image && !part.empty(); }
};

} // namespace framora
