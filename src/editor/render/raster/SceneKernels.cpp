#include "editor/render/raster/SceneKernels.h"

#include "editor/render/raster/Dither.h"
#include "editor/render/raster/MixKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/SceneKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// Behind the targets: it is compiled for each of them.
#include "editor/render/raster/MixVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors, or none of a known size: the plain kernels.
void paintSceneRow(const SceneRow& row, std::int16_t opacity, std::size_t count, MixPixel* out) {
    plain::paintScene(row, opacity, count, out);
}
void overlaySceneRows(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width,
                      MixPixel* under, std::ptrdiff_t stride) {
    plain::overlayScene(rows, height, opacity, width, under, stride);
}
void drawSceneRows(const SceneRow* rows, std::int16_t opacity, const MixRows& under, MutablePixelView out,
                   Storing) {
    plain::drawScene(rows, opacity, under, out);
}

#else

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

/// The scene in the form of SceneRow::tint, where the stripes cover so much; `white` is that of a stripe,
/// negated.
HWY_INLINE Vector lift(Vector tint, Vector dither, Vector stripes, Vector white) {
    const Vector dithered = hn::SaturatedAdd(tint, dither);
    const Vector beside = hn::Add(dithered, hn::MulFixedPoint15(dithered, stripes));
    return hn::SaturatedAdd(hn::MulFixedPoint15(stripes, white), beside);
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
constexpr std::size_t period = Dither::period;
static_assert(strip % (2 * vectorPixels) == 0 && period % vectorPixels == 0);

void paintSceneRow(const SceneRow& told, std::int16_t opacity, std::size_t count, MixPixel* out) {
    const SceneRow row = told; // by value: nothing that is written could be a part of it
    std::size_t i = 0;
    for (; i + vectorPixels <= count; i += vectorPixels)
        store(painted(lift(load(row.tint + i), load(row.dither + i % period), loadEach(row.stripes + i),
                           hn::Neg(hn::Set(lanes, opacity)))),
              out + i);
    const SceneRow rest{row.tint + i, row.stripes + i, row.dither + i % period};
    plain::paintScene(rest, opacity, count - i, out + i);
}

/// Where the mixed pixels of a strip go, row by row.
struct MixedRows {
    MixPixel* row;
    std::ptrdiff_t stride;

    HWY_INLINE void put(std::size_t i, Vector pixels) const { store(pixels, row + i); }
    HWY_INLINE void next() { row += stride; }
};

/// The same, packed. What is streamed is whole lines of the cache.
template <Storing storing> struct PackedRows {
    std::uint32_t* row;
    std::ptrdiff_t stride; ///< In bytes.
    static_assert(strip * sizeof(std::uint32_t) % 64 == 0);

    HWY_INLINE void put(std::size_t i, Vector pixels) const {
        const hn::Rebind<std::uint8_t, Lanes> bytes;
        auto* to = reinterpret_cast<std::uint8_t*>(row + i);
        // Shorter vectors are too short, packed, for a store past the caches.
        if constexpr (storing == Storing::streamed && HWY_MAX_BYTES >= 32)
            hn::Stream(packed(pixels), bytes, to);
        else
            hn::StoreU(packed(pixels), bytes, to);
    }
    HWY_INLINE void next() {
        row = reinterpret_cast<std::uint32_t*>(reinterpret_cast<std::byte*>(row) + stride);
    }
};

/// Mixes a row of a strip, where the scene's vector at pixel i is lifted(i).
template <bool isOpaque, typename Rows, typename Lifted>
HWY_INLINE void overlayRow(const MixPixel* under, const Lifted& lifted, const Rows& out) {
    for (std::size_t i = 0; i < strip; i += vectorPixels) {
        const Vector pixels = load(under + i);
        if (isOpaque || HWY_LIKELY(areOpaque(pixels)))
            out.put(i, overlaidOpaque(pixels, lifted(i)));
        else
            out.put(i, overlaid(pixels, lifted(i)));
    }
}

/// Mixes a strip from column x on, from top to bottom. Mostly there is either nothing of the stripes or
/// nothing else for many rows, and then less is to be done for the same bytes.
template <bool isOpaque, typename Rows>
HWY_INLINE void overlayStrip(const SceneRow* rows, int height, std::int16_t opacity, std::size_t x,
                             const MixPixel* under, std::ptrdiff_t stride, Rows out) {
    const Vector white = hn::Set(lanes, opacity);
    const Vector negated = hn::Neg(white);
    const SceneRow* const bottom = rows + height;
    while (rows < bottom) {
        const SceneRow* const end = rows + std::min<std::ptrdiff_t>(rows->alike[x], bottom - rows);
        if (end == rows) {
            const SceneRow row = *rows; // by value: nothing that is written could be a part of it
            const auto lifted = [&](std::size_t i) HWY_ATTR {
                return lift(load(row.tint + x + i), load(row.dither + i % period),
                            loadEach(row.stripes + x + i), negated);
            };
            overlayRow<isOpaque>(under, lifted, out);
            ++rows;
            under += stride;
            out.next();
        } else if (rows->stripes[x] != 0) {
            for (; rows < end; ++rows, under += stride, out.next())
                overlayRow<isOpaque>(
                    under, [&](std::size_t) HWY_ATTR { return white; }, out);
        } else {
            for (; rows < end; ++rows, under += stride, out.next()) {
                const MixPixel* const tint = rows->tint + x;
                const MixPixel* const dither = rows->dither;
                const auto lifted = [&](std::size_t i) HWY_ATTR {
                    return hn::SaturatedAdd(load(tint + i), load(dither + i % period));
                };
                overlayRow<isOpaque>(under, lifted, out);
            }
        }
    }
}

/// Mixes the first `count` pixels of a strip in one row from column x on, as Rows writes them.
template <typename Rows, typename Pixel>
HWY_INLINE void overlayRest(const SceneRow& row, std::int16_t opacity, std::size_t x, std::size_t count,
                            const MixPixel* under, Pixel* out) {
    constexpr std::uint8_t unknown[1] = {};
    MixPixel tint[strip] = {};
    MixPixel pixels[strip] = {};
    Pixel mixed[strip];
    std::memcpy(tint, row.tint + x, count * sizeof *tint);
    std::memcpy(pixels, under, count * sizeof *pixels);
    const SceneRow rest{tint, row.stripes + x, row.dither, unknown};
    overlayStrip<false>(&rest, 1, opacity, 0, pixels, 0, Rows{mixed, 0});
    std::memcpy(out, mixed, count * sizeof *mixed);
}

void overlaySceneRows(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width,
                      MixPixel* under, std::ptrdiff_t stride) {
    std::size_t x = 0;
    for (; x + strip <= width; x += strip)
        overlayStrip<false>(rows, height, opacity, x, under + x, stride, MixedRows{under + x, stride});
    for (int y = 0; x < width && y < height; ++y) {
        MixPixel* const rest = under + y * stride + std::ptrdiff_t(x);
        overlayRest<MixedRows>(rows[y], opacity, x, width - x, rest, rest);
    }
}

template <bool isOpaque, Storing storing>
void drawWhole(const SceneRow* rows, std::int16_t opacity, const MixRows& under, MutablePixelView out) {
    for (std::size_t x = 0; x + strip <= std::size_t(out.width); x += strip)
        overlayStrip<isOpaque>(rows, out.height, opacity, x, under.first + x, under.stride,
                               PackedRows<storing>{out.row(0) + x, out.stride});
}

void drawSceneRows(const SceneRow* rows, std::int16_t opacity, const MixRows& under, MutablePixelView out,
                   Storing storing) {
    if (storing == Storing::cached)
        drawWhole<false, Storing::cached>(rows, opacity, under, out);
    else if (under.isOpaque)
        drawWhole<true, Storing::streamed>(rows, opacity, under, out);
    else
        drawWhole<false, Storing::streamed>(rows, opacity, under, out);
    const auto width = std::size_t(out.width);
    const std::size_t x = width - width % strip;
    for (int y = 0; x < width && y < out.height; ++y)
        overlayRest<PackedRows<Storing::cached>>(rows[y], opacity, x, width - x,
                                                 under.first + y * under.stride + std::ptrdiff_t(x),
                                                 out.row(y) + x);
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

void drawScene(const SceneRow* rows, std::int16_t opacity, const MixRows& under, MutablePixelView out,
               Storing storing) {
    HWY_DYNAMIC_DISPATCH(drawSceneRows)(rows, opacity, under, out, storing);
}

} // namespace framora::raster
#endif
