#include "editor/render/raster/BlurKernels.h"

#include "editor/render/raster/Dither.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/BlurKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// Behind the targets: it is compiled for each of them.
#include "editor/render/raster/MixVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || !HWY_ARCH_X86

// Without vectors, or with vectors that sum the products of neighbours in another order: the plain kernels.
void sumMixRows(const MixPixel* const* rows, const std::int16_t* weights, int taps, int shift,
                std::size_t count, MixPixel* out) {
    plain::sumRows(rows, weights, taps, shift, count, out);
}
void sumPictureRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, int shift,
                    std::size_t count, MixPixel* out) {
    plain::sumRows(rows, weights, taps, shift, count, out);
}
void sumAllRuns(const MixPixel* sources, const BlurTaps& taps, int index, int count, MixPixel* out) {
    plain::sumRuns(sources, taps, index, count, out);
}
void ditherAll(MixPixel* pixels, int x, int y, std::size_t count) {
    plain::ditherPixels(pixels, x, y, count);
}

#else

using Wide = hn::Repartition<std::int32_t, Lanes>;

HWY_INLINE Vector load(const std::uint32_t* from) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    return hn::PromoteTo(lanes, hn::LoadU(bytes, reinterpret_cast<const std::uint8_t*>(from)));
}

/// Two weights side by side, for every lane of the sums.
template <typename D> HWY_INLINE auto pair(D wide, const std::int16_t* weights) {
    std::int32_t both = 0;
    std::memcpy(&both, weights, sizeof both);
    const hn::Repartition<std::int16_t, D> narrow;
    return hn::BitCast(narrow, hn::Set(wide, both));
}

template <typename D, typename V, typename S> HWY_INLINE S addProducts(D wide, V pixels, V weights, S sum) {
    S unused = hn::Zero(wide);
    return hn::ReorderWidenMulAccumulate(wide, pixels, weights, sum, unused);
}

/// Sums `vectors` vectors from pixel i on. Several at once: rows often lie a power of two apart, and then
/// each load of a row throws the others out of the nearest cache.
template <int vectors, typename Source>
HWY_INLINE void sumInto(const Source* const* rows, const std::int16_t* weights, int taps, int shift,
                        std::size_t i, MixPixel* out) {
    constexpr Wide wide;
    const std::size_t step = hn::Lanes(lanes) / 4;
    hn::Vec<Wide> low[vectors];
    hn::Vec<Wide> high[vectors];
    for (int v = 0; v < vectors; ++v)
        low[v] = high[v] = hn::Set(wide, 1 << (shift - 1));
    for (int tap = 0; tap < taps; tap += 2) {
        const Source* first = rows[tap] + i;
        const Source* second = rows[tap + 1] + i;
        const auto factors = pair(wide, weights + tap);
        for (int v = 0; v < vectors; ++v) {
            const Vector a = load(first + std::size_t(v) * step);
            const Vector b = load(second + std::size_t(v) * step);
            low[v] = addProducts(wide, hn::InterleaveLower(lanes, a, b), factors, low[v]);
            high[v] = addProducts(wide, hn::InterleaveUpper(lanes, a, b), factors, high[v]);
        }
    }
    // Within their blocks the halves come together as they were taken apart.
    for (int v = 0; v < vectors; ++v)
        hn::StoreU(hn::ReorderDemote2To(lanes, hn::ShiftRightSame(low[v], shift),
                                        hn::ShiftRightSame(high[v], shift)),
                   lanes, reinterpret_cast<std::int16_t*>(out + i + std::size_t(v) * step));
}

template <typename Source>
HWY_INLINE void sumAllRows(const Source* const* rows, const std::int16_t* weights, int taps, int shift,
                           std::size_t count, MixPixel* out) {
    constexpr int vectors = 4;
    const std::size_t step = hn::Lanes(lanes) / 4;
    std::size_t i = 0;
    for (; i + vectors * step <= count; i += vectors * step)
        sumInto<vectors>(rows, weights, taps, shift, i, out);
    for (; i + step <= count; i += step)
        sumInto<1>(rows, weights, taps, shift, i, out);
    // The last vector overlaps the one before.
    if (i < count)
        sumInto<1>(rows, weights, taps, shift, count - step, out);
}

void sumMixRows(const MixPixel* const* rows, const std::int16_t* weights, int taps, int shift,
                std::size_t count, MixPixel* out) {
    if (count < hn::Lanes(lanes) / 4)
        plain::sumRows(rows, weights, taps, shift, count, out);
    else
        sumAllRows(rows, weights, taps, shift, count, out);
}

void sumPictureRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, int shift,
                    std::size_t count, MixPixel* out) {
    if (count < hn::Lanes(lanes) / 4)
        plain::sumRows(rows, weights, taps, shift, count, out);
    else
        sumAllRows(rows, weights, taps, shift - 7, count, out);
}

void sumAllRuns(const MixPixel* sources, const BlurTaps& taps, int index, int count, MixPixel* out) {
    const hn::FixedTag<std::int16_t, 8> two; // pixels
    const hn::FixedTag<std::int32_t, 4> one;
    const hn::FixedTag<std::int16_t, 4> narrow;
    const auto half = hn::Set(one, 1 << (taps.shift() - 1));
    // Two sources, channel by channel.
    const auto sorted = [&](const MixPixel* from) HWY_ATTR {
        const auto pixels = hn::LoadU(two, from->channel);
        return hn::InterleaveLower(two, pixels, hn::ShiftRightBytes<8>(two, pixels));
    };
    const auto store = [&](hn::Vec<decltype(one)> sum, MixPixel& pixel) HWY_ATTR {
        hn::StoreU(hn::DemoteTo(narrow, hn::ShiftRightSame(sum, taps.shift())), narrow, pixel.channel);
    };
    for (int i = 0; i < count;) {
        const BlurTaps::Taps run = taps.taps(index + i);
        const MixPixel* const from = sources + run.first;
        if (run.count != 4) {
            auto sum = half;
            for (int tap = 0; tap < run.count; tap += 2)
                sum = addProducts(one, sorted(from + tap), pair(one, run.weights + tap), sum);
            store(sum, out[i++]);
            continue;
        }
        // Neighbours often have the same four sources.
        const auto first = sorted(from);
        const auto second = sorted(from + 2);
        for (BlurTaps::Taps here = run; here.first == run.first && here.count == 4;
             here = taps.taps(index + i)) {
            auto sum = addProducts(one, first, pair(one, here.weights), half);
            sum = addProducts(one, second, pair(one, here.weights + 2), sum);
            store(sum, out[i++]);
            if (i == count)
                break;
        }
    }
}

HWY_INLINE Vector dithered(Vector pixels, Vector pattern) {
    const Vector weak = hn::Sub(pattern, hn::ShiftRight<2>(pattern));
    const Vector limit = hn::Min(hn::Max(alphas(pixels), hn::Zero(lanes)), hn::Set(lanes, mixOne));
    return hn::Min(hn::Max(hn::SaturatedAdd(pixels, weak), hn::Zero(lanes)), limit);
}

void ditherAll(MixPixel* pixels, int x, int y, std::size_t count) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    static_assert(HWY_MAX_BYTES / sizeof(MixPixel) <= Dither::period);
    std::size_t i = 0;
    for (; i + step <= count; i += step)
        store(dithered(load(pixels + i), load(Dither::row(x + int(i), y))), pixels + i);
    plain::ditherPixels(pixels + i, x + int(i), y, count - i);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(sumMixRows);
HWY_EXPORT(sumPictureRows);
HWY_EXPORT(sumAllRuns);
HWY_EXPORT(ditherAll);

void sumRows(const MixPixel* const* rows, const std::int16_t* weights, int taps, int shift, std::size_t count,
             MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(sumMixRows)(rows, weights, taps, shift, count, out);
}

void sumRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, int shift,
             std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(sumPictureRows)(rows, weights, taps, shift, count, out);
}

void sumRuns(const MixPixel* sources, const BlurTaps& taps, int index, int count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(sumAllRuns)(sources, taps, index, count, out);
}

void ditherPixels(MixPixel* pixels, int x, int y, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ditherAll)(pixels, x, y, count);
}

} // namespace framora::raster
#endif
