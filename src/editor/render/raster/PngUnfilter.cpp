#include "editor/render/raster/PngUnfilter.h"

#include <cstring>

// The file is compiled once for each instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/PngUnfilter.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

// One lane does not hold a pixel.
void samplesOf(PngFilter filter, const FilteredPngRow& row) {
    plain::undoPngFilter(filter, row);
}

void pixelsFromRgb(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    plain::unpackRgb(samples, count, pixels);
}

void pixelsFromRgba(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    plain::unpackRgba(samples, count, pixels);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Never more than the padding holds.
using Bytes = hn::CappedTag<std::uint8_t, 64>;
using Pixel = hn::FixedTag<std::uint8_t, 4>;
using Wide = hn::FixedTag<std::int16_t, 4>;

void addAbove(const FilteredPngRow& row) {
    const Bytes d;
    for (std::size_t i = 0; i < row.size; i += hn::Lanes(d))
        hn::StoreU(hn::Add(hn::LoadU(d, row.data + i), hn::LoadU(d, row.above + i)), d, row.out + i);
}

// A pixel of three bytes is read and written as four: the next one, or the padding, puts the last byte right.
template <std::size_t pixelBytes> void addLeft(const FilteredPngRow& row) {
    const Pixel d;
    auto left = hn::Zero(d);
    for (std::size_t i = 0; i < row.size; i += pixelBytes) {
        left = hn::Add(left, hn::LoadU(d, row.data + i));
        hn::StoreU(left, d, row.out + i);
    }
}

template <std::size_t pixelBytes> void addAverage(const FilteredPngRow& row) {
    const Pixel d;
    const auto one = hn::Set(d, 1);
    auto left = hn::Zero(d);
    for (std::size_t i = 0; i < row.size; i += pixelBytes) {
        const auto up = hn::LoadU(d, row.above + i);
        // The instruction rounds up; the filter rounds down.
        const auto mean = hn::Sub(hn::AverageRound(left, up), hn::And(hn::Xor(left, up), one));
        left = hn::Add(hn::LoadU(d, row.data + i), mean);
        hn::StoreU(left, d, row.out + i);
    }
}

// Each pixel waits for the one on its left, so what counts is how little lies between the two: all three sums
// are made beforehand, and one is chosen by signs, which are at hand sooner than comparisons.
template <std::size_t pixelBytes> void addPaeth(const FilteredPngRow& row) {
    const Pixel d;
    const Wide wide;
    const auto byte = hn::Set(wide, 255);
    auto left = hn::Zero(wide);
    auto upLeft = hn::Zero(wide);
    for (std::size_t i = 0; i < row.size; i += pixelBytes) {
        const auto up = hn::PromoteTo(wide, hn::LoadU(d, row.above + i));
        const auto value = hn::PromoteTo(wide, hn::LoadU(d, row.data + i));
        const auto plusLeft = hn::And(hn::Add(value, left), byte);
        const auto plusUp = hn::And(hn::Add(value, up), byte);
        const auto plusUpLeft = hn::And(hn::Add(value, upLeft), byte);
        // left + up - upLeft less each of the three.
        const auto lessLeft = hn::Sub(up, upLeft);
        const auto lessUp = hn::Sub(left, upLeft);
        const auto toUpLeft = hn::Abs(hn::Add(lessLeft, lessUp));
        const auto toLeft = hn::Abs(lessLeft);
        const auto toUp = hn::Abs(lessUp);
        const auto isNotUp = hn::BroadcastSignBit(hn::Sub(toUpLeft, toUp));
        const auto isNotLeft = hn::BroadcastSignBit(hn::Sub(hn::Min(toUp, toUpLeft), toLeft));
        left = hn::IfVecThenElse(isNotLeft, hn::IfVecThenElse(isNotUp, plusUpLeft, plusUp), plusLeft);
        hn::StoreU(hn::DemoteTo(d, left), d, row.out + i);
        upLeft = up;
    }
}

template <std::size_t pixelBytes> void addPredicted(PngFilter filter, const FilteredPngRow& row) {
    switch (filter) {
    case PngFilter::sub:
        return addLeft<pixelBytes>(row);
    case PngFilter::average:
        return addAverage<pixelBytes>(row);
    case PngFilter::paeth:
        return addPaeth<pixelBytes>(row);
    case PngFilter::none:
    case PngFilter::up:
        break;
    }
}

void samplesOf(PngFilter filter, const FilteredPngRow& row) {
    if (filter == PngFilter::none)
        std::memcpy(row.out, row.data, row.size);
    else if (filter == PngFilter::up)
        addAbove(row);
    else if (row.pixelBytes == 3)
        addPredicted<3>(filter, row);
    else
        addPredicted<4>(filter, row);
}

void pixelsFromRgb(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    alignas(16) static constexpr std::uint8_t order[16] = {2, 1, 0, 0x80, 5,  4,  3, 0x80,
                                                           8, 7, 6, 0x80, 11, 10, 9, 0x80};
    const hn::Full128<std::uint8_t> d;
    const hn::Repartition<std::uint32_t, decltype(d)> d32;
    const auto indices = hn::Load(d, order);
    const auto opaque = hn::Set(d32, 0xff000000u);
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const auto four = hn::TableLookupBytesOr0(hn::LoadU(d, samples + 3 * i), indices);
        hn::StoreU(hn::Or(hn::BitCast(d32, four), opaque), d32, pixels + i);
    }
    plain::unpackRgb(samples + 3 * i, count - i, pixels + i);
}

void pixelsFromRgba(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    alignas(16) static constexpr std::uint8_t order[16] = {2,  1, 0, 3,  6,  5,  4,  7,
                                                           10, 9, 8, 11, 14, 13, 12, 15};
    // Each channel's factor: its pixel's alpha, for the alpha itself 255.
    alignas(16) static constexpr std::uint8_t spread[16] = {3,  3,  3,  0x80, 7,  7,  7,  0x80,
                                                            11, 11, 11, 0x80, 15, 15, 15, 0x80};
    const hn::Full128<std::uint8_t> d;
    const hn::Repartition<std::uint32_t, decltype(d)> d32;
    const hn::Repartition<std::uint16_t, decltype(d)> d16;
    const hn::Half<decltype(d)> half;
    const auto inOrder = hn::Load(d, order);
    const auto alphas = hn::Load(d, spread);
    const auto whole = hn::BitCast(d, hn::Set(d32, 0xff000000u));
    const auto rounding = hn::Set(d16, 0x80);
    const auto timesAlpha = [&](auto colours, auto factors) {
        const auto product = hn::Add(hn::Mul(colours, factors), rounding);
        return hn::ShiftRight<8>(hn::Add(product, hn::ShiftRight<8>(product)));
    };
    const auto toBytes = [&](auto colours) {
        return hn::DemoteTo(half, hn::BitCast(hn::RebindToSigned<decltype(d16)>(), colours));
    };
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const auto four = hn::LoadU(d, samples + 4 * i);
        const auto colours = hn::TableLookupBytes(four, inOrder);
        const auto factors = hn::Or(hn::TableLookupBytesOr0(four, alphas), whole);
        const auto low = timesAlpha(hn::PromoteTo(d16, hn::LowerHalf(half, colours)),
                                    hn::PromoteTo(d16, hn::LowerHalf(half, factors)));
        const auto high = timesAlpha(hn::PromoteTo(d16, hn::UpperHalf(half, colours)),
                                     hn::PromoteTo(d16, hn::UpperHalf(half, factors)));
        hn::StoreU(hn::Combine(d, toBytes(high), toBytes(low)), d,
                   reinterpret_cast<std::uint8_t*>(pixels + i));
    }
    plain::unpackRgba(samples + 4 * i, count - i, pixels + i);
}

#endif

} // namespace
} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(samplesOf);
HWY_EXPORT(pixelsFromRgb);
HWY_EXPORT(pixelsFromRgba);

void undoPngFilter(PngFilter filter, const FilteredPngRow& row) {
    HWY_DYNAMIC_DISPATCH(samplesOf)(filter, row);
}

void unpackRgb(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    HWY_DYNAMIC_DISPATCH(pixelsFromRgb)(samples, count, pixels);
}

void unpackRgba(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    HWY_DYNAMIC_DISPATCH(pixelsFromRgba)(samples, count, pixels);
}

} // namespace framora::raster
#endif
