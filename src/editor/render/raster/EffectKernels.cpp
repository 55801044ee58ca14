#include "editor/render/raster/EffectKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/EffectKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// Behind the targets: it is compiled for each of them.
#include "editor/render/raster/MixVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors, or none of a known size: the plain kernel.
void adjustAll(MixPixel* pixels, std::size_t count, float saturation, float brightness) {
    plain::adjustPixels(pixels, count, saturation, brightness);
}
void grainAll(MixPixel* pixels, std::size_t count, int x, int y, float intensity) {
    plain::grainPixels(pixels, count, x, y, intensity);
}

#else

/// The channels of each pixel in another order, given as the bytes of two pixels.
HWY_INLINE Vector shuffled(Vector pixels, const std::uint8_t* order) {
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    return hn::BitCast(lanes, hn::TableLookupBytes(hn::BitCast(bytes, pixels), hn::LoadDup128(bytes, order)));
}

void adjustAll(MixPixel* pixels, std::size_t count, float saturation, float brightness) {
    alignas(16) static constexpr std::uint8_t byOne[16] = {2,  3,  4,  5,  6,  7,  0, 1,
                                                           10, 11, 12, 13, 14, 15, 8, 9};
    alignas(16) static constexpr std::uint8_t byTwo[16] = {4,  5,  6,  7,  0, 1, 2,  3,
                                                           12, 13, 14, 15, 8, 9, 10, 11};
    alignas(16) static constexpr std::int16_t luma[8] = {lumaWeights[0], lumaWeights[1], lumaWeights[2],
                                                         lumaWeights[3], lumaWeights[0], lumaWeights[1],
                                                         lumaWeights[2], lumaWeights[3]};
    const FixedAdjustment adjustment = fixedAdjustment(saturation, brightness);
    const Vector weights = hn::LoadDup128(lanes, luma);
    const Vector deepen = hn::Set(lanes, adjustment.saturation);
    const Vector lighten = hn::Set(lanes, adjustment.brightness);
    const Vector most = hn::Set(lanes, mixOne / 4);
    const hn::Repartition<std::uint64_t, Lanes> words;
    const Vector alphaLane = hn::BitCast(lanes, hn::Set(words, 0xffff000000000000u));
    const std::size_t step = hn::Lanes(lanes) / 4;
    std::size_t i = 0;
    for (; i + step <= count; i += step) {
        const Vector pixel = load(pixels + i);
        const Vector alpha = alphas(pixel);
        const Vector parts = hn::MulFixedPoint15(pixel, weights);
        const Vector pairs = hn::Add(parts, shuffled(parts, byOne));
        const Vector grey = hn::Add(pairs, shuffled(pairs, byTwo));
        const Vector quarter = hn::MulFixedPoint15(hn::Sub(pixel, grey), deepen);
        // In quarters nothing that could still come back into the range is cut on the way.
        const Vector base =
            hn::Add(hn::ShiftRight<2>(grey), hn::ShiftRight<2>(hn::MulFixedPoint15(alpha, lighten)));
        const Vector sum = hn::Min(hn::Max(hn::SaturatedAdd(quarter, base), hn::Zero(lanes)), most);
        const Vector valid = hn::Min(hn::ShiftLeft<2>(sum), alpha);
        store(hn::Or(hn::AndNot(alphaLane, valid), hn::And(alphaLane, pixel)), pixels + i);
    }
    plain::adjustPixels(pixels + i, count - i, saturation, brightness);
}

void grainAll(MixPixel* pixels, std::size_t count, int x, int y, float intensity) {
    const hn::Repartition<std::uint64_t, Lanes> places; // a pixel each
    const hn::Rebind<std::uint32_t, decltype(places)> words;
    const Vector half = hn::Set(lanes, fixedIntensity(intensity));
    const Vector alphaLane = hn::BitCast(lanes, hn::Set(places, 0xffff000000000000u));
    const auto mixedRow = hn::Set(words, std::uint32_t(y) * 0x85ebca77u + 0x165667b1u);
    const std::size_t step = hn::Lanes(lanes) / 4;
    std::size_t i = 0;
    for (; i + step <= count; i += step) {
        const Vector pixel = load(pixels + i);
        const Vector alpha = alphas(pixel);
        auto bits = hn::Xor(
            hn::Mul(hn::Iota(words, std::uint32_t(x) + std::uint32_t(i)), hn::Set(words, 0x9e3779b1u)),
            mixedRow);
        bits = hn::Mul(hn::Xor(bits, hn::ShiftRight<15>(bits)), hn::Set(words, 0x2c1b3c6du));
        bits = hn::Mul(hn::Xor(bits, hn::ShiftRight<12>(bits)), hn::Set(words, 0x297a2d39u));
        bits = hn::ShiftRight<16>(hn::Xor(bits, hn::ShiftRight<15>(bits)));
        // The same sixteen bits for every channel, about 0.
        auto wide = hn::PromoteTo(places, bits);
        wide = hn::Or(wide, hn::ShiftLeft<16>(wide));
        wide = hn::Or(wide, hn::ShiftLeft<32>(wide));
        const Vector centred = hn::Xor(hn::BitCast(lanes, wide), hn::Set(lanes, std::int16_t(-32768)));
        const Vector grain = hn::MulFixedPoint15(hn::MulFixedPoint15(centred, half), alpha);
        const Vector sum = hn::Min(hn::Max(hn::SaturatedAdd(pixel, grain), hn::Zero(lanes)), alpha);
        store(hn::Or(hn::AndNot(alphaLane, sum), hn::And(alphaLane, pixel)), pixels + i);
    }
    plain::grainPixels(pixels + i, count - i, x + int(i), y, intensity);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(adjustAll);
HWY_EXPORT(grainAll);

void adjustPixels(MixPixel* pixels, std::size_t count, float saturation, float brightness) {
    HWY_DYNAMIC_DISPATCH(adjustAll)(pixels, count, saturation, brightness);
}

void grainPixels(MixPixel* pixels, std::size_t count, int x, int y, float intensity) {
    HWY_DYNAMIC_DISPATCH(grainAll)(pixels, count, x, y, intensity);
}

} // namespace framora::raster
#endif
