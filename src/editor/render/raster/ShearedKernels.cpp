#include "editor/render/raster/ShearedKernels.h"

#include "editor/render/raster/AlphaBytes.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/ShearedKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
// Four neighbours fill a vector of 32 bytes; narrower units take the plain kernels.
#if HWY_TARGET == HWY_SCALAR || HWY_MAX_BYTES < 32 || HWY_HAVE_SCALABLE

void interpolateShearedRows(const ColumnBox& box, const ShearedRow* rows, std::size_t rowCount,
                            const ShearedPart& part, MixPixel* out, std::ptrdiff_t stride) {
    plain::interpolateSheared(box, rows, rowCount, part, out, stride);
}
void widenAllColumns(const std::uint32_t* const* rows, std::size_t rowCount, std::size_t columnCount,
                     MixPixel* out) {
    plain::widenColumns(rows, rowCount, columnCount, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 16>;
using Vector = hn::Vec<Floats>;
constexpr Floats floats;
using Words = hn::RebindToSigned<Floats>;
constexpr Words words;
using Lanes = hn::CappedTag<std::int16_t, 16>;
using Pixels = hn::Vec<Lanes>;
constexpr Lanes lanes;
constexpr hn::Repartition<std::uint8_t, Lanes> bytes;
constexpr hn::Repartition<std::uint64_t, Lanes> wholePixels;

HWY_INLINE hn::Vec<Words> widthIndex(Vector square, hn::Vec<Words> most) {
    constexpr int fractionBits = 23 - FootprintTaps::widthBits;
    constexpr std::int32_t bitsOfOne = 0x3f800000;
    const auto bits = hn::BitCast(words, hn::Max(square, hn::Set(floats, 1)));
    const auto rounded =
        hn::Add(hn::Sub(bits, hn::Set(words, bitsOfOne)), hn::Set(words, 1 << (fractionBits - 1)));
    return hn::Min(hn::ShiftRight<fractionBits>(rounded), most);
}

/// Where something is read, counted in pixels, in the upper half, and with which entry of the weights.
using Reading = std::uint32_t;
HWY_INLINE hn::Vec<Words> readingOf(hn::Vec<Words> pixel, hn::Vec<Words> entry) {
    return hn::Or(hn::ShiftLeft<16>(pixel), entry);
}

/// The readings of one row.
struct Places {
    int firstColumn; ///< The columns that its pixels read.
    int endColumn;
    alignas(64) Reading pixels[FootprintPlaces::most + 16];
    alignas(64) Reading columns[ColumnBox::mostColumns + 32];
};

HWY_INLINE void placePixels(const ColumnBox& box, const ShearedRow& row, const ShearedPart& part,
                            Places& out) {
    constexpr int bits = CubicTaps::phaseBits;
    constexpr auto phases = float(CubicTaps::phases);
    const auto all = [](float value) HWY_ATTR { return hn::Set(floats, value); };
    // Places in phases: what is doubled is as exact as before.
    const Vector x = all(row.x * phases);
    const Vector stepX = all(row.stepX * phases);
    const Vector stepW = all(row.stepW);
    const int start = part.column * CubicTaps::phases;
    const Vector lowest = all(float(start));
    const Vector highest = all(float(start + (box.columns - 3) * CubicTaps::phases - 1));
    // What is added to this one loses its fraction, to the nearest, and is an integer in the lower bits.
    constexpr float roundingOne = 3 << 22;
    constexpr std::int32_t roundingBits = 0x4b400000;
    const auto fraction = hn::Set(words, CubicTaps::phases - 1);
    const bool isNearlyEven = row.isNearlyEven();
    const std::size_t step = hn::Lanes(floats);
    const std::size_t first = part.first - part.first % step;
    Vector index = hn::Iota(floats, float(first));
    for (std::size_t i = first; i < part.end; i += step, index = hn::Add(index, all(float(step)))) {
        const Vector farther = hn::Mul(index, stepW);
        Vector near = hn::Sub(all(1), farther);
        if (isNearlyEven)
            for (int power = 0; power < 3; ++power)
                near = hn::Sub(all(1), hn::Mul(farther, near));
        else
            near = hn::Div(all(1), hn::Add(all(1), farther));
        const Vector at = hn::Mul(hn::Add(x, hn::Mul(index, stepX)), near);
        const Vector inside = hn::Min(hn::Max(at, lowest), highest);
        const auto place = hn::Sub(hn::BitCast(words, hn::Add(inside, all(roundingOne))),
                                   hn::Set(words, roundingBits + start));
        auto entry = hn::And(place, fraction);
        if (part.most > 0) {
            const Vector atX = hn::Mul(at, all(1 / phases));
            const auto slope = [&](float grow, float depth) HWY_ATTR {
                return hn::Mul(hn::Sub(all(grow), hn::Mul(atX, all(depth))), near);
            };
            const Vector across = slope(row.stepX, row.stepW);
            const Vector down = slope(row.downX, row.downW);
            const auto width =
                widthIndex(hn::Add(hn::Mul(across, across), hn::Mul(down, down)), hn::Set(words, part.most));
            entry = hn::Or(hn::ShiftLeft<bits>(width), entry);
        }
        hn::Store(readingOf(hn::ShiftRight<bits>(place), entry), words,
                  reinterpret_cast<std::int32_t*>(out.pixels + i));
    }
    // Places go on from one end to the other, but for rounding.
    const int left = int(out.pixels[part.first] >> 16);
    const int right = int(out.pixels[part.end - 1] >> 16);
    out.firstColumn = std::max(std::min(left, right) - 1, 0);
    out.endColumn = std::min(std::max(left, right) + 5, box.columns);
}

/// The readings of `count` columns from out.firstColumn on.
HWY_INLINE void placeColumns(const ColumnBox& box, const ShearedRow& row, const ShearedPart& part, int count,
                             Places& out) {
    constexpr int bits = CubicTaps::phaseBits;
    const auto step = std::int32_t(hn::Lanes(words));
    const auto top = hn::Set(words, part.row * CubicTaps::phases);
    const auto last = hn::Set(words, (box.rows - 3) * CubicTaps::phases - 1);
    const auto fraction = hn::Set(words, CubicTaps::phases - 1);
    const int first = out.firstColumn;
    const auto number = hn::Iota(words, 0);
    auto line = hn::Add(hn::Set(words, row.line + (first + part.column) * row.lineStep),
                        hn::Mul(number, hn::Set(words, row.lineStep)));
    auto above = hn::Add(hn::Set(words, first * box.rows), hn::Mul(number, hn::Set(words, box.rows)));
    const auto lineStep = hn::Set(words, step * row.lineStep);
    const auto aboveStep = hn::Set(words, step * box.rows);
    auto column = hn::Add(number, hn::Set(words, first + part.column));
    for (int i = 0; i < count; i += step) {
        const auto place =
            hn::Min(hn::Max(hn::Sub(hn::ShiftRight<ShearedRow::lineBits>(line), top), hn::Zero(words)), last);
        auto entry = hn::And(place, fraction);
        if (part.most > 0) {
            const Vector square =
                hn::Add(hn::Set(floats, row.square),
                        hn::Mul(hn::ConvertTo(floats, column), hn::Set(floats, row.squareStep)));
            entry = hn::Or(hn::ShiftLeft<bits>(widthIndex(square, hn::Set(words, part.most))), entry);
            column = hn::Add(column, hn::Set(words, step));
        }
        hn::StoreU(readingOf(hn::Add(above, hn::ShiftRight<bits>(place)), entry), words,
                   reinterpret_cast<std::int32_t*>(out.columns + i));
        line = hn::Add(line, lineStep);
        above = hn::Add(above, aboveStep);
    }
}

/// The weighed pixels of a reading: their sum is its pixel.
HWY_INLINE Pixels weighed(const std::int16_t* pixels, Reading at, const std::int16_t* weights,
                          hn::Vec<decltype(bytes)> spread) {
    std::uint64_t four = 0;
    std::memcpy(&four, weights + std::ptrdiff_t(at & 0xffff) * 4, sizeof(four));
    return hn::MulFixedPoint15(
        hn::LoadU(lanes, pixels + std::ptrdiff_t(at >> 16) * 4),
        hn::BitCast(lanes, hn::TableLookupBytes(hn::BitCast(bytes, hn::Set(wholePixels, four)), spread)));
}

/// The sums of four vectors' pixels.
HWY_INLINE Pixels sums(Pixels a, Pixels b, Pixels c, Pixels d) {
    const auto pairOf = [](Pixels one, Pixels other) HWY_ATTR {
        const auto first = hn::BitCast(wholePixels, one);
        const auto second = hn::BitCast(wholePixels, other);
        return hn::Add(hn::BitCast(lanes, hn::InterleaveLower(wholePixels, first, second)),
                       hn::BitCast(lanes, hn::InterleaveUpper(wholePixels, first, second)));
    };
    const Pixels one = pairOf(a, b);
    const Pixels other = pairOf(c, d);
    return hn::Add(hn::ConcatLowerLower(lanes, other, one), hn::ConcatUpperUpper(lanes, other, one));
}

void interpolateShearedRows(const ColumnBox& box, const ShearedRow* rows, std::size_t rowCount,
                            const ShearedPart& part, MixPixel* out, std::ptrdiff_t stride) {
    alignas(32) static constexpr std::uint8_t spreadBytes[32] = {
        0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3, 4, 5, 4, 5, 4, 5, 4, 5, 6, 7, 6, 7, 6, 7, 6, 7};
    const auto spread = hn::Load(bytes, spreadBytes);
    const auto alphaPattern = hn::LoadDup128(bytes, alphaBytes);
    const std::int16_t* weights = CubicTaps::weights();
    const auto* pixels = reinterpret_cast<const std::int16_t*>(box.pixels);
    Places places[mostShearedRows];
    // As many columns in every row: a loop that ends elsewhere each time is guessed wrong.
    int columns = 0;
    for (std::size_t y = 0; y < rowCount; ++y) {
        placePixels(box, rows[y], part, places[y]);
        columns = std::max(columns, places[y].endColumn - places[y].firstColumn);
    }
    for (std::size_t y = 0; y < rowCount; ++y) {
        places[y].firstColumn = std::min(places[y].firstColumn, box.columns - columns);
        placeColumns(box, rows[y], part, columns, places[y]);
    }
    // All lines before any is read: what was only just written is read late.
    constexpr std::size_t lineStride = 4 * (ColumnBox::mostColumns + 4);
    alignas(32) std::int16_t lines[mostShearedRows * lineStride];
    for (std::size_t y = 0; y < rowCount; ++y) {
        const Reading* crossing = places[y].columns;
        std::int16_t* first = lines + y * lineStride + 4 * places[y].firstColumn;
        for (int i = 0; i < columns; i += 4) {
            const auto one = [&](int offset)
                                 HWY_ATTR { return weighed(pixels, crossing[i + offset], weights, spread); };
            hn::StoreU(sums(one(0), one(1), one(2), one(3)), lanes, first + 4 * i);
        }
    }
    for (std::size_t y = 0; y < rowCount; ++y, out += stride) {
        const std::int16_t* line = lines + y * lineStride;
        const Reading* reading = places[y].pixels + part.first;
        const auto valid = [&](Pixels colors) HWY_ATTR {
            const Pixels positive = hn::Max(colors, hn::Zero(lanes));
            const Pixels alpha =
                hn::BitCast(lanes, hn::TableLookupBytes(hn::BitCast(bytes, positive), alphaPattern));
            return hn::ShiftLeft<2>(
                hn::Min(positive, hn::Min(alpha, hn::Set(lanes, std::int16_t(filterOne)))));
        };
        const std::size_t count = part.end - part.first;
        std::size_t i = 0;
        for (; i + 4 <= count; i += 4) {
            const auto one = [&](int offset) HWY_ATTR {
                return weighed(line, reading[i + std::size_t(offset)], weights, spread);
            };
            hn::StoreU(valid(sums(one(0), one(1), one(2), one(3))), lanes,
                       reinterpret_cast<std::int16_t*>(out + i));
        }
        if (i < count) {
            const auto one = [&](std::size_t offset) HWY_ATTR {
                return weighed(line, reading[std::min(i + offset, count - 1)], weights, spread);
            };
            alignas(32) MixPixel last[4];
            hn::Store(valid(sums(one(0), one(1), one(2), one(3))), lanes,
                      reinterpret_cast<std::int16_t*>(last));
            std::copy_n(last, count - i, out + i);
        }
    }
}

void widenAllColumns(const std::uint32_t* const* rows, std::size_t rowCount, std::size_t columnCount,
                     MixPixel* out) {
    if (columnCount < 4) {
        plain::widenColumns(rows, rowCount, columnCount, out);
        return;
    }
    const hn::CappedTag<std::uint32_t, 4> four;
    const hn::Repartition<std::uint64_t, decltype(four)> two;
    const hn::Repartition<std::uint8_t, decltype(four)> narrow;
    const auto widenFour = [&](std::size_t x, std::size_t y) HWY_ATTR {
        const auto a = hn::LoadU(four, rows[y] + x);
        const auto b = hn::LoadU(four, rows[y + 1] + x);
        const auto c = hn::LoadU(four, rows[y + 2] + x);
        const auto d = hn::LoadU(four, rows[y + 3] + x);
        const auto abLow = hn::BitCast(two, hn::InterleaveLower(four, a, b));
        const auto abHigh = hn::BitCast(two, hn::InterleaveUpper(four, a, b));
        const auto cdLow = hn::BitCast(two, hn::InterleaveLower(four, c, d));
        const auto cdHigh = hn::BitCast(two, hn::InterleaveUpper(four, c, d));
        const auto store = [&](auto column, std::size_t index) HWY_ATTR {
            hn::StoreU(hn::ShiftLeft<sourceShift>(hn::PromoteTo(lanes, hn::BitCast(narrow, column))), lanes,
                       reinterpret_cast<std::int16_t*>(out + (x + index) * rowCount + y));
        };
        store(hn::InterleaveLower(two, abLow, cdLow), 0);
        store(hn::InterleaveUpper(two, abLow, cdLow), 1);
        store(hn::InterleaveLower(two, abHigh, cdHigh), 2);
        store(hn::InterleaveUpper(two, abHigh, cdHigh), 3);
    };
    // Down a strip as wide as a line of the cache, so that every line is written at once. What ends with the
    // rows or the columns does some of them again.
    constexpr std::size_t strip = 16;
    for (std::size_t left = 0; left < columnCount; left += strip)
        for (std::size_t y = 0; y < rowCount; y += 4) {
            const std::size_t top = std::min(y, rowCount - 4);
            for (std::size_t x = left; x < std::min(left + strip, columnCount); x += 4)
                widenFour(std::min(x, columnCount - 4), top);
        }
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(interpolateShearedRows);
HWY_EXPORT(widenAllColumns);

void interpolateSheared(const ColumnBox& box, const ShearedRow* rows, std::size_t rowCount,
                        const ShearedPart& part, MixPixel* out, std::ptrdiff_t stride) {
    HWY_DYNAMIC_DISPATCH(interpolateShearedRows)(box, rows, rowCount, part, out, stride);
}

void widenColumns(const std::uint32_t* const* rows, std::size_t rowCount, std::size_t columnCount,
                  MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(widenAllColumns)(rows, rowCount, columnCount, out);
}

} // namespace framora::raster
#endif
