#include "editor/render/raster/SceneKernels.h"

#include "editor/render/raster/AlphaBytes.h"
#include "editor/render/raster/Dither.h"
#include "editor/render/raster/MixKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/SceneKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

// No vectors: the plain kernels.
void paintSceneRow(const SceneRow& row, std::int16_t opacity, std::size_t count, MixPixel* out) {
    plain::paintScene(row, opacity, count, out);
}
void overlaySceneRows(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width,
                      MixPixel* under, std::ptrdiff_t stride) {
    plain::overlayScene(rows, height, opacity, width, under, stride);
}
void drawSceneRows(const SceneRow* rows, std::int16_t opacity, const MixPixel* under, std::ptrdiff_t stride,
                   MutablePixelView out, Storing) {
    plain::drawScene(rows, opacity, under, stride, out);
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

/// The scene in the form of SceneRow::tint, where the stripes cover so much.
HWY_INLINE Vector lift(Vector tint, Vector dither, Vector stripes, Vector opacity) {
    const Vector white = hn::MulFixedPoint15(stripes, opacity);
    const Vector through = hn::Sub(hn::Set(lanes, coverageOne), stripes);
    return hn::SaturatedAdd(white, hn::MulFixedPoint15(hn::SaturatedAdd(tint, dither), through));
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

HWY_INLINE bool areOpaque(Vector pixels) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    const auto colorLanes = hn::BitCast(lanes, hn::Set(words, 0x0000ffffffffffffu));
    const auto opaque = hn::BitCast(lanes, hn::Set(words, std::uint64_t(mixOne) << 48 | 0x0000ffffffffffffu));
    return hn::AllTrue(lanes, hn::Eq(hn::Or(pixels, colorLanes), opaque));
}

constexpr std::size_t vectorPixels = HWY_MAX_BYTES / sizeof(MixPixel);
constexpr std::size_t strip = SceneRow::strip;
static_assert(strip % vectorPixels == 0 && strip == Dither::period);

void paintSceneRow(const SceneRow& told, std::int16_t opacity, std::size_t count, MixPixel* out) {
    const SceneRow row = told; // by value: nothing that is written could be a part of it
    std::size_t i = 0;
    for (; i + vectorPixels <= count; i += vectorPixels)
        store(painted(lift(load(row.tint + i), load(row.dither + i % strip), loadEach(row.stripes + i),
                           hn::Set(lanes, opacity))),
              out + i);
    const SceneRow rest{row.tint + i, row.stripes + i, row.dither + i % strip};
    plain::paintScene(rest, opacity, count - i, out + i);
}

HWY_INLINE Vector overlaidAny(Vector pixels, Vector lifted) {
    return HWY_LIKELY(areOpaque(pixels)) ? overlaidOpaque(pixels, lifted) : overlaid(pixels, lifted);
}

/// Mixes a strip from column x on, from top to bottom. Mostly there is either nothing of the stripes or
/// nothing else for many rows, and then less is to be done for the same bytes.
HWY_INLINE void overlayStrip(const SceneRow* rows, int height, std::int16_t opacity, std::size_t x,
                             MixPixel* under, std::ptrdiff_t stride) {
    const auto overlay = [](MixPixel* to, Vector lifted)
                             HWY_ATTR { store(overlaidAny(load(to), lifted), to); };
    const Vector share = hn::Set(lanes, opacity);
    const Vector whole = hn::Set(lanes, coverageOne);
    const Vector white = hn::MulFixedPoint15(whole, share);
    for (int y = 0; y < height;) {
        const SceneRow& first = rows[y];
        const int end = std::min(height, y + int(first.alike[x]));
        if (end == y) {
            for (std::size_t i = 0; i < strip; i += vectorPixels)
                overlay(under + i, lift(load(first.tint + x + i), load(first.dither + i),
                                        loadEach(first.stripes + x + i), share));
            ++y;
            under += stride;
        } else if (first.stripes[x] != 0) {
            for (; y < end; ++y, under += stride)
                for (std::size_t i = 0; i < strip; i += vectorPixels)
                    overlay(under + i, white);
        } else {
            for (; y < end; ++y, under += stride)
                for (std::size_t i = 0; i < strip; i += vectorPixels) {
                    const Vector tint =
                        hn::SaturatedAdd(load(rows[y].tint + x + i), load(rows[y].dither + i));
                    overlay(under + i, hn::MulFixedPoint15(tint, whole));
                }
        }
    }
}

void overlaySceneRows(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width,
                      MixPixel* under, std::ptrdiff_t stride) {
    std::size_t x = 0;
    for (; x + strip <= width; x += strip)
        overlayStrip(rows, height, opacity, x, under + x, stride);
    const std::size_t rest = width - x;
    constexpr std::uint8_t unknown[1] = {};
    for (int y = 0; rest > 0 && y < height; ++y) {
        MixPixel tint[strip] = {};
        MixPixel pixels[strip] = {};
        MixPixel* to = under + y * stride + x;
        std::memcpy(tint, rows[y].tint + x, rest * sizeof *tint);
        std::memcpy(pixels, to, rest * sizeof *pixels);
        const SceneRow row{tint, rows[y].stripes + x, rows[y].dither, unknown};
        overlayStrip(&row, 1, opacity, 0, pixels, 0);
        std::memcpy(to, pixels, rest * sizeof *pixels);
    }
}

/// Calls put(i, pixels) for each vector of a row of whole strips, mixed.
template <typename Put>
HWY_INLINE void forEachOverlaid(const SceneRow& told, std::int16_t opacity, const MixPixel* under,
                                std::size_t width, const Put& put) {
    const SceneRow row = told; // by value: nothing that is written could be a part of it
    const Vector share = hn::Set(lanes, opacity);
    const Vector whole = hn::Set(lanes, coverageOne);
    const Vector white = hn::MulFixedPoint15(whole, share);
    for (std::size_t x = 0; x < width; x += strip) {
        if (row.alike[x] == 0)
            for (std::size_t i = 0; i < strip; i += vectorPixels)
                put(x + i, overlaidAny(load(under + x + i), lift(load(row.tint + x + i), load(row.dither + i),
                                                                 loadEach(row.stripes + x + i), share)));
        else if (row.stripes[x] != 0)
            for (std::size_t i = 0; i < strip; i += vectorPixels)
                put(x + i, overlaidAny(load(under + x + i), white));
        else
            for (std::size_t i = 0; i < strip; i += vectorPixels) {
                const Vector tint = hn::SaturatedAdd(load(row.tint + x + i), load(row.dither + i));
                put(x + i, overlaidAny(load(under + x + i), hn::MulFixedPoint15(tint, whole)));
            }
    }
}

HWY_INLINE auto packed(Vector pixels) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    return hn::DemoteTo(bytes, hn::ShiftRight<7>(hn::SaturatedAdd(pixels, hn::Set(lanes, mixStep / 2))));
}

void drawSceneRows(const SceneRow* rows, std::int16_t opacity, const MixPixel* under, std::ptrdiff_t stride,
                   MutablePixelView out, Storing storing) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    const auto whole = std::size_t(out.width) / strip * strip;
    const auto rest = std::size_t(out.width) - whole;
    for (int y = 0; y < out.height; ++y, under += stride) {
        auto* const to = reinterpret_cast<std::uint8_t*>(out.row(y));
        const auto put = [&](std::size_t i, Vector pixels)
                             HWY_ATTR { hn::StoreU(packed(pixels), bytes, to + i * sizeof(std::uint32_t)); };
#if HWY_MAX_BYTES < 32
        (void)storing; // a packed vector would be too short for a store past the caches
        forEachOverlaid(rows[y], opacity, under, whole, put);
#else
        const auto stream = [&](std::size_t i, Vector pixels) HWY_ATTR {
            hn::Stream(packed(pixels), bytes, to + i * sizeof(std::uint32_t));
        };
        if (storing == Storing::streamed)
            forEachOverlaid(rows[y], opacity, under, whole, stream);
        else
            forEachOverlaid(rows[y], opacity, under, whole, put);
#endif
        if (rest == 0)
            continue;
        const SceneRow last{rows[y].tint + whole, rows[y].stripes + whole, rows[y].dither};
        const std::ptrdiff_t end = std::ptrdiff_t(whole);
        plain::drawScene(&last, opacity, under + end, 0,
                         {out.data + y * out.stride + end * 4, int(rest), 1, out.stride});
    }
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(paintSceneRow);
HWY_EXPORT(overlaySceneRows);
HWY_EXPORT(drawSceneRows);

void paintScene(const SceneRow& row, std::int16_t opacity, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(paintSceneRow)(row, opacity, count, out);
}

void overlayScene(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width, MixPixel* under,
                  std::ptrdiff_t stride) {
    HWY_DYNAMIC_DISPATCH(overlaySceneRows)
    (rows, height, opacity, width, under, stride);
}

void drawScene(const SceneRow* rows, std::int16_t opacity, const MixPixel* under, std::ptrdiff_t stride,
               MutablePixelView out, Storing storing) {
    HWY_DYNAMIC_DISPATCH(drawSceneRows)(rows, opacity, under, stride, out, storing);
}

} // namespace framora::raster
#endif
