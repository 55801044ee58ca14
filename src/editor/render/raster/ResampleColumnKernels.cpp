#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/ResampleColumnKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "editor/render/raster/ResampleWriters-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors, or none of a known size: the plain kernels.
void weighAllColumns(const MixBlock& source, const FixedTaps& taps, int index, Alpha alpha,
                     const MixBlock& out) {
    plain::weighColumns(source, taps, index, alpha, out);
}
void packAllColumns(const MixBlock& source, const FixedTaps& taps, int index, MutablePixelView out,
                    Storing /*storing*/) {
    plain::packColumns(source, taps, index, out);
}
int mostSortable() {
    return 0;
}

#else

/// The sums of a vector of outputs that read neighbouring sources: one load a tap, sorted to the outputs.
/// `starts` are their sources, the first of which is at `from`. With `fixedTaps` above 0 that many, else
/// `taps`.
template <int fixedTaps>
HWY_INLINE Vector weighedColumns(const MixPixel* from, const std::int64_t* starts, const MixPixel* weights,
                                 std::size_t tapStride, int taps) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    const hn::Repartition<std::int64_t, Lanes> offsets;
    const auto order =
        hn::IndicesFromVec(words, hn::Sub(hn::LoadU(offsets, starts), hn::Set(offsets, starts[0])));
    Vector sum = hn::Zero(lanes);
    const int count = fixedTaps > 0 ? fixedTaps : taps;
    for (int tap = 0; tap < count; ++tap, weights += tapStride) {
        const auto sources = hn::TableLookupLanes(hn::BitCast(words, load(from + tap)), order);
        sum = hn::Add(sum, hn::MulFixedPoint15(hn::BitCast(lanes, sources), load(weights)));
    }
    return sum;
}

#if HWY_MAX_BYTES == 64 && HWY_ARCH_X86
constexpr int sortable = 22; // out of three vectors

/// The same of outputs further apart: `vectors`, 2 or 3, hold the sources of `together` taps, a divisor of
/// FixedTaps::together. By hand, since Debian 12's Highway has no lookup in two vectors.
template <int vectors, int together>
HWY_INLINE Vector weighedNearColumns(const MixPixel* from, const std::int64_t* starts,
                                     const MixPixel* weights, std::size_t tapStride, int taps) {
    constexpr int step = 8;
    const __m512i places = _mm512_sub_epi64(_mm512_loadu_si512(starts), _mm512_set1_epi64(starts[0]));
    Vector sum = hn::Zero(lanes);
    for (int tap = 0; tap < taps; tap += together, from += together) {
        const __m512i first = load(from).raw;
        const __m512i second = load(from + step).raw;
        for (int i = 0; i < together; ++i, weights += tapStride) {
            const __m512i order = _mm512_add_epi64(places, _mm512_set1_epi64(i));
            __m512i sources = _mm512_permutex2var_epi64(first, order, second);
            if constexpr (vectors == 3)
                sources = _mm512_mask_permutexvar_epi64(
                    sources, _mm512_cmpgt_epi64_mask(order, _mm512_set1_epi64(2 * step - 1)), order,
                    load(from + 2 * step).raw);
            sum = hn::Add(sum, hn::MulFixedPoint15(Vector{sources}, load(weights)));
        }
    }
    return sum;
}

#else
constexpr int sortable = 0;
#endif

int mostSortable() {
    return sortable;
}

/// What the functions below are about: of each row of `source`, which starts with what the output `index`
/// uses first, those of the outputs from `index` on that they are asked for.
struct Columns {
    MixBlock source;
    const FixedTaps& taps;
    int index;

    int start(int x) const { return taps.start(index + x) - taps.start(index); }
};

/// The outputs [begin, end), a vector of sums after the other as `weighed` makes them.
template <auto weighed, typename Writer>
HWY_INLINE void weighSortedColumns(const Columns& columns, int begin, int end, const Writer& writer) {
    constexpr int mostLanes = 8;
    const int step = int(hn::Lanes(lanes) / 4);
    const FixedTaps& taps = columns.taps;
    const std::int64_t* starts = taps.starts() + columns.index;
    const MixPixel* weights = taps.spread(columns.index);
    const std::size_t stride = taps.tapStride();
    const int tapCount = taps.taps();
    for (int y = 0; begin < end && y < writer.out.height; ++y) {
        const MixPixel* origin = columns.source.row(y) - starts[0];
        auto* const to = writer.out.row(y);
        int i = begin;
        for (; i + step <= end; i += step)
            writer.write(weighed(origin + starts[i], starts + i, weights + i, stride, tapCount), to + i);
        if (i == end)
            continue;
        alignas(64) std::int64_t lastStarts[mostLanes];
        for (int lane = 0; lane < step; ++lane)
            lastStarts[lane] = starts[std::min(i + lane, end - 1)];
        writer.writeFirst(weighed(origin + starts[i], lastStarts, weights + i, stride, tapCount), to + i,
                          end - i);
    }
}

/// Keeps a vector where it is: the compiler would load it anew for every use, across two lines of the cache.
HWY_INLINE void keep([[maybe_unused]] Vector& vector) {
#if HWY_ARCH_X86 && HWY_COMPILER_GCC
    asm("" : "+v"(vector.raw));
#endif
}

/// Pairs of outputs that weigh alike, the second one of each starting `shift` sources behind the first: no
/// source needs sorting. From `begin` on, `count` of them, which are two vectors or a multiple of that.
template <int shift, typename Writer>
HWY_INLINE void weighDoubledColumns(const Columns& columns, int begin, int count, const Writer& writer) {
    const int step = int(hn::Lanes(lanes) / 4);
    const std::int16_t* first = columns.taps.weights(columns.index + begin);
    const std::int16_t* second = columns.taps.weights(columns.index + begin + 1);
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
    for (int y = 0; y < writer.out.height; ++y) {
        const MixPixel* source = columns.source.row(y) + columns.start(begin);
        auto* const to = writer.out.row(y) + begin;
        for (int i = 0; i < count; i += 2 * step, source += step) {
            const Vector a = load(source);
            Vector b = load(source + 1);
            Vector c = load(source + 2);
            Vector d = load(source + 3);
            keep(b);
            keep(c);
            keep(d);
            const Vector e = shift == 0 ? d : load(source + 4);
            const auto sum = [](Vector v0, Vector v1, Vector v2, Vector v3)
                                 HWY_ATTR { return hn::Add(hn::Add(v0, v1), hn::Add(v2, v3)); };
            const auto part = [](Vector v, Vector by) HWY_ATTR { return hn::MulFixedPoint15(v, by); };
            const Vector even = sum(part(a, first0), part(b, first1), part(c, first2), part(d, first3));
            const Vector odd =
                shift == 0 ? sum(part(a, second0), part(b, second1), part(c, second2), part(d, second3))
                           : sum(part(b, second0), part(c, second1), part(d, second2), part(e, second3));
            writer.writeInTurn(even, odd, to + i);
        }
    }
}

/// A number of outputs after which whole vectors are stored where streamed ones may be.
HWY_INLINE int roundedUp(int count, int step) {
    return (count + step - 1) / step * step;
}

/// Four taps an output.
template <typename Writer> void weighFourColumns(const Columns& columns, const Writer& writer) {
    const FixedTaps& taps = columns.taps;
    const int count = writer.out.width;
    const int pair = int(hn::Lanes(lanes) / 2);
    const int first = roundedUp(std::clamp(taps.doubledFirst() - columns.index, 0, count), pair);
    const int doubled = std::max(0, std::min(taps.doubledEnd() - columns.index, count) - first) / pair * pair;
    if (doubled == 0) {
        weighSortedColumns<weighedColumns<4>>(columns, 0, count, writer);
        return;
    }
    weighSortedColumns<weighedColumns<4>>(columns, 0, first, writer);
    if (columns.start(first + 1) == columns.start(first))
        weighDoubledColumns<0>(columns, first, doubled, writer);
    else
        weighDoubledColumns<1>(columns, first, doubled, writer);
    weighSortedColumns<weighedColumns<4>>(columns, first + doubled, count, writer);
}

/// The weighed sources of one output, added up to a vector.
HWY_INLINE Vector weighedAcross(const MixPixel* from, const MixPixel* weights, int taps) {
    const int step = int(hn::Lanes(lanes) / 4);
    Vector sum = hn::MulFixedPoint15(load(from), load(weights));
    for (int tap = step; tap < taps; tap += step)
        sum = hn::Add(sum, hn::MulFixedPoint15(load(from + tap), load(weights + tap)));
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
template <typename Writer>
void weighSparseColumns(const Columns& columns, int begin, int end, const Writer& writer) {
    const int step = int(hn::Lanes(lanes) / 4);
    const int tapCount = columns.taps.taps();
    for (int y = 0; begin < end && y < writer.out.height; ++y) {
        const MixPixel* source = columns.source.row(y);
        auto* const to = writer.out.row(y);
        const auto weighed = [&](int x) HWY_ATTR {
            return weighedAcross(source + columns.start(x), columns.taps.spread(columns.index + x), tapCount);
        };
        int i = begin;
        for (; i + step <= end; i += step)
            writer.write(sumsOfPixels([&](int lane) HWY_ATTR { return weighed(i + lane); }), to + i);
        if (i < end)
            writer.writeFirst(
                sumsOfPixels([&](int lane) HWY_ATTR { return weighed(std::min(i + lane, end - 1)); }), to + i,
                end - i);
    }
}

/// Outputs that weigh alike, each starting two sources behind the one before: every second source of two
/// vectors at once. From `begin` on, `count` of them, which are whole vectors.
template <typename Writer>
void weighHalvedColumns(const Columns& columns, int begin, int count, const Writer& writer) {
    const hn::Repartition<std::uint64_t, Lanes> words;
    const int step = int(hn::Lanes(lanes) / 4);
    const int taps = columns.taps.taps();
    const std::int16_t* weights = columns.taps.weights(columns.index + begin);
    for (int y = 0; y < writer.out.height; ++y) {
        const MixPixel* source = columns.source.row(y) + columns.start(begin);
        auto* const to = writer.out.row(y) + begin;
        for (int i = 0; i < count; i += step, source += 2 * step) {
            Vector sum = hn::Zero(lanes);
            for (int tap = 0; tap < taps; tap += 2) {
                const auto low = hn::BitCast(words, load(source + tap));
                const auto high = hn::BitCast(words, load(source + tap + step));
                const Vector even = hn::BitCast(lanes, hn::ConcatEven(words, high, low));
                sum = hn::Add(sum, hn::MulFixedPoint15(even, hn::Set(lanes, weights[tap])));
                if (tap + 1 == taps)
                    break;
                const Vector odd = hn::BitCast(lanes, hn::ConcatOdd(words, high, low));
                sum = hn::Add(sum, hn::MulFixedPoint15(odd, hn::Set(lanes, weights[tap + 1])));
            }
            writer.write(sum, to + i);
        }
    }
}

/// The outputs [begin, end), however they lie.
template <typename Writer>
void weighOtherColumns(const Columns& columns, int begin, int end, const Writer& writer) {
    if (!columns.taps.isByTaps())
        return weighSparseColumns(columns, begin, end, writer);
#if HWY_MAX_BYTES == 64 && HWY_ARCH_X86
    const int reach = columns.taps.reach();
    if (reach > 20)
        return weighSortedColumns<weighedNearColumns<3, 2>>(columns, begin, end, writer);
    if (reach > 14)
        return weighSortedColumns<weighedNearColumns<3, 4>>(columns, begin, end, writer);
    if (reach > 12)
        return weighSortedColumns<weighedNearColumns<2, 2>>(columns, begin, end, writer);
    if (!columns.taps.isDense())
        return weighSortedColumns<weighedNearColumns<2, 4>>(columns, begin, end, writer);
#endif
    weighSortedColumns<weighedColumns<0>>(columns, begin, end, writer);
}

/// Any number of taps.
template <typename Writer> void weighAnyColumns(const Columns& columns, const Writer& writer) {
    const FixedTaps& taps = columns.taps;
    const int count = writer.out.width;
    const int step = int(hn::Lanes(lanes) / 4);
    const int first = roundedUp(std::clamp(taps.halvedFirst() - columns.index, 0, count), step);
    const int halved = std::max(0, std::min(taps.halvedEnd() - columns.index, count) - first) / step * step;
    if (halved == 0) {
        weighOtherColumns(columns, 0, count, writer);
        return;
    }
    weighOtherColumns(columns, 0, first, writer);
    weighHalvedColumns(columns, first, halved, writer);
    weighOtherColumns(columns, first + halved, count, writer);
}

template <typename Writer> void writeColumns(const Columns& columns, const Writer& writer) {
    if (columns.taps.isDense() && columns.taps.taps() == 4)
        weighFourColumns(columns, writer);
    else
        weighAnyColumns(columns, writer);
}

void weighAllColumns(const MixBlock& source, const FixedTaps& taps, int index, Alpha alpha,
                     const MixBlock& out) {
    if (alpha == Alpha::opaque)
        writeColumns({source, taps, index}, MixWriter<Alpha::opaque>{out});
    else
        writeColumns({source, taps, index}, MixWriter<Alpha::any>{out});
}

void packAllColumns(const MixBlock& source, const FixedTaps& taps, int index, MutablePixelView out,
                    Storing storing) {
    constexpr std::size_t line = 64;
    const auto start = reinterpret_cast<std::uintptr_t>(out.data);
    if (storing == Storing::streamed && start % line == 0 && std::size_t(out.stride) % line == 0)
        writeColumns({source, taps, index}, PackWriter<Storing::streamed>{out});
    else
        writeColumns({source, taps, index}, PackWriter<Storing::cached>{out});
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(weighAllColumns);
HWY_EXPORT(packAllColumns);
HWY_EXPORT(mostSortable);

void weighColumns(const MixBlock& source, const FixedTaps& taps, int index, Alpha alpha,
                  const MixBlock& out) {
    HWY_DYNAMIC_DISPATCH(weighAllColumns)(source, taps, index, alpha, out);
}

void packColumns(const MixBlock& source, const FixedTaps& taps, int index, MutablePixelView out,
                 Storing storing) {
    HWY_DYNAMIC_DISPATCH(packAllColumns)(source, taps, index, out, storing);
}

int mostSortableReach() {
    return HWY_DYNAMIC_DISPATCH(mostSortable)();
}

} // namespace framora::raster
#endif
