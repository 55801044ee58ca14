#pragma once

#include "editor/render/raster/Homography.h"
#include "editor/render/raster/MixTile.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace framora::raster {

class SeparableSampler;

/// Keeps one picture's colours as they fall on the output pixels, so that a picture that only moves by whole
/// pixels is not filtered again. It holds the colours as they are mixed: what is read from it is what would
/// be computed.
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

    /// What computes the colours of this key, if it has been kept. Not while a frame is being drawn.
    const std::shared_ptr<const SeparableSampler>& sampler() const { return m_sampler; }
    void keepSampler(std::shared_ptr<const SeparableSampler> sampler) { m_sampler = std::move(sampler); }

    /// The colours of a block, from the layer's origin. What is missing `compute(block, out)` makes.
    /// Different rows may be asked for by different threads.
    template <typename Compute> void read(const TileRect& tile, MixPixel* out, const Compute& compute) {
        const int left = tile.x - m_key.left;
        const int top = tile.y - m_key.top;
        if (left < 0 || top < 0 || left + tile.width > m_key.width || top + tile.height > m_key.height) {
            compute(tile, out);
            return;
        }
        thread_local std::vector<MixPixel> made;
        for (int block = left / blockWidth; block * blockWidth < left + tile.width; ++block) {
            const int from = block * blockWidth;
            const int width = std::min(blockWidth, m_key.width - from);
            for (int y = 0; y < tile.height;) {
                int end = y;
                while (end < tile.height && !isFilled(top + end, block))
                    ++end;
                if (end > y) {
                    made.resize(std::max(made.size(), std::size_t(width) * std::size_t(end - y)));
                    compute(TileRect{m_key.left + from, tile.y + y, width, end - y}, made.data());
                    for (int row = y; row < end; ++row) {
                        std::copy_n(made.data() + std::ptrdiff_t(row - y) * width, width,
                                    colors(top + row) + from);
                        isFilled(top + row, block) = 1;
                    }
                }
                y = end + 1;
            }
        }
        for (int y = 0; y < tile.height; ++y, out += tile.width)
            std::copy_n(colors(top + y) + left, tile.width, out);
    }

private:
    static constexpr int blockWidth = 64;

    std::uint8_t& isFilled(int row, int block) {
        return m_isFilled[std::size_t(row) * std::size_t(m_blocks) + std::size_t(block)];
    }
    MixPixel* colors(int row) { return m_colors.get() + std::size_t(row) * std::size_t(m_key.width); }

    Key m_key;
    int m_blocks = 0; ///< In a row.
    std::size_t m_capacity = 0;
    std::unique_ptr<MixPixel[]> m_colors;
    std::vector<std::uint8_t> m_isFilled;
    bool m_isReady = false;
    std::shared_ptr<const SeparableSampler> m_sampler;
};

} // namespace framora::raster
