#pragma once

#include "editor/render/raster/PixelBuffer.h"

#include <array>
#include <mutex>

namespace framora::raster {

/// A picture and its reductions by steps of 1/sqrt(2), across and down by as many or by different ones. Each
/// is made, from the picture or a larger reduction, when it is first asked for. May be used from many
/// threads.
class PicturePyramid {
public:
    static constexpr int levelCount = 24;

    /// `picture` must live as long as this.
    explicit PicturePyramid(PixelView picture);

    PixelView picture() const { return m_picture; }
    /// Whether every pixel has an alpha of 255.
    bool isOpaque() const { return m_isOpaque; }
    /// The reduction by `level` steps. It is never smaller than one pixel a side; where memory is short it is
    /// the picture itself.
    PixelView level(int level) const { return this->level(level, level); }
    /// The reduction by so many steps across and down.
    PixelView level(int across, int down) const;

private:
    PixelView m_picture;
    bool m_isOpaque;
    struct Level {
        std::once_flag made;
        PixelBuffer pixels;
    };
    mutable std::array<std::array<Level, levelCount>, levelCount> m_levels;
};

} // namespace framora::raster
