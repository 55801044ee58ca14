// What the column kernels of scaling write. Compiled once for every vector unit.

#include "editor/render/raster/ResampleKernels.h"

#include <cstring>
#include <hwy/highway.h>

#if defined(FRAMORA_RESAMPLE_WRITERS) == defined(HWY_TARGET_TOGGLE)
#ifdef FRAMORA_RESAMPLE_WRITERS
#undef FRAMORA_RESAMPLE_WRITERS
#else
#define FRAMORA_RESAMPLE_WRITERS
#endif

#include "editor/render/raster/MixVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET != HWY_SCALAR && !HWY_HAVE_SCALABLE

/// The least that a valid sum of opaque pixels is: alpha is one.
HWY_INLINE Vector leastOpaque() {
    alignas(16) static constexpr std::int16_t least[8] = {0, 0, 0, filterOne, 0, 0, 0, filterOne};
    return hn::LoadDup128(lanes, least);
}

/// Writes sums as pixels being mixed.
template <Alpha alpha> struct MixWriter {
    MixBlock out;

    /// Valid pixels of these sums, 0...mixOne.
    static HWY_INLINE Vector clamped(Vector sums) {
        const Vector one = hn::Set(lanes, std::int16_t(filterOne));
        if constexpr (alpha == Alpha::opaque) {
            return hn::ShiftLeft<2>(hn::Min(hn::Max(sums, leastOpaque()), one));
        } else {
            const auto positive = hn::Max(sums, hn::Zero(lanes));
            return hn::ShiftLeft<2>(hn::Min(positive, hn::Min(alphas(positive), one)));
        }
    }
    /// A vector, or the first `count` pixels of it.
    static HWY_INLINE void write(Vector sums, MixPixel* to) { store(clamped(sums), to); }
    static HWY_INLINE void writeFirst(Vector sums, MixPixel* to, int count) {
        alignas(64) std::int16_t part[32];
        hn::Store(clamped(sums), lanes, part);
        std::memcpy(to, part, std::size_t(count) * sizeof *to);
    }
    /// The pixels of both vectors in turn.
    static HWY_INLINE void writeInTurn(Vector evenSums, Vector oddSums, MixPixel* to) {
        const hn::Repartition<std::uint64_t, Lanes> words;
        const auto even = hn::BitCast(words, clamped(evenSums));
        const auto odd = hn::BitCast(words, clamped(oddSums));
        auto* pixels = reinterpret_cast<std::uint64_t*>(to);
#if HWY_MAX_BYTES == 64
        alignas(64) static constexpr std::uint64_t lower[8] = {0, 0, 1, 1, 2, 2, 3, 3};
        alignas(64) static constexpr std::uint64_t upper[8] = {4, 4, 5, 5, 6, 6, 7, 7};
        constexpr std::uint64_t all = ~std::uint64_t(0);
        alignas(64) static constexpr std::uint64_t everySecond[8] = {0, all, 0, all, 0, all, 0, all};
        const auto isOdd = hn::MaskFromVec(hn::Load(words, everySecond));
        const auto sorted = [&](const std::uint64_t* pattern) HWY_ATTR {
            const auto order = hn::SetTableIndices(words, pattern);
            return hn::IfThenElse(isOdd, hn::TableLookupLanes(odd, order), hn::TableLookupLanes(even, order));
        };
        hn::StoreU(sorted(lower), words, pixels);
        hn::StoreU(sorted(upper), words, pixels + 8);
#else
        hn::StoreInterleaved2(even, odd, words, pixels);
#endif
    }
};

/// Rounds sums of opaque pixels to those of a picture. Streamed rows start where a line of the cache does.
template <Storing storing> struct PackWriter {
    MutablePixelView out;

    static constexpr int shift = sourceShift - 2;
    static constexpr int half = 1 << (shift - 1);

    template <typename Tag> static HWY_INLINE void store(hn::Vec<Tag> pixels, Tag tag, std::uint32_t* to) {
        if constexpr (storing == Storing::streamed && HWY_MAX_BYTES >= 32)
            hn::Stream(pixels, tag, reinterpret_cast<std::uint8_t*>(to));
        else
            hn::StoreU(pixels, tag, reinterpret_cast<std::uint8_t*>(to));
    }
    static HWY_INLINE auto packed(Vector sums) {
        const hn::Rebind<std::uint8_t, Lanes> bytes;
        const Vector raised = hn::Add(hn::Max(sums, leastOpaque()), hn::Set(lanes, std::int16_t(half)));
        return hn::DemoteTo(bytes, hn::ShiftRight<shift>(raised));
    }
    static HWY_INLINE void write(Vector sums, std::uint32_t* to) {
        store(packed(sums), hn::Rebind<std::uint8_t, Lanes>(), to);
    }
    static HWY_INLINE void writeFirst(Vector sums, std::uint32_t* to, int count) {
        alignas(32) std::uint32_t part[8];
        hn::Store(packed(sums), hn::Rebind<std::uint8_t, Lanes>(), reinterpret_cast<std::uint8_t*>(part));
        std::memcpy(to, part, std::size_t(count) * sizeof *to);
    }
    static HWY_INLINE void writeInTurn(Vector even, Vector odd, std::uint32_t* to) {
        // Sums end at the largest number: a channel that would be above 255 has eight bits set, and each has
        // two more above them.
        const auto raised = [](Vector sums) HWY_ATTR {
            constexpr int room = 32767 - ((256 << shift) - 1);
            return hn::SaturatedAdd(hn::Max(sums, leastOpaque()), hn::Set(lanes, std::int16_t(room + half)));
        };
        // Each pair of bytes becomes a channel of an even pixel and the same of the odd one behind it.
        const hn::Repartition<std::uint8_t, Lanes> bytes;
        const auto low = hn::BitCast(bytes, hn::ShiftRight<shift>(raised(even)));
        const auto high = hn::BitCast(bytes, hn::ShiftLeft<8 - shift>(raised(odd)));
        alignas(16) static constexpr std::uint8_t order[16] = {0, 2,  4,  6,  1, 3,  5,  7,
                                                               8, 10, 12, 14, 9, 11, 13, 15};
        store(hn::TableLookupBytes(hn::OddEven(high, low), hn::LoadDup128(bytes, order)), bytes, to);
    }
};

#endif
} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
