#include "editor/render/raster/ResampleKernels.h"

#include "editor/render/raster/AlphaBytes.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/ResampleKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

// No vectors: the plain kernels.
void widenAll(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    plain::widenRow(pixels, count, out);
}
void weighAllRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, std::size_t count,
                  MixPixel* out) {
    plain::weighRows(rows, weights, taps, count, out);
}
void weighAllColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, Alpha alpha,
                     MixPixel* out) {
    plain::weighColumns(source, taps, index, count, alpha, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<std::int16_t, 32>;
using Vector = hn::Vec<Lanes>;
constexpr Lanes lanes;

HWY_INLINE Vector loadPixels(const MixPixel* from) {
    return hn::LoadU(lanes, reinterpret_cast<const std::int16_t*>(from));
}

/// Valid pixels of these sums, 0...mixOne.
template <Alpha alpha, typename Tag> HWY_INLINE hn::Vec<Tag> clamped(Tag tag, hn::Vec<Tag> sums) {
    const auto one = hn::Set(tag, std::int16_t(filterOne));
    if constexpr (alpha == Alpha::opaque) {
        // Lifted and cut off, alpha is one.
        alignas(16) static constexpr std::int16_t least[8] = {0, 0, 0, filterOne, 0, 0, 0, filterOne};
        return hn::ShiftLeft<2>(hn::Min(hn::Max(sums, hn::LoadDup128(tag, least)), one));
    } else {
        const hn::Repartition<std::uint8_t, Tag> bytes;
        const auto positive = hn::Max(sums, hn::Zero(tag));
        const auto limit = hn::BitCast(
            tag, hn::TableLookupBytes(hn::BitCast(bytes, positive), hn::LoadDup128(bytes, alphaBytes)));
        return hn::ShiftLeft<2>(hn::Min(positive, hn::Min(limit, one)));
    }
}

/// Stores the first `count` pixels of a vector.
HWY_INLINE void storePixels(Vector pixels, MixPixel* to, std::size_t count) {
    if (count * 4 >= hn::Lanes(lanes)) {
        hn::StoreU(pixels, lanes, reinterpret_cast<std::int16_t*>(to));
        return;
    }
    alignas(64) std::int16_t part[32];
    hn::Store(pixels, lanes, part);
    std::memcpy(to, part, count * sizeof(MixPixel));
}

HWY_INLINE Vector widened(const std::uint32_t* pixels) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    return hn::ShiftLeft<sourceShift>(
        hn::PromoteTo(lanes, hn::LoadU(bytes, reinterpret_cast<const std::uint8_t*>(pixels))));
}

void widenAll(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    std::size_t i = 0;
    for (; i + step <= count; i += step)
        hn::StoreU(widened(pixels + i), lanes, reinterpret_cast<std::int16_t*>(out + i));
    // The last vector again, from where it ends with the row.
    if (i == count)
        return;
    if (count >= step)
        hn::StoreU(widened(pixels + count - step), lanes,
                   reinterpret_cast<std::int16_t*>(out + count - step));
    else
        plain::widenRow(pixels, count, out);
}

HWY_INLINE Vector weighed(const std::uint32_t* const* rows, const std::int16_t* weights, int taps,
                          std::size_t i) {
    Vector sum = hn::MulFixedPoint15(widened(rows[0] + i), hn::Set(lanes, weights[0]));
    for (int tap = 1; tap < taps; ++tap)
        sum = hn::Add(sum, hn::MulFixedPoint15(widened(rows[tap] + i), hn::Set(lanes, weights[tap])));
    return sum;
}

void weighAllRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, std::size_t count,
                  MixPixel* out) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    if (count < step) {
        plain::weighRows(rows, weights, taps, count, out);
        return;
    }
    std::size_t i = 0;
    // Two vectors share what is fetched for a row.
    for (; i + 2 * step <= count; i += 2 * step) {
        Vector first = hn::Zero(lanes);
        Vector second = hn::Zero(lanes);
        for (int tap = 0; tap < taps; ++tap) {
            const std::uint32_t* from = rows[tap] + i;
            const Vector weight = hn::Set(lanes, weights[tap]);
            first = hn::Add(first, hn::MulFixedPoint15(widened(from), weight));
            second = hn::Add(second, hn::MulFixedPoint15(widened(from + step), weight));
        }
        storePixels(first, out + i, step);
        storePixels(second, out + i + step, step);
    }
    for (; i + step <= count; i += step)
        storePixels(weighed(rows, weights, taps, i), out + i, step);
    // The last vector overlaps the one before.
    if (i < count)
        storePixels(weighed(rows, weights, taps, count - step), out + (count - step), step);
}

/// One vector of outputs that read neighbouring sources: one load a tap, sorted to the outputs. `starts` are
/// their sources, the first of which is at `from`. With `fixedTaps` above 0 that many, else `taps`.
template <Alpha alpha, int fixedTaps>
HWY_INLINE Vector weighedColumns(const MixPixel* from, const std::int64_t* starts, const MixPixel* weights,
                                 std::size_t tapStride, int taps) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    const hn::Repartition<std::int64_t, Lanes> offsets;
    const auto order =
        hn::IndicesFromVec(words, hn::Sub(hn::LoadU(offsets, starts), hn::Set(offsets, starts[0])));
    Vector sum = hn::Zero(lanes);
    const int count = fixedTaps > 0 ? fixedTaps : taps;
    for (int tap = 0; tap < count; ++tap, weights += tapStride) {
        const auto sources = hn::TableLookupLanes(hn::BitCast(words, loadPixels(from + tap)), order);
        sum = hn::Add(sum, hn::MulFixedPoint15(hn::BitCast(lanes, sources), loadPixels(weights)));
    }
    return clamped<alpha>(lanes, sum);
}

template <Alpha alpha, int fixedTaps>
HWY_INLINE void weighDenseColumns(const MixPixel* source, const FixedTaps& taps, int index, int count,
                                  MixPixel* out) {
    constexpr int mostLanes = 8;
    const int step = int(hn::Lanes(lanes) / 4);
    const std::int64_t* starts = taps.starts() + index;
    const MixPixel* origin = source - starts[0];
    const std::size_t stride = taps.tapStride();
    const int tapCount = taps.taps();
    const MixPixel* weights = taps.spread(index);
    int i = 0;
    for (; i + step <= count; i += step) {
        const Vector pixels =
            weighedColumns<alpha, fixedTaps>(origin + starts[i], starts + i, weights + i, stride, tapCount);
        hn::StoreU(pixels, lanes, reinterpret_cast<std::int16_t*>(out + i));
    }
    if (i == count)
        return;
    alignas(64) std::int64_t lastStarts[mostLanes];
    for (int lane = 0; lane < step; ++lane)
        lastStarts[lane] = starts[std::min(i + lane, count - 1)];
    const Vector pixels =
        weighedColumns<alpha, fixedTaps>(origin + starts[i], lastStarts, weights + i, stride, tapCount);
    storePixels(pixels, out + i, std::size_t(count - i));
}

/// Writes the pixels of both vectors in turn.
HWY_INLINE void storeInTurn(Vector even, Vector odd, MixPixel* out) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    auto* to = reinterpret_cast<std::uint64_t*>(out);
#if HWY_MAX_BYTES == 64 && !HWY_HAVE_SCALABLE
    alignas(64) static constexpr std::uint64_t lower[8] = {0, 0, 1, 1, 2, 2, 3, 3};
    alignas(64) static constexpr std::uint64_t upper[8] = {4, 4, 5, 5, 6, 6, 7, 7};
    constexpr std::uint64_t all = ~std::uint64_t(0);
    alignas(64) static constexpr std::uint64_t everySecond[8] = {0, all, 0, all, 0, all, 0, all};
    const auto isOdd = hn::MaskFromVec(hn::Load(words, everySecond));
    const auto sorted = [&](const std::uint64_t* pattern) HWY_ATTR {
        const auto order = hn::SetTableIndices(words, pattern);
        return hn::IfThenElse(isOdd, hn::TableLookupLanes(hn::BitCast(words, odd), order),
                              hn::TableLookupLanes(hn::BitCast(words, even), order));
    };
    hn::StoreU(sorted(lower), words, to);
    hn::StoreU(sorted(upper), words, to + 8);
#else
    hn::StoreInterleaved2(hn::BitCast(words, even), hn::BitCast(words, odd), words, to);
#endif
}

/// Keeps a vector where it is: the compiler would load it anew for every use, across two lines of the cache.
HWY_INLINE void keep([[maybe_unused]] Vector& vector) {
#if HWY_ARCH_X86 && HWY_COMPILER_GCC
    asm("" : "+v"(vector.raw));
#endif
}

/// Pairs of outputs that weigh alike, the second one of each starting `shift` sources behind the first: no
/// source needs sorting. Returns how many outputs it made.
template <Alpha alpha, int shift>
HWY_INLINE int weighDoubledColumns(const MixPixel* source, const std::int16_t* first,
                                   const std::int16_t* second, int count, MixPixel* out) {
    const int step = int(hn::Lanes(lanes) / 4);
    const auto weight = [](std::int16_t one) HWY_ATTR { return hn::Set(lanes, one); };
    // Read once: as far as the compiler knows, `out` may overwrite them.
    const Vector first0 = weight(first[0]);
    const Vector first1 = weight(first[1]);
    const Vector first2 = weight(first[2]);
    const Vector first3 = weight(first[3]);
    const Vector second0 = weight(second[0]);
    const Vector second1 = weight(second[1]);
    const Vector second2 = weight(second[2]);
    const Vector second3 = weight(second[3]);
    int i = 0;
    for (; i + 2 * step <= count; i += 2 * step, source += step) {
        const Vector a = loadPixels(source);
        Vector b = loadPixels(source + 1);
        Vector c = loadPixels(source + 2);
        Vector d = loadPixels(source + 3);
        keep(b);
        keep(c);
        keep(d);
        const Vector e = shift == 0 ? d : loadPixels(source + 4);
        const auto sum = [](Vector v0, Vector v1, Vector v2, Vector v3) HWY_ATTR {
            return clamped<alpha>(lanes, hn::Add(hn::Add(v0, v1), hn::Add(v2, v3)));
        };
        const auto part = [](Vector v, Vector by) HWY_ATTR { return hn::MulFixedPoint15(v, by); };
        const Vector even = sum(part(a, first0), part(b, first1), part(c, first2), part(d, first3));
        const Vector odd = shift == 0
                               ? sum(part(a, second0), part(b, second1), part(c, second2), part(d, second3))
                               : sum(part(b, second0), part(c, second1), part(d, second2), part(e, second3));
        storeInTurn(even, odd, out + i);
    }
    return i;
}

/// Four taps an output.
template <Alpha alpha>
void weighFourColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, MixPixel* out) {
    const int head = std::clamp(taps.doubledFirst() - index, 0, count);
    const int doubled = std::clamp(taps.doubledEnd() - index, head, count) - head;
    int done = 0;
    const int origin = taps.start(index);
    const int first = index + head;
    if (doubled >= int(hn::Lanes(lanes) / 2)) {
        if (head > 0)
            weighDenseColumns<alpha, 4>(source, taps, index, head, out);
        const MixPixel* from = source + (taps.start(first) - origin);
        const std::int16_t* even = taps.weights(first);
        const std::int16_t* odd = taps.weights(first + 1);
        done = head + (taps.start(first + 1) == taps.start(first)
                           ? weighDoubledColumns<alpha, 0>(from, even, odd, doubled, out + head)
                           : weighDoubledColumns<alpha, 1>(from, even, odd, doubled, out + head));
    }
    if (done < count)
        weighDenseColumns<alpha, 4>(source + (taps.start(index + done) - origin), taps, index + done,
                                    count - done, out + done);
}

#if !HWY_HAVE_SCALABLE

using OnePixel = hn::CappedTag<std::int16_t, 4>;
constexpr OnePixel onePixel;

/// The sum of a vector's pixels. Sixteen bits wrap around alike in any order.
template <typename Tag> HWY_INLINE hn::Vec<OnePixel> sumOfPixels(Tag /*tag*/, hn::Vec<Tag> pixels) {
    if constexpr (hn::MaxLanes(Tag()) == 4) {
        return pixels;
    } else {
        const hn::Half<Tag> half;
        return sumOfPixels(half, hn::Add(hn::LowerHalf(half, pixels), hn::UpperHalf(half, pixels)));
    }
}

/// The weighed sources of one output, added up to a vector.
HWY_INLINE Vector weighedAcross(const MixPixel* from, const MixPixel* weights, int taps) {
    const int step = int(hn::Lanes(lanes) / 4);
    Vector sum = hn::MulFixedPoint15(loadPixels(from), loadPixels(weights));
    for (int tap = step; tap < taps; tap += step)
        sum = hn::Add(sum, hn::MulFixedPoint15(loadPixels(from + tap), loadPixels(weights + tap)));
    return sum;
}

/// In each block the sum of the pixels of `even`, then that of `odd`.
HWY_INLINE Vector sumOfPairs(Vector even, Vector odd) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    const auto a = hn::BitCast(words, even);
    const auto b = hn::BitCast(words, odd);
    return hn::Add(hn::BitCast(lanes, hn::InterleaveLower(words, a, b)),
                   hn::BitCast(lanes, hn::InterleaveUpper(words, a, b)));
}

/// The sum of both halves of `low`, then that of `high`.
HWY_INLINE Vector sumOfHalves(Vector low, Vector high) {
    return hn::Add(hn::ConcatLowerLower(lanes, high, low), hn::ConcatUpperUpper(lanes, high, low));
}

/// A vector of pixels, of which each is the sum of those in the vector that `at` gives for its place.
template <typename At> HWY_INLINE Vector sumsOfPixels(const At& at) {
    if constexpr (hn::MaxLanes(Lanes()) == 8) {
        return sumOfPairs(at(0), at(1));
    } else if constexpr (hn::MaxLanes(Lanes()) == 16) {
        return sumOfHalves(sumOfPairs(at(0), at(1)), sumOfPairs(at(2), at(3)));
    } else {
        // Each is now two blocks: those of the outputs 0 and 1, then of 4 and 5; of 2 and 3, then of 6 and 7.
        const Vector even = sumOfHalves(sumOfPairs(at(0), at(1)), sumOfPairs(at(4), at(5)));
        const Vector odd = sumOfHalves(sumOfPairs(at(2), at(3)), sumOfPairs(at(6), at(7)));
        return hn::Add(hn::OddEvenBlocks(hn::SwapAdjacentBlocks(odd), even),
                       hn::OddEvenBlocks(odd, hn::SwapAdjacentBlocks(even)));
    }
}

/// Many taps an output: they are summed across a vector.
template <Alpha alpha>
void weighSparseColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, MixPixel* out) {
    const int step = int(hn::Lanes(lanes) / 4);
    const int tapCount = taps.taps();
    const MixPixel* origin = source - taps.start(index);
    const auto weighed = [&](int i) HWY_ATTR {
        return weighedAcross(origin + taps.start(index + i), taps.spread(index + i), tapCount);
    };
    int done = 0;
    for (; done + step <= count; done += step) {
        const Vector sums = sumsOfPixels([&](int i) HWY_ATTR { return weighed(done + i); });
        hn::StoreU(clamped<alpha>(lanes, sums), lanes, reinterpret_cast<std::int16_t*>(out + done));
    }
    for (; done < count; ++done) {
        const auto valid = clamped<alpha>(onePixel, sumOfPixels(lanes, weighed(done)));
        hn::StoreU(valid, onePixel, reinterpret_cast<std::int16_t*>(out + done));
    }
}

#else

template <Alpha alpha>
void weighSparseColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, MixPixel* out) {
    plain::weighColumns(source, taps, index, count, alpha, out);
}

#endif

/// Outputs that weigh alike, each starting two sources behind the one before: every second source of two
/// vectors at once. Returns how many outputs it made.
template <Alpha alpha>
int weighHalvedColumns(const MixPixel* source, const std::int16_t* weights, int taps, int count,
                       MixPixel* out) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    const int step = int(hn::Lanes(lanes) / 4);
    int i = 0;
    for (; i + step <= count; i += step, source += 2 * step) {
        Vector sum = hn::Zero(lanes);
        for (int tap = 0; tap < taps; tap += 2) {
            const auto low = hn::BitCast(words, loadPixels(source + tap));
            const auto high = hn::BitCast(words, loadPixels(source + tap + step));
            const Vector even = hn::BitCast(lanes, hn::ConcatEven(words, high, low));
            sum = hn::Add(sum, hn::MulFixedPoint15(even, hn::Set(lanes, weights[tap])));
            if (tap + 1 == taps)
                break;
            const Vector odd = hn::BitCast(lanes, hn::ConcatOdd(words, high, low));
            sum = hn::Add(sum, hn::MulFixedPoint15(odd, hn::Set(lanes, weights[tap + 1])));
        }
        hn::StoreU(clamped<alpha>(lanes, sum), lanes, reinterpret_cast<std::int16_t*>(out + i));
    }
    return i;
}

/// Outputs that start further from one another.
template <Alpha alpha>
void weighDistantColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, MixPixel* out) {
    const int head = std::clamp(taps.halvedFirst() - index, 0, count);
    const int halved = std::clamp(taps.halvedEnd() - index, head, count) - head;
    const int origin = taps.start(index);
    int done = 0;
    if (halved > 0) {
        if (head > 0)
            weighSparseColumns<alpha>(source, taps, index, head, out);
        done = head + weighHalvedColumns<alpha>(source + (taps.start(index + head) - origin),
                                                taps.weights(index + head), taps.taps(), halved, out + head);
    }
    if (done < count)
        weighSparseColumns<alpha>(source + (taps.start(index + done) - origin), taps, index + done,
                                  count - done, out + done);
}

template <Alpha alpha>
void weighAllColumnsOf(const MixPixel* source, const FixedTaps& taps, int index, int count, MixPixel* out) {
    if (taps.isDense() && taps.taps() == 4)
        weighFourColumns<alpha>(source, taps, index, count, out);
    else if (taps.isDense())
        weighDenseColumns<alpha, 0>(source, taps, index, count, out);
    else
        weighDistantColumns<alpha>(source, taps, index, count, out);
}

void weighAllColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, Alpha alpha,
                     MixPixel* out) {
    if (alpha == Alpha::opaque)
        weighAllColumnsOf<Alpha::opaque>(source, taps, index, count, out);
    else
        weighAllColumnsOf<Alpha::any>(source, taps, index, count, out);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(widenAll);
HWY_EXPORT(weighAllRows);
HWY_EXPORT(weighAllColumns);

void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(widenAll)(pixels, count, out);
}

void weighRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, std::size_t count,
               MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(weighAllRows)(rows, weights, taps, count, out);
}

void weighColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, Alpha alpha,
                  MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(weighAllColumns)(source, taps, index, count, alpha, out);
}

} // namespace framora::raster
#endif
