#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/Homography.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace framora::raster {

/// Keeps one picture's colours as they fall on the output pixels, so that a picture that only moves by whole
/// pixels is not filtered again. It holds the unrounded colours: what is read from it is what would be
/// computed.
///
/// A map has to come twice in a row before anything is kept; a single export and a moving slider cost
/// nothing.
class ShadeCache {
public:
    /// What the colours depend on, beside the picture.
    struct Key {
        Homography map; ///< From the picture's pixels to the output's, from the layer's origin.
        int left = 0;   ///< The kept rectangle, in pixels from the layer's origin.
        int top = 0;
        int width = 0;
        int height = 0;
        bool operator==(const Key&) const = default;
    };

    /// Starts a frame. True when colours with this key may be kept and read until the next call. Not while a
    /// frame is being drawn.
    bool begin(const Key& key);

    /// The colours of `count` pixels from (x, y), from the layer's origin, which `compute(x, y, count, out)`
    /// makes where they are missing. Different rows may be asked for by different threads.
    template <typename Compute> void read(int x, int y, int count, Float4* out, const Compute& compute) {
        if (y < m_key.top || y >= m_key.top + m_key.height || x < m_key.left ||
            x + count > m_key.left + m_key.width) {
            compute(x, y, count, out);
            return;
        }
        const int row = y - m_key.top;
        const int first = x - m_key.left;
        Float4* colors = m_colors.get() + std::size_t(row) * std::size_t(m_key.width);
        for (int block = first / blockWidth; block * blockWidth < first + count; ++block) {
            std::uint8_t& isFilled =
                m_isFilled[std::size_t(row) * std::size_t(m_blocks) + std::size_t(block)];
            if (isFilled)
                continue;
            const int from = block * blockWidth;
            const int to = from + blockWidth < m_key.width ? from + blockWidth : m_key.width;
            compute(m_key.left + from, y, to - from, colors + from);
            isFilled = 1;
        }
        for (int i = 0; i < count; ++i)
            out[i] = colors[first + i];
    }

private:
    static constexpr int blockWidth = 64;

    Key m_key;
    int m_blocks = 0; ///< In a row.
    std::size_t m_capacity = 0;
    std::unique_ptr<Float4[]> m_colors;
    std::vector<std::uint8_t> m_isFilled;
    bool m_isReady = false;
};

} // namespace framora::raster
