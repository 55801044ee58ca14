#include "editor/render/raster/PngFilters.h"

// The file is compiled once for each instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/PngFilters.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

// One lane has no shuffles and no sums.
std::array<std::uint64_t, pngFilterCount> filterCosts(const PngRow& row) {
    return plain::pngFilterCosts(row);
}

void filterRow(PngFilter filter, const PngRow& row, std::uint8_t* out) {
    plain::applyPngFilter(filter, row, out);
}

void rgbFromPixels(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    plain::packRgb(pixels, count, out);
}

void rgbaFromPixels(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    plain::packRgba(pixels, count, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Never more than the padding holds, or a sample has.
using Bytes = hn::CappedTag<std::uint8_t, pngCostSample>;
static_assert(pngCostSample <= pngRowPadding && pngCostStep % pngCostSample == 0);
using V = hn::Vec<Bytes>;

V distance(V a, V b) {
    return hn::Sub(hn::Max(a, b), hn::Min(a, b));
}

V average(Bytes d, V left, V up) {
    // The instruction rounds up; the filter rounds down.
    return hn::Sub(hn::AverageRound(left, up), hn::And(hn::Xor(left, up), hn::Set(d, 1)));
}

V paeth(V left, V up, V upLeft) {
    // The distances of left + up - upLeft to each. The last saturates, which no comparison notices.
    const V toLeft = distance(up, upLeft);
    const V toUp = distance(left, upLeft);
    const auto upIsMore = hn::Eq(hn::Max(up, upLeft), up);
    const auto leftIsMore = hn::Eq(hn::Max(left, upLeft), left);
    const V sameSide = hn::SaturatedAdd(toLeft, toUp);
    const V between = distance(toLeft, toUp);
    const auto oneSided = hn::Or(hn::And(upIsMore, leftIsMore), hn::Not(hn::Or(upIsMore, leftIsMore)));
    const V toUpLeft = hn::IfThenElse(oneSided, sameSide, between);
    const V upOrUpLeft = hn::IfThenElse(hn::Eq(hn::Min(toUp, toUpLeft), toUp), up, upLeft);
    const V least = hn::Min(toUp, toUpLeft);
    return hn::IfThenElse(hn::Eq(hn::Min(toLeft, least), toLeft), left, upOrUpLeft);
}

V residualBits(Bytes d, V residual) {
    alignas(16) static constexpr std::uint8_t ofSmall[16] = {0, 3, 4, 4, 5, 5, 5, 5, 6, 6, 6, 6, 6, 6, 6, 6};
    const V size = hn::Min(residual, hn::Sub(hn::Zero(d), residual));
    const V bits = hn::TableLookupBytes(hn::LoadDup128(d, ofSmall), hn::Min(size, hn::Set(d, 15)));
    const V over15 = hn::Min(hn::SaturatedSub(size, hn::Set(d, 15)), hn::Set(d, 1));
    const V over31 = hn::Min(hn::SaturatedSub(size, hn::Set(d, 31)), hn::Set(d, 1));
    return hn::Add(bits, hn::Add(over15, over31));
}

std::array<std::uint64_t, pngFilterCount> filterCosts(const PngRow& row) {
    const Bytes d;
    const hn::Repartition<std::uint64_t, Bytes> d64;
    const std::size_t skipped = row.size > wholePngRow ? pngCostStep - pngCostSample : 0;
    auto none = hn::Zero(d64);
    auto sub = none;
    auto up = none;
    auto averaged = none;
    auto predicted = none;
    const std::size_t lanes = hn::Lanes(d);
    for (std::size_t i = 0; i < row.size;
         i += lanes + ((i + lanes) % pngCostStep == pngCostSample ? skipped : 0)) {
        V value = hn::LoadU(d, row.data + i);
        V left = hn::LoadU(d, row.data + i - row.pixelBytes);
        V above = hn::LoadU(d, row.above + i);
        V upLeft = hn::LoadU(d, row.above + i - row.pixelBytes);
        if (row.size - i < lanes) { // zeros cost nothing under any filter
            const auto mask = hn::FirstN(d, row.size - i);
            value = hn::IfThenElseZero(mask, value);
            left = hn::IfThenElseZero(mask, left);
            above = hn::IfThenElseZero(mask, above);
            upLeft = hn::IfThenElseZero(mask, upLeft);
        }
        none = hn::Add(none, hn::SumsOf8(residualBits(d, value)));
        sub = hn::Add(sub, hn::SumsOf8(residualBits(d, hn::Sub(value, left))));
        up = hn::Add(up, hn::SumsOf8(residualBits(d, hn::Sub(value, above))));
        averaged = hn::Add(averaged, hn::SumsOf8(residualBits(d, hn::Sub(value, average(d, left, above)))));
        predicted =
            hn::Add(predicted, hn::SumsOf8(residualBits(d, hn::Sub(value, paeth(left, above, upLeft)))));
    }
    const auto sum = [&](auto lanesOf64) { return hn::GetLane(hn::SumOfLanes(d64, lanesOf64)); };
    return {sum(none), sum(sub), sum(up), sum(averaged), sum(predicted)};
}

template <typename Predict> void filterWith(const PngRow& row, std::uint8_t* out, const Predict& predict) {
    const Bytes d;
    for (std::size_t i = 0; i < row.size; i += hn::Lanes(d))
        hn::StoreU(hn::Sub(hn::LoadU(d, row.data + i), predict(d, i)), d, out + i);
}

void filterRow(PngFilter filter, const PngRow& row, std::uint8_t* out) {
    const auto left = [&](Bytes d, std::size_t i) { return hn::LoadU(d, row.data + i - row.pixelBytes); };
    const auto up = [&](Bytes d, std::size_t i) { return hn::LoadU(d, row.above + i); };
    const auto upLeft = [&](Bytes d, std::size_t i) { return hn::LoadU(d, row.above + i - row.pixelBytes); };
    switch (filter) {
    case PngFilter::none:
        return filterWith(row, out, [](Bytes d, std::size_t) { return hn::Zero(d); });
    case PngFilter::sub:
        return filterWith(row, out, left);
    case PngFilter::up:
        return filterWith(row, out, up);
    case PngFilter::average:
        return filterWith(row, out, [&](Bytes d, std::size_t i) { return average(d, left(d, i), up(d, i)); });
    case PngFilter::paeth:
        return filterWith(row, out,
                          [&](Bytes d, std::size_t i) { return paeth(left(d, i), up(d, i), upLeft(d, i)); });
    }
}

void rgbFromPixels(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    // Four pixels to the start of each 16 bytes, then these together.
    alignas(16) static constexpr std::uint8_t order[16] = {2, 1,  0,  6,  5,    4,    10,   9,
                                                           8, 14, 13, 12, 0x80, 0x80, 0x80, 0x80};
    alignas(64) static constexpr std::uint32_t words[16] = {0,  1,  2,  4,  5, 6, 8,  9,
                                                            10, 12, 13, 14, 3, 7, 11, 15};
    const hn::CappedTag<std::uint32_t, 16> d;
    const hn::Repartition<std::uint8_t, decltype(d)> bytes;
    const std::size_t lanes = hn::Lanes(d);
    const auto inFours = hn::LoadDup128(bytes, order);
    alignas(64) std::uint32_t places[16];
    std::size_t place = 0;
    for (const std::uint32_t word : words)
        if (word < lanes)
            places[place++] = word;
    const auto together = hn::SetTableIndices(d, places);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto some = hn::BitCast(bytes, hn::LoadU(d, pixels + i));
        const auto fours = hn::BitCast(d, hn::TableLookupBytesOr0(some, inFours));
        hn::StoreU(hn::BitCast(bytes, hn::TableLookupLanes(fours, together)), bytes, out + 3 * i);
    }
    plain::packRgb(pixels + i, count - i, out + 3 * i);
}

void rgbaFromPixels(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    alignas(16) static constexpr std::uint8_t order[16] = {2,  1, 0, 3,  6,  5,  4,  7,
                                                           10, 9, 8, 11, 14, 13, 12, 15};
    const hn::CappedTag<std::uint32_t, 16> words;
    const hn::Repartition<std::uint8_t, decltype(words)> bytes;
    const auto indices = hn::LoadDup128(bytes, order);
    const auto opaque = hn::Set(words, 255u);
    const std::size_t lanes = hn::Lanes(words);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        // Pixels are opaque or clear, but for those on an edge.
        const auto some = hn::LoadU(words, pixels + i);
        const auto isPlain = hn::Or(hn::Eq(hn::ShiftRight<24>(some), opaque), hn::Eq(some, hn::Zero(words)));
        if (hn::AllTrue(words, isPlain))
            hn::StoreU(hn::TableLookupBytes(hn::BitCast(bytes, some), indices), bytes, out + 4 * i);
        else
            plain::packRgba(pixels + i, lanes, out + 4 * i);
    }
    plain::packRgba(pixels + i, count - i, out + 4 * i);
}

#endif

} // namespace
} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(filterCosts);
HWY_EXPORT(filterRow);
HWY_EXPORT(rgbFromPixels);
HWY_EXPORT(rgbaFromPixels);

std::array<std::uint64_t, pngFilterCount> pngFilterCosts(const PngRow& row) {
    return HWY_DYNAMIC_DISPATCH(filterCosts)(row);
}

void applyPngFilter(PngFilter filter, const PngRow& row, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(filterRow)(filter, row, out);
}

void packRgb(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(rgbFromPixels)(pixels, count, out);
}

void packRgba(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(rgbaFromPixels)(pixels, count, out);
}

} // namespace framora::raster
#endif
