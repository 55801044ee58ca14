#include "editor/render/raster/EffectKernels.h"

#include "editor/render/raster/AlphaBytes.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/EffectKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

// No vectors: the plain kernel.
void adjustAll(MixPixel* pixels, std::size_t count, float saturation, float brightness) {
    plain::adjustPixels(pixels, count, saturation, brightness);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<std::int16_t, 32>;
using Vector = hn::Vec<Lanes>;
constexpr Lanes lanes;

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
        auto* data = reinterpret_cast<std::int16_t*>(pixels + i);
        const Vector pixel = hn::LoadU(lanes, data);
        const Vector alpha = shuffled(pixel, alphaBytes);
        const Vector parts = hn::MulFixedPoint15(pixel, weights);
        const Vector pairs = hn::Add(parts, shuffled(parts, byOne));
        const Vector grey = hn::Add(pairs, shuffled(pairs, byTwo));
        const Vector quarter = hn::MulFixedPoint15(hn::Sub(pixel, grey), deepen);
        // In quarters nothing that could still come back into the range is cut on the way.
        const Vector base =
            hn::Add(hn::ShiftRight<2>(grey), hn::ShiftRight<2>(hn::MulFixedPoint15(alpha, lighten)));
        const Vector sum = hn::Min(hn::Max(hn::SaturatedAdd(quarter, base), hn::Zero(lanes)), most);
        const Vector valid = hn::Min(hn::ShiftLeft<2>(sum), alpha);
        hn::StoreU(hn::Or(hn::AndNot(alphaLane, valid), hn::And(alphaLane, pixel)), lanes, data);
    }
    plain::adjustPixels(pixels + i, count - i, saturation, brightness);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(adjustAll);

void adjustPixels(MixPixel* pixels, std::size_t count, float saturation, float brightness) {
    HWY_DYNAMIC_DISPATCH(adjustAll)(pixels, count, saturation, brightness);
}

} // namespace framora::raster
#endif
