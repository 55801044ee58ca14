#include "editor/render/raster/MixKernels.h"

#include "editor/render/raster/Dither.h"

#include <algorithm>
#include <cstring>
#include <hwy/cache_control.h>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/MixKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// Behind the targets: it is compiled for each of them.
#include "editor/render/raster/MixVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors, or none of a known size: the plain kernels.
void blendOverAll(MixPixel* under, const MixPixel* above, std::size_t count) {
    plain::blendOver(under, above, count);
}
void blendOverCovered(MixPixel* under, const MixPixel* above, const MixPixel* coverage, std::size_t count) {
    plain::blendOver(under, above, coverage, count);
}
void blendOverlayCovered(MixPixel* under, const MixPixel* above, const MixPixel* coverage,
                         std::size_t count) {
    plain::blendOverlay(under, above, coverage, count);
}
void blendOverEvenly(MixPixel* under, const MixPixel* above, std::int16_t coverage, std::size_t count) {
    plain::blendOver(under, above, coverage, count);
}
void blendOverlayEvenly(MixPixel* under, const MixPixel* above, std::int16_t coverage, std::size_t count) {
    plain::blendOverlay(under, above, coverage, count);
}
void blendInsteadCovered(MixPixel* under, const MixPixel* above, const MixPixel* coverage,
                         std::size_t count) {
    plain::blendInstead(under, above, coverage, count);
}
void ditherAllAlphas(const MixPixel* blacks, const MixPixel* offsets, std::size_t count, MixPixel* out) {
    plain::ditherAlphas(blacks, offsets, count, out);
}
void packAll(const MixPixel* pixels, std::size_t count, std::uint32_t* out) {
    plain::packPixels(pixels, count, out);
}
void streamAll(const MixPixel* pixels, std::size_t count, std::uint32_t* out) {
    plain::packPixels(pixels, count, out);
}

#else

HWY_INLINE Vector factor(Vector mix) {
    return hn::Add(mix, hn::ShiftRight<8>(mix));
}

HWY_INLINE Vector over(Vector under, Vector above) {
    const Vector through = factor(hn::Sub(hn::Set(lanes, mixOne), alphas(above)));
    return hn::Add(above, hn::MulFixedPoint15(under, through));
}

HWY_INLINE Vector overlay(Vector under, Vector above) {
    const Vector alpha = alphas(under);
    const Vector beside = hn::MulFixedPoint15(above, factor(hn::Sub(hn::Set(lanes, mixOne), alpha)));
    // Twice a channel less alpha: in this order nothing overflows.
    const Vector lift = hn::Sub(above, hn::Sub(alphas(above), above));
    const Vector room = hn::Min(under, hn::Sub(alpha, under));
    return hn::Add(hn::Add(under, beside), hn::MulFixedPoint15(lift, factor(room)));
}

/// Calls body(offset, load, store) for `count` pixels, vector by vector; what is left at the end goes through
/// a block of its own, so that nothing behind is touched.
template <typename Body> HWY_INLINE void forEachVector(std::size_t count, const Body& body) {
    const std::size_t step = hn::Lanes(lanes) / pixelLanes;
    std::size_t i = 0;
    for (; i + step <= count; i += step)
        body(i, step);
    if (i < count)
        body(i, count - i);
}

HWY_INLINE Vector load(const MixPixel* from, std::size_t count) {
    const auto* data = reinterpret_cast<const std::int16_t*>(from);
    if (count * pixelLanes == hn::Lanes(lanes))
        return hn::LoadU(lanes, data);
    alignas(64) std::int16_t part[32] = {};
    std::memcpy(part, data, count * sizeof(MixPixel));
    return hn::Load(lanes, part);
}

HWY_INLINE void store(Vector pixels, MixPixel* to, std::size_t count) {
    auto* data = reinterpret_cast<std::int16_t*>(to);
    if (count * pixelLanes == hn::Lanes(lanes)) {
        hn::StoreU(pixels, lanes, data);
        return;
    }
    alignas(64) std::int16_t part[32];
    hn::Store(pixels, lanes, part);
    std::memcpy(data, part, count * sizeof(MixPixel));
}

void blendOverAll(MixPixel* under, const MixPixel* above, std::size_t count) {
    forEachVector(count, [&](std::size_t i, std::size_t n)
                             HWY_ATTR { store(over(load(under + i, n), load(above + i, n)), under + i, n); });
}

void blendOverCovered(MixPixel* under, const MixPixel* above, const MixPixel* coverage, std::size_t count) {
    forEachVector(count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const Vector part = hn::MulFixedPoint15(load(above + i, n), load(coverage + i, n));
        store(over(load(under + i, n), part), under + i, n);
    });
}

void blendOverlayCovered(MixPixel* under, const MixPixel* above, const MixPixel* coverage,
                         std::size_t count) {
    forEachVector(count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const Vector part = hn::MulFixedPoint15(load(above + i, n), load(coverage + i, n));
        store(overlay(load(under + i, n), part), under + i, n);
    });
}

void blendOverEvenly(MixPixel* under, const MixPixel* above, std::int16_t coverage, std::size_t count) {
    const Vector share = hn::Set(lanes, coverage);
    forEachVector(count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const Vector part = hn::MulFixedPoint15(load(above + i, n), share);
        store(over(load(under + i, n), part), under + i, n);
    });
}

void blendOverlayEvenly(MixPixel* under, const MixPixel* above, std::int16_t coverage, std::size_t count) {
    const Vector share = hn::Set(lanes, coverage);
    forEachVector(count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const Vector part = hn::MulFixedPoint15(load(above + i, n), share);
        store(overlay(load(under + i, n), part), under + i, n);
    });
}

void blendInsteadCovered(MixPixel* under, const MixPixel* above, const MixPixel* coverage,
                         std::size_t count) {
    forEachVector(count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const Vector part = load(coverage + i, n);
        const Vector rest = hn::Sub(hn::Set(lanes, coverageOne), part);
        store(hn::Add(hn::MulFixedPoint15(load(above + i, n), part),
                      hn::MulFixedPoint15(load(under + i, n), rest)),
              under + i, n);
    });
}

void ditherAllAlphas(const MixPixel* blacks, const MixPixel* offsets, std::size_t count, MixPixel* out) {
    static_assert(HWY_MAX_BYTES / sizeof(MixPixel) <= Dither::period);
    const Vector zero = hn::Zero(lanes);
    forEachVector(count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const Vector alpha = load(blacks + i, n); // and no colour
        const Vector moved = hn::SaturatedAdd(alpha, load(offsets + i % Dither::period, n));
        const Vector valid = hn::Min(hn::Max(moved, zero), hn::Set(lanes, mixOne));
        store(hn::IfThenElseZero(hn::Gt(alpha, zero), valid), out + i, n);
    });
}

void packAll(const MixPixel* pixels, std::size_t count, std::uint32_t* out) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    forEachVector(count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto rounded = packed(load(pixels + i, n));
        if (n * pixelLanes == hn::Lanes(lanes)) {
            hn::StoreU(rounded, bytes, reinterpret_cast<std::uint8_t*>(out + i));
            return;
        }
        alignas(64) std::uint8_t part[32];
        hn::Store(rounded, bytes, part);
        std::memcpy(out + i, part, n * sizeof(std::uint32_t));
    });
}

#if HWY_MAX_BYTES >= 32
/// Packs a vector of pixels and writes `count` of them, from the one at `skipped` on.
HWY_INLINE void packFew(const MixPixel* pixels, std::size_t skipped, std::size_t count, std::uint32_t* out) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    const std::size_t step = hn::Lanes(lanes) / pixelLanes;
    alignas(32) std::uint32_t all[8];
    hn::StoreU(packed(load(pixels, step)), bytes, reinterpret_cast<std::uint8_t*>(all));
    const std::uint32_t* from = all + skipped;
    // Copies of a fixed size are a move each.
    const auto copy = [&](auto size) HWY_ATTR {
        if ((count & size()) == 0)
            return;
        std::memcpy(out, from, size() * sizeof *out);
        out += size();
        from += size();
    };
    copy(std::integral_constant<std::size_t, 8>());
    copy(std::integral_constant<std::size_t, 4>());
    copy(std::integral_constant<std::size_t, 2>());
    copy(std::integral_constant<std::size_t, 1>());
}
#endif

void streamAll(const MixPixel* pixels, std::size_t count, std::uint32_t* out) {
#if HWY_MAX_BYTES < 32
    packAll(pixels, count, out); // a packed vector would be too short for a store past the caches
#else
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    const std::size_t step = hn::Lanes(lanes) / pixelLanes;
    // Whole lines of the cache go out at once.
    constexpr std::size_t line = 64;
    const std::size_t head =
        std::min(count, (line - reinterpret_cast<std::uintptr_t>(out) % line) % line / sizeof(std::uint32_t));
    if (count < head + step) {
        packAll(pixels, count, out);
        return;
    }
    std::size_t i = 0;
    for (; i < head; i += step)
        packFew(pixels + i, 0, std::min(head - i, step), out + i);
    i = head;
    for (; i + step <= count; i += step)
        hn::Stream(packed(load(pixels + i, step)), bytes, reinterpret_cast<std::uint8_t*>(out + i));
    packFew(pixels + count - step, step - (count - i), count - i, out + i);
#endif
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(blendOverAll);
HWY_EXPORT(blendOverCovered);
HWY_EXPORT(blendOverlayCovered);
HWY_EXPORT(blendOverEvenly);
HWY_EXPORT(blendOverlayEvenly);
HWY_EXPORT(blendInsteadCovered);
HWY_EXPORT(ditherAllAlphas);
HWY_EXPORT(packAll);
HWY_EXPORT(streamAll);

void blendOver(MixPixel* under, const MixPixel* over, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(blendOverAll)(under, over, count);
}

void blendOver(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(blendOverCovered)(under, over, coverage, count);
}

void blendOverlay(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(blendOverlayCovered)(under, over, coverage, count);
}

void blendOver(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(blendOverEvenly)(under, over, coverage, count);
}

void blendOverlay(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(blendOverlayEvenly)(under, over, coverage, count);
}

void blendInstead(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(blendInsteadCovered)(under, over, coverage, count);
}

void ditherAlphas(const MixPixel* blacks, const MixPixel* offsets, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(ditherAllAlphas)(blacks, offsets, count, out);
}

void packPixels(const MixPixel* pixels, std::size_t count, std::uint32_t* out) {
    HWY_DYNAMIC_DISPATCH(packAll)(pixels, count, out);
}

void streamPixels(const MixPixel* pixels, std::size_t count, std::uint32_t* out) {
    HWY_DYNAMIC_DISPATCH(streamAll)(pixels, count, out);
}

void flushPixels() {
    hwy::FlushStream();
}

} // namespace framora::raster
#endif
