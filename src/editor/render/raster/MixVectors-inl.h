// Vectors of MixPixels: what the kernels that mix have in common. Compiled once for every vector unit.

#include "editor/render/raster/AlphaBytes.h"
#include "editor/render/raster/MixTile.h"

#include <hwy/highway.h>

#if defined(FRAMORA_MIX_VECTORS) == defined(HWY_TARGET_TOGGLE)
#ifdef FRAMORA_MIX_VECTORS
#undef FRAMORA_MIX_VECTORS
#else
#define FRAMORA_MIX_VECTORS
#endif

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET != HWY_SCALAR && !HWY_HAVE_SCALABLE

namespace hn = hwy::HWY_NAMESPACE;

// A MixPixel is four lanes; a vector holds a whole number of them.
using Lanes = hn::CappedTag<std::int16_t, 32>;
using Vector = hn::Vec<Lanes>;
constexpr Lanes lanes;
constexpr std::size_t pixelLanes = 4;

HWY_INLINE Vector load(const MixPixel* from) {
    return hn::LoadU(lanes, reinterpret_cast<const std::int16_t*>(from));
}

HWY_INLINE void store(Vector pixels, MixPixel* to) {
    hn::StoreU(pixels, lanes, reinterpret_cast<std::int16_t*>(to));
}

/// Each pixel's alpha in all its channels.
HWY_INLINE Vector alphas(Vector pixels) {
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    return hn::BitCast(lanes,
                       hn::TableLookupBytes(hn::BitCast(bytes, pixels), hn::LoadDup128(bytes, alphaBytes)));
}

/// The pixels of a picture, rounded to the nearest step; what lies beyond 0...mixOne is clamped.
HWY_INLINE auto packed(Vector pixels) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    // Adds half a step and divides by one.
    static_assert(mixStep == 128);
    return hn::DemoteTo(bytes, hn::MulFixedPoint15(pixels, hn::Set(lanes, 32768 / mixStep)));
}

#endif
} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
