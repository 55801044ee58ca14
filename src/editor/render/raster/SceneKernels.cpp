#include "editor/render/raster/SceneKernels.h"

#include "editor/render/raster/AlphaBytes.h"
#include "editor/render/raster/Dither.h"
#include "editor/render/raster/MixKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/SceneKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

// No vectors: the plain kernels.
void paintSceneRow(const SceneRow& row, std::size_t count, MixPixel* out) {
    plain::paintScene(row, count, out);
}
void overlaySceneRow(const SceneRow& row, std::size_t count, MixPixel* under) {
    plain::overlayScene(row, count, under);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// A MixPixel is four lanes; a vector holds a whole number of them.
using Lanes = hn::CappedTag<std::int16_t, 32>;
using Vector = hn::Vec<Lanes>;
constexpr Lanes lanes;

HWY_INLINE Vector load(const MixPixel* from) {
    return hn::LoadU(lanes, reinterpret_cast<const std::int16_t*>(from));
}

HWY_INLINE void store(Vector pixels, MixPixel* to) {
    hn::StoreU(pixels, lanes, reinterpret_cast<std::int16_t*>(to));
}

HWY_INLINE Vector alphas(Vector pixels) {
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    return hn::BitCast(lanes,
                       hn::TableLookupBytes(hn::BitCast(bytes, pixels), hn::LoadDup128(bytes, alphaBytes)));
}

/// One number a pixel, for each of its channels.
HWY_INLINE Vector loadEach(const std::int16_t* from) {
    // Of the eight numbers that every block of two pixels has, its own two.
    alignas(64) static constexpr std::uint8_t twoOf[64] = {
        0,  1,  0,  1,  0,  1,  0,  1,  2,  3,  2,  3,  2,  3,  2,  3,  4,  5,  4,  5,  4,  5,
        4,  5,  6,  7,  6,  7,  6,  7,  6,  7,  8,  9,  8,  9,  8,  9,  8,  9,  10, 11, 10, 11,
        10, 11, 10, 11, 12, 13, 12, 13, 12, 13, 12, 13, 14, 15, 14, 15, 14, 15, 14, 15};
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    const auto all = hn::BitCast(bytes, hn::LoadDup128(lanes, from));
    return hn::BitCast(lanes, hn::TableLookupBytes(all, hn::Load(bytes, twoOf)));
}

/// The scene in the form of SceneRow::tint, from pixel i on.
HWY_INLINE Vector lift(const SceneRow& row, std::size_t i, Vector dither) {
    const Vector stripes = loadEach(row.stripes + i);
    const Vector white = hn::MulFixedPoint15(stripes, hn::Set(lanes, row.opacity));
    const Vector through = hn::Sub(hn::Set(lanes, coverageOne), stripes);
    const Vector dithered = hn::SaturatedAdd(load(row.tint + i), dither);
    return hn::SaturatedAdd(white, hn::MulFixedPoint15(dithered, through));
}

/// The colours that make up the lift.
HWY_INLINE Vector painted(Vector lifted) {
    const Vector alpha = alphas(lifted);
    // Half of their sum, which would be too large.
    const Vector mean = hn::Add(hn::And(lifted, alpha), hn::ShiftRight<1>(hn::Xor(lifted, alpha)));
    const Vector color = hn::Min(hn::Max(mean, hn::Zero(lanes)), alpha);
    return hn::Sub(color, hn::ShiftRight<8>(color)); // of mixOne
}

HWY_INLINE Vector overlaid(Vector under, Vector lifted) {
    const Vector alpha = alphas(under);
    const Vector rest = hn::Sub(hn::Set(lanes, mixOne), alpha);
    const Vector beside = hn::MulFixedPoint15(painted(lifted), hn::Add(rest, hn::ShiftRight<8>(rest)));
    const Vector room = hn::Min(under, hn::Sub(alpha, under));
    const Vector mixed = hn::Add(hn::Add(under, beside), hn::MulFixedPoint15(lifted, room));
    return hn::Min(hn::Max(mixed, hn::Zero(lanes)), alphas(mixed));
}

/// The same on pixels that are opaque.
HWY_INLINE Vector overlaidOpaque(Vector under, Vector lifted) {
    const Vector room = hn::Min(under, hn::Sub(hn::Set(lanes, mixOne), under));
    return hn::Add(under, hn::MulFixedPoint15(lifted, room));
}

/// Whether all pixels are opaque of which these are the common bits.
HWY_INLINE bool areOpaque(Vector common) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    const auto colorLanes = hn::BitCast(lanes, hn::Set(words, 0x0000ffffffffffffu));
    const auto opaque = hn::BitCast(lanes, hn::Set(words, std::uint64_t(mixOne) << 48 | 0x0000ffffffffffffu));
    return hn::AllTrue(lanes, hn::Eq(hn::Or(common, colorLanes), opaque));
}

constexpr std::size_t vectorPixels = HWY_MAX_BYTES / sizeof(MixPixel);
constexpr int vectorsInPeriod = int(Dither::period / vectorPixels);
static_assert(vectorsInPeriod * vectorPixels == Dither::period);

// The row by value: nothing that is written could be a part of it.
void paintSceneRow(const SceneRow& told, std::size_t count, MixPixel* out) {
    const SceneRow row = told;
    std::size_t i = 0;
    for (; i + vectorPixels <= count; i += vectorPixels)
        store(painted(lift(row, i, load(row.dither + i % Dither::period))), out + i);
    const SceneRow rest{row.tint + i, row.stripes + i, row.opacity, row.dither + i % Dither::period};
    plain::paintScene(rest, count - i, out + i);
}

void overlaySceneRow(const SceneRow& told, std::size_t count, MixPixel* under) {
    const SceneRow row = told;
    constexpr int vectors = 2 * vectorsInPeriod;
    constexpr std::size_t block = vectors * vectorPixels;
    std::size_t i = 0;
    for (; i + block <= count; i += block) {
        Vector pixels[vectors];
        Vector common = pixels[0] = load(under + i);
        for (int v = 1; v < vectors; ++v) {
            pixels[v] = load(under + i + std::size_t(v) * vectorPixels);
            common = hn::And(common, pixels[v]);
        }
        const bool isOpaque = areOpaque(common);
        for (int v = 0; v < vectors; ++v) {
            const std::size_t at = i + std::size_t(v) * vectorPixels;
            const Vector dither = load(row.dither + std::size_t(v % vectorsInPeriod) * vectorPixels);
            const Vector lifted = lift(row, at, dither);
            store(isOpaque ? overlaidOpaque(pixels[v], lifted) : overlaid(pixels[v], lifted), under + at);
        }
    }
    for (; i + vectorPixels <= count; i += vectorPixels)
        store(overlaid(load(under + i), lift(row, i, load(row.dither + i % Dither::period))), under + i);
    const SceneRow rest{row.tint + i, row.stripes + i, row.opacity, row.dither + i % Dither::period};
    plain::overlayScene(rest, count - i, under + i);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(paintSceneRow);
HWY_EXPORT(overlaySceneRow);

void paintScene(const SceneRow& row, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(paintSceneRow)(row, count, out);
}

void overlayScene(const SceneRow& row, std::size_t count, MixPixel* under) {
    HWY_DYNAMIC_DISPATCH(overlaySceneRow)(row, count, under);
}

} // namespace framora::raster
#endif
