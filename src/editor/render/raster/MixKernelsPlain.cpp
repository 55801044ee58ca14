#include "editor/render/raster/Dither.h"
#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/MixKernels.h"

namespace framora::raster::plain {
namespace {

constexpr std::int16_t one = mixOne;

std::int16_t covered(std::int16_t value, std::int16_t coverage) {
    return mulFixed(value, coverage);
}

/// One channel of the overlay mode, from premultiplied channels and both alphas. Written as one formula for
/// dark and light, and for alpha too: what the upper one adds to the lower one is as much as it is lighter
/// than a mid tone, times what the lower one is away from black or white.
std::int16_t overlaid(std::int16_t under, std::int16_t underAlpha, std::int16_t over,
                      std::int16_t overAlpha) {
    const std::int16_t beside = mulFixed(over, toFactor(std::int16_t(one - underAlpha)));
    const auto lift = std::int16_t(2 * over - overAlpha);
    const std::int16_t room = std::min(under, std::int16_t(underAlpha - under));
    return std::int16_t(under + beside + mulFixed(lift, toFactor(room)));
}

} // namespace

void blendOver(MixPixel* under, const MixPixel* over, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::int16_t through = toFactor(std::int16_t(one - over[i].channel[3]));
        for (int c = 0; c < 4; ++c)
            under[i].channel[c] = std::int16_t(over[i].channel[c] + mulFixed(under[i].channel[c], through));
    }
}

void blendOver(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        MixPixel part;
        for (int c = 0; c < 4; ++c)
            part.channel[c] = covered(over[i].channel[c], coverage[i].channel[c]);
        plain::blendOver(under + i, &part, std::size_t(1));
    }
}

void blendOverlay(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::int16_t overAlpha = covered(over[i].channel[3], coverage[i].channel[3]);
        const std::int16_t underAlpha = under[i].channel[3];
        for (int c = 0; c < 4; ++c)
            under[i].channel[c] = overlaid(under[i].channel[c], underAlpha,
                                           covered(over[i].channel[c], coverage[i].channel[c]), overAlpha);
    }
}

void blendOver(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count) {
    const MixPixel all{{coverage, coverage, coverage, coverage}};
    for (std::size_t i = 0; i < count; ++i)
        plain::blendOver(under + i, over + i, &all, 1);
}

void blendOverlay(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count) {
    const MixPixel all{{coverage, coverage, coverage, coverage}};
    for (std::size_t i = 0; i < count; ++i)
        plain::blendOverlay(under + i, over + i, &all, 1);
}

void blendInstead(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c) {
            const std::int16_t part = coverage[i].channel[c];
            under[i].channel[c] =
                std::int16_t(covered(over[i].channel[c], part) +
                             mulFixed(under[i].channel[c], std::int16_t(coverageOne - part)));
        }
}

void ditherAlphas(const MixPixel* blacks, const MixPixel* offsets, std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::int16_t alpha = blacks[i].channel[3];
        const std::int16_t moved = addSaturated(alpha, offsets[i % Dither::period].channel[3]);
        out[i] = {{0, 0, 0, alpha > 0 ? std::clamp(moved, std::int16_t(0), one) : std::int16_t(0)}};
    }
}

void packPixels(const MixPixel* pixels, std::size_t count, std::uint32_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t pixel = 0;
        for (int c = 0; c < 4; ++c) {
            const int rounded = addSaturated(pixels[i].channel[c], mixStep / 2) / mixStep;
            pixel |= std::uint32_t(std::clamp(rounded, 0, 255)) << (8 * c);
        }
        out[i] = pixel;
    }
}

} // namespace framora::raster::plain
