#include "editor/render/raster/CubicKernels.h"

#include "editor/render/raster/AlphaBytes.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/CubicKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
// Four neighbours fill a vector of 32 bytes; narrower units take the plain kernel.
#if HWY_TARGET == HWY_SCALAR || HWY_MAX_BYTES < 32 || HWY_HAVE_SCALABLE

void interpolate(const SourceBox& box, CubicOrigin origin, const FootprintPlaces& places, std::size_t first,
                 const FootprintLine& line, std::size_t count, MixPixel* out) {
    plain::interpolateRow(box, origin, places, first, line, count, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::CappedTag<std::int16_t, 16>;
using Vector = hn::Vec<Lanes>;
constexpr Lanes lanes;
constexpr hn::Repartition<std::uint64_t, Lanes> wholePixels;
using Words = hn::CappedTag<std::int32_t, 8>;
constexpr Words words;

/// Where pixels are read, and with which entries of the weights.
struct Reading {
    alignas(32) std::int32_t pixel[FootprintPlaces::most];
    alignas(32) std::int32_t across[FootprintPlaces::most];
    alignas(32) std::int32_t down[FootprintPlaces::most];
};

/// Fills a reading; what is beyond the row is read from the box's first pixel.
HWY_INLINE void locate(const SourceBox& box, CubicOrigin origin, const FootprintPlaces& places,
                       std::size_t first, std::int32_t stepX, std::int32_t stepY, std::size_t count,
                       Reading& out) {
    constexpr int bits = CubicTaps::phaseBits;
    const auto fraction = hn::Set(words, CubicTaps::phases - 1);
    const auto left = hn::Set(words, stepX - origin.left * CubicTaps::phases);
    const auto top = hn::Set(words, stepY - origin.top * CubicTaps::phases);
    const auto lastColumn = hn::Set(words, (box.width - 3) * CubicTaps::phases - 1);
    const auto lastRow = hn::Set(words, (box.height - 3) * CubicTaps::phases - 1);
    const auto zero = hn::Zero(words);
    const auto width = hn::Set(words, box.width);
    for (std::size_t i = 0; i < count; i += hn::Lanes(words)) {
        const auto column =
            hn::Min(hn::Max(hn::Add(hn::LoadU(words, places.columns + first + i), left), zero), lastColumn);
        const auto row =
            hn::Min(hn::Max(hn::Add(hn::LoadU(words, places.rows + first + i), top), zero), lastRow);
        hn::Store(hn::Add(hn::Mul(hn::ShiftRight<bits>(row), width), hn::ShiftRight<bits>(column)), words,
                  out.pixel + i);
        hn::Store(hn::Add(hn::ShiftLeft<bits>(hn::LoadU(words, places.across + first + i)),
                          hn::And(column, fraction)),
                  words, out.across + i);
        hn::Store(
            hn::Add(hn::ShiftLeft<bits>(hn::LoadU(words, places.down + first + i)), hn::And(row, fraction)),
            words, out.down + i);
    }
    for (std::size_t i = count; i % 4 != 0; ++i)
        out.pixel[i] = out.across[i] = out.down[i] = 0;
}

using Bytes = hn::Repartition<std::uint8_t, Lanes>;
constexpr Bytes bytes;

/// What the weights of a place are spread with: each row's to all lanes, and each column's to its pixel's.
struct Spread {
    hn::Vec<Bytes> row[4];
    hn::Vec<Bytes> columns;
};

HWY_INLINE Spread makeSpread() {
    alignas(32) static constexpr std::uint8_t columns[32] = {0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3,
                                                             4, 5, 4, 5, 4, 5, 4, 5, 6, 7, 6, 7, 6, 7, 6, 7};
    const auto row = [](int index) HWY_ATTR {
        return hn::BitCast(bytes, hn::Set(lanes, std::int16_t((2 * index + 1) << 8 | 2 * index)));
    };
    return {{row(0), row(1), row(2), row(3)}, hn::Load(bytes, columns)};
}

/// The four columns of a pixel's neighbours, weighed: their sum is the pixel.
HWY_INLINE Vector columnsOf(const std::int16_t* pixels, std::ptrdiff_t stride, const std::int16_t* weights,
                            const Spread& spread, const Reading& at, std::size_t i) {
    const std::int16_t* from = pixels + std::ptrdiff_t(at.pixel[i]) * 4;
    const auto four = [&](std::int32_t entry) HWY_ATTR {
        std::uint64_t all = 0;
        std::memcpy(&all, weights + std::ptrdiff_t(entry) * 4, sizeof(all));
        return hn::BitCast(bytes, hn::Set(wholePixels, all));
    };
    const auto down = four(at.down[i]);
    const auto weighed = [&](int row) HWY_ATTR {
        return hn::MulFixedPoint15(hn::LoadU(lanes, from + row * stride),
                                   hn::BitCast(lanes, hn::TableLookupBytes(down, spread.row[row])));
    };
    const auto sum = hn::Add(hn::Add(weighed(0), weighed(1)), hn::Add(weighed(2), weighed(3)));
    return hn::MulFixedPoint15(sum,
                               hn::BitCast(lanes, hn::TableLookupBytes(four(at.across[i]), spread.columns)));
}

/// Four pixels.
HWY_INLINE Vector readFour(const std::int16_t* pixels, std::ptrdiff_t stride, const std::int16_t* weights,
                           const Spread& spread, const Reading& at, std::size_t i) {
    const auto pairOf = [](Vector a, Vector b) HWY_ATTR {
        const auto first = hn::BitCast(wholePixels, a);
        const auto second = hn::BitCast(wholePixels, b);
        return hn::Add(hn::BitCast(lanes, hn::InterleaveLower(wholePixels, first, second)),
                       hn::BitCast(lanes, hn::InterleaveUpper(wholePixels, first, second)));
    };
    const auto one = pairOf(columnsOf(pixels, stride, weights, spread, at, i),
                            columnsOf(pixels, stride, weights, spread, at, i + 1));
    const auto other = pairOf(columnsOf(pixels, stride, weights, spread, at, i + 2),
                              columnsOf(pixels, stride, weights, spread, at, i + 3));
    return hn::Add(hn::ConcatLowerLower(lanes, other, one), hn::ConcatUpperUpper(lanes, other, one));
}

void interpolate(const SourceBox& box, CubicOrigin origin, const FootprintPlaces& places, std::size_t first,
                 const FootprintLine& line, std::size_t count, MixPixel* out) {
    const auto alphaPattern = hn::LoadDup128(bytes, alphaBytes);
    const std::int16_t* weights = CubicTaps::weights();
    const Spread spread = makeSpread();
    const std::ptrdiff_t stride = std::ptrdiff_t(box.width) * 4;
    const auto* pixels = reinterpret_cast<const std::int16_t*>(box.pixels);
    Reading at;
    alignas(32) MixPixel sums[FootprintPlaces::most];
    auto* sum = reinterpret_cast<std::int16_t*>(sums);
    if (line.count == 1) {
        locate(box, origin, places, first, 0, 0, count, at);
    } else {
        std::fill_n(sums, FootprintPlaces::most, MixPixel{});
        const auto weight = hn::Set(lanes, line.weight());
        for (int reading = 0; reading < line.count; ++reading) {
            const Footprint step = line.reading({}, reading);
            locate(box, origin, places, first, step.column, step.row, count, at);
            for (std::size_t i = 0; i < count; i += 4)
                hn::Store(
                    hn::Add(hn::Load(lanes, sum + 4 * i),
                            hn::MulFixedPoint15(readFour(pixels, stride, weights, spread, at, i), weight)),
                    lanes, sum + 4 * i);
        }
    }
    for (std::size_t i = 0; i < count; i += 4) {
        const auto total =
            line.count == 1 ? readFour(pixels, stride, weights, spread, at, i) : hn::Load(lanes, sum + 4 * i);
        const auto positive = hn::Max(total, hn::Zero(lanes));
        const auto alpha =
            hn::BitCast(lanes, hn::TableLookupBytes(hn::BitCast(bytes, positive), alphaPattern));
        const auto valid =
            hn::ShiftLeft<2>(hn::Min(positive, hn::Min(alpha, hn::Set(lanes, std::int16_t(filterOne)))));
        if (i + 4 <= count) {
            hn::StoreU(valid, lanes, reinterpret_cast<std::int16_t*>(out + i));
        } else {
            hn::Store(valid, lanes, sum);
            std::copy_n(sums, count - i, out + i);
        }
    }
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(interpolate);

void interpolateRow(const SourceBox& box, CubicOrigin origin, const FootprintPlaces& places,
                    std::size_t first, const FootprintLine& line, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(interpolate)(box, origin, places, first, line, count, out);
}

} // namespace framora::raster
#endif
