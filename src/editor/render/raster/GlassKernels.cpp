#include "editor/render/raster/GlassKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/GlassKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// Behind the targets: it is compiled for each of them.
#include "editor/render/raster/MixVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors, or none of a known size: the plain kernels.
void halveRows(const MixPixel* upper, const MixPixel* lower, std::size_t count, MixPixel* out) {
    plain::meansOfFour(upper, lower, count, out);
}
void interpolateEvenly(const MixPixel* from, const MixPixel* to, std::int16_t part, std::size_t count,
                       MixPixel* out) {
    plain::interpolate(from, to, part, count, out);
}
void interpolateEach(const MixPixel* from, const MixPixel* to, const MixPixel* parts, std::size_t count,
                     MixPixel* out) {
    plain::interpolate(from, to, parts, count, out);
}

#else

/// Two rows of pixels to half as many means.
void halveRows(const MixPixel* upper, const MixPixel* lower, std::size_t count, MixPixel* out) {
    using Words = hn::Repartition<std::int32_t, Lanes>;
    constexpr Words words;
    const hn::Rebind<std::int16_t, Words> half;
    // The lower half of each word, and the upper one.
    const auto even = [&](Vector v)
                          HWY_ATTR { return hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(words, v))); };
    const auto odd = [&](Vector v) HWY_ATTR { return hn::ShiftRight<16>(hn::BitCast(words, v)); };
    const std::size_t step = hn::Lanes(lanes) / 4 / 2; // means
    std::size_t i = 0;
    for (; i + step <= count; i += step) {
        // Each channel beside that of the next pixel.
        const auto paired = [](Vector v) HWY_ATTR {
            return hn::InterleaveLower(lanes, v, hn::ShiftRightBytes<8>(lanes, v));
        };
        const Vector a = paired(load(upper + 2 * i));
        const Vector b = paired(load(lower + 2 * i));
        const auto sum = hn::Add(hn::Add(even(a), odd(a)), hn::Add(even(b), odd(b)));
        hn::StoreU(hn::DemoteTo(half, hn::ShiftRight<2>(sum)), half, out[i].channel);
    }
    plain::meansOfFour(upper + 2 * i, lower + 2 * i, count - i, out + i);
}

HWY_INLINE Vector between(Vector from, Vector to, Vector part) {
    return hn::Add(from, hn::MulFixedPoint15(hn::Sub(to, from), part));
}

void interpolateEvenly(const MixPixel* from, const MixPixel* to, std::int16_t part, std::size_t count,
                       MixPixel* out) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    const Vector all = hn::Set(lanes, part);
    std::size_t i = 0;
    for (; i + step <= count; i += step)
        store(between(load(from + i), load(to + i), all), out + i);
    plain::interpolate(from + i, to + i, part, count - i, out + i);
}

void interpolateEach(const MixPixel* from, const MixPixel* to, const MixPixel* parts, std::size_t count,
                     MixPixel* out) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    std::size_t i = 0;
    for (; i + step <= count; i += step)
        store(between(load(from + i), load(to + i), load(parts + i)), out + i);
    plain::interpolate(from + i, to + i, parts + i, count - i, out + i);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(halveRows);
HWY_EXPORT(interpolateEvenly);
HWY_EXPORT(interpolateEach);

void meansOfFour(const MixPixel* upper, const MixPixel* lower, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(halveRows)(upper, lower, count, out);
}

void interpolate(const MixPixel* from, const MixPixel* to, std::int16_t part, std::size_t count,
                 MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(interpolateEvenly)(from, to, part, count, out);
}

void interpolate(const MixPixel* from, const MixPixel* to, const MixPixel* parts, std::size_t count,
                 MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(interpolateEach)(from, to, parts, count, out);
}

} // namespace framora::raster
#endif
