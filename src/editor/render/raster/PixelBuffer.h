#pragma once

#include "editor/render/raster/PixelView.h"

#include <cstdlib>
#include <memory>

namespace framora::raster {

/// An owned block of pixels. Rows start on 64-byte boundaries, so that the stride is usually more than the
/// width. Move-only: a copy of a picture is never made by accident. The pixels of a new buffer are
/// unspecified.
class PixelBuffer {
public:
    PixelBuffer() = default;

    /// A buffer of `width` x `height` pixels; an empty one when either is not positive or memory is short.
    static PixelBuffer create(int width, int height);

    int width() const { return m_view.width; }
    int height() const { return m_view.height; }
    bool isEmpty() const { return m_view.isEmpty(); }
    PixelView view() const { return m_view; }
    MutablePixelView mutableView() { return m_view; }

private:
    struct Free {
        void operator()(std::byte* data) const { std::free(data); }
    };
    std::unique_ptr<std::byte[], Free> m_data;
    MutablePixelView m_view;
};

} // namespace framora::raster
