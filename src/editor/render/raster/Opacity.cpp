#include "editor/render/raster/Opacity.h"

#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <atomic>

namespace framora::raster {

bool areRowsOpaque(PixelView rows) {
    constexpr std::uint32_t opaque = 0xff000000u;
    for (int y = 0; y < rows.height; ++y) {
        const std::uint32_t* row = rows.row(y);
        std::uint32_t all = opaque;
        for (int x = 0; x < rows.width; ++x)
            all &= row[x];
        if (all != opaque)
            return false;
    }
    return true;
}

bool isOpaque(PixelView picture) {
    std::atomic<bool> opaque = true;
    constexpr int rowsAtOnce = 32;
    parallelFor((picture.height + rowsAtOnce - 1) / rowsAtOnce, [&](int band) {
        if (!opaque.load(std::memory_order_relaxed))
            return;
        PixelView rows = picture;
        rows.data += band * rowsAtOnce * picture.stride;
        rows.height = std::min(rowsAtOnce, picture.height - band * rowsAtOnce);
        if (!areRowsOpaque(rows))
            opaque.store(false, std::memory_order_relaxed);
    });
    return opaque;
}

} // namespace framora::raster
