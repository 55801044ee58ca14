#include "editor/render/raster/Dither.h"
#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/SceneKernels.h"

namespace framora::raster::plain {
namespace {

/// The scene in the form of SceneRow::tint.
MixPixel lift(const SceneRow& row, std::int16_t opacity, std::size_t i) {
    const MixPixel& offset = row.dither[i % Dither::period];
    const std::int16_t white = mulFixed(row.stripes[i], std::int16_t(-opacity));
    MixPixel lifted;
    for (int c = 0; c < 4; ++c) {
        const std::int16_t dithered = addSaturated(row.tint[i].channel[c], offset.channel[c]);
        const auto beside = std::int16_t(dithered + mulFixed(dithered, row.stripes[i]));
        lifted.channel[c] = addSaturated(white, beside);
    }
    return lifted;
}

std::int16_t clamped(int value, int most) {
    return std::int16_t(std::clamp(value, 0, most));
}

/// The colour that makes up the lift, of mixOne.
std::int16_t painted(std::int16_t lifted, std::int16_t alpha) {
    const std::int16_t color = clamped((lifted + alpha) >> 1, alpha);
    return std::int16_t(color - (color >> 8));
}

void overlayRow(const SceneRow& row, std::int16_t opacity, std::size_t count, MixPixel* under) {
    for (std::size_t i = 0; i < count; ++i) {
        const MixPixel lifted = lift(row, opacity, i);
        MixPixel& pixel = under[i];
        const std::int16_t alpha = pixel.channel[3];
        const std::int16_t rest = toFactor(std::int16_t(mixOne - alpha));
        int mixed[4];
        for (int c = 0; c < 4; ++c) {
            const std::int16_t beside = mulFixed(painted(lifted.channel[c], lifted.channel[3]), rest);
            const std::int16_t room = std::min(pixel.channel[c], std::int16_t(alpha - pixel.channel[c]));
            mixed[c] = pixel.channel[c] + beside + mulFixed(lifted.channel[c], room);
        }
        for (int c = 0; c < 4; ++c)
            pixel.channel[c] = clamped(mixed[c], mixed[3]);
    }
}

} // namespace

void paintScene(const SceneRow& row, std::int16_t opacity, std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const MixPixel lifted = lift(row, opacity, i);
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = painted(lifted.channel[c], lifted.channel[3]);
    }
}

void overlayScene(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width, MixPixel* under,
                  std::ptrdiff_t stride) {
    for (int y = 0; y < height; ++y, under += stride)
        overlayRow(rows[y], opacity, width, under);
}

void drawScene(const SceneRow* rows, std::int16_t opacity, const MixRows& under, MutablePixelView out) {
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x) {
            MixPixel pixel = under.first[y * under.stride + x];
            const SceneRow here{rows[y].tint + x, rows[y].stripes + x, rows[y].dither + x % Dither::period};
            overlayRow(here, opacity, 1, &pixel);
            plain::packPixels(&pixel, 1, out.row(y) + x);
        }
}

} // namespace framora::raster::plain
