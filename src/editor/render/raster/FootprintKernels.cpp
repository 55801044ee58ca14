#include "editor/render/raster/FootprintKernels.h"

#include "editor/render/raster/AlphaBytes.h"
#include "editor/render/raster/ResampleKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/FootprintKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors of a known size: the plain kernels.
void projectRowFootprints(const FootprintRow& row, std::size_t first, std::size_t end, FootprintPlaces& out) {
    plain::projectFootprints(row, first, end, out);
}
void readRowFootprints(const SourceBox& box, const FootprintPlaces& places, std::size_t first,
                       const FootprintLine& line, std::size_t count, MixPixel* out) {
    plain::readFootprints(box, places, first, line, count, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 16>;
using Vector = hn::Vec<Floats>;
constexpr Floats floats;
constexpr hn::RebindToSigned<Floats> words;
using Lanes = hn::CappedTag<std::int16_t, 32>;
constexpr Lanes lanes;
using OnePixel = hn::CappedTag<std::int16_t, 4>;
constexpr OnePixel onePixel;

void projectRowFootprints(const FootprintRow& row, std::size_t first, std::size_t end, FootprintPlaces& out) {
    constexpr int fractionBits = 23 - FootprintTaps::widthBits;
    constexpr std::int32_t bitsOfOne = 0x3f800000;
    const auto all = [](float value) HWY_ATTR { return hn::Set(floats, value); };
    // What does not change is not read again between the stores.
    const Vector x = all(row.place.x);
    const Vector y = all(row.place.y);
    const Vector w = all(row.place.w);
    const Vector stepX = all(row.place.stepX);
    const Vector stepY = all(row.place.stepY);
    const Vector stepW = all(row.place.stepW);
    const Vector downX = all(row.downX);
    const Vector downY = all(row.downY);
    const Vector downW = all(row.downW);
    const Vector share = all(row.share);
    const Vector phases = all(float(row.phases));
    const auto most = hn::Set(words, row.most);
    const bool isWide = row.most > 0;
    const auto steps = [&](Vector value) HWY_ATTR {
        const Vector inside = hn::Min(hn::Max(value, all(-farthestPlace)), all(farthestPlace));
        return hn::NearestInt(hn::Mul(inside, phases));
    };
    const auto widthIndex = [&](Vector across, Vector down) HWY_ATTR {
        const Vector square = hn::Mul(hn::Add(hn::Mul(across, across), hn::Mul(down, down)), share);
        const auto bits = hn::BitCast(words, hn::Max(square, all(1)));
        const auto rounded =
            hn::Add(hn::Sub(bits, hn::Set(words, bitsOfOne)), hn::Set(words, 1 << (fractionBits - 1)));
        return hn::Min(hn::ShiftRight<fractionBits>(rounded), most);
    };
    const std::size_t step = hn::Lanes(floats);
    first -= first % step;
    Vector index = hn::Iota(floats, float(first));
    for (std::size_t i = first; i < end; i += step, index = hn::Add(index, all(float(step)))) {
        const auto along = [&](Vector first, Vector grow)
                               HWY_ATTR { return hn::Add(first, hn::Mul(index, grow)); };
        const Vector near = hn::Div(all(1), along(w, stepW));
        const Vector atX = hn::Mul(along(x, stepX), near);
        const Vector atY = hn::Mul(along(y, stepY), near);
        hn::Store(steps(atX), words, out.columns + i);
        hn::Store(steps(atY), words, out.rows + i);
        if (!isWide) {
            hn::Store(hn::Zero(words), words, out.across + i);
            hn::Store(hn::Zero(words), words, out.down + i);
            continue;
        }
        const auto slope = [&](Vector grow, Vector at, Vector depth)
                               HWY_ATTR { return hn::Mul(hn::Sub(grow, hn::Mul(at, depth)), near); };
        hn::Store(widthIndex(slope(stepX, atX, stepW), slope(downX, atX, downW)), words, out.across + i);
        hn::Store(widthIndex(slope(stepY, atY, stepW), slope(downY, atY, downW)), words, out.down + i);
    }
}

/// The sum of a vector's pixels.
template <typename Tag> HWY_INLINE hn::Vec<OnePixel> sumOfPixels(Tag tag, hn::Vec<Tag> pixels) {
    if constexpr (hn::MaxLanes(Tag()) == 4) {
        return pixels;
    } else {
        const hn::Half<Tag> half;
        return sumOfPixels(half, hn::Add(hn::LowerHalf(half, pixels), hn::UpperHalf(half, pixels)));
    }
}

/// One reading, not yet clamped. With `fixedRows` above 0 that many rows, else as many as the taps say.
template <int fixedRows>
HWY_INLINE hn::Vec<OnePixel> readOne(const std::int16_t* first, std::ptrdiff_t stride,
                                     const std::int16_t* across, int columns, const std::int16_t* down,
                                     int rows) {
    // A weight for each of its pixel's four channels, two pixels in every 128 bits.
    alignas(64) static constexpr std::uint8_t spread[64] = {
        0,  1,  0,  1,  0,  1,  0,  1,  2,  3,  2,  3,  2,  3,  2,  3,  4,  5,  4,  5,  4,  5,
        4,  5,  6,  7,  6,  7,  6,  7,  6,  7,  8,  9,  8,  9,  8,  9,  8,  9,  10, 11, 10, 11,
        10, 11, 10, 11, 12, 13, 12, 13, 12, 13, 12, 13, 14, 15, 14, 15, 14, 15, 14, 15};
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    constexpr int step = int(hn::MaxLanes(Lanes()) / 4);
    auto total = hn::Zero(lanes);
    for (int column = 0; column < columns; column += step) {
        const std::int16_t* from = first + 4 * column;
        const auto weighed = [&](int row) HWY_ATTR {
            return hn::MulFixedPoint15(hn::LoadU(lanes, from + row * stride), hn::Set(lanes, down[row]));
        };
        const int count = fixedRows > 0 ? fixedRows : rows;
        // Two sums do not wait for each other.
        auto sum = weighed(0);
        auto other = weighed(1);
        int row = 2;
        for (; row + 2 <= count; row += 2) {
            sum = hn::Add(sum, weighed(row));
            other = hn::Add(other, weighed(row + 1));
        }
        if (row < count)
            sum = hn::Add(sum, weighed(row));
        sum = hn::Add(sum, other);
        // Eight weights are loaded; a shorter vector takes its part of them.
        const auto pattern = hn::LoadU(bytes, spread + column % 8 * 8);
        const auto eight = hn::BitCast(bytes, hn::LoadDup128(lanes, across + column / 8 * 8));
        const auto spreadAcross = hn::BitCast(lanes, hn::TableLookupBytes(eight, pattern));
        total = hn::Add(total, hn::MulFixedPoint15(sum, spreadAcross));
    }
    return sumOfPixels(lanes, total);
}

HWY_INLINE hn::Vec<OnePixel> readFootprint(const SourceBox& box, const Footprint& footprint) {
    constexpr int fraction = FootprintTaps::phases - 1;
    const FootprintTaps& across = FootprintTaps::of(footprint.across);
    const FootprintTaps& down = FootprintTaps::of(footprint.down);
    const int column = footprint.column & fraction;
    const int row = footprint.row & fraction;
    const auto* first = reinterpret_cast<const std::int16_t*>(
        box.pixels +
        std::ptrdiff_t((footprint.row >> FootprintTaps::phaseBits) + down.first(row)) * box.width +
        (footprint.column >> FootprintTaps::phaseBits) + across.first(column));
    const std::ptrdiff_t stride = std::ptrdiff_t(box.width) * 4;
    const std::int16_t* rows = down.weights(row);
    const std::int16_t* columns = across.weights(column);
    switch (down.count()) {
    case 4:
        return readOne<4>(first, stride, columns, across.count(), rows, 4);
    case 5:
        return readOne<5>(first, stride, columns, across.count(), rows, 5);
    case 6:
        return readOne<6>(first, stride, columns, across.count(), rows, 6);
    case 7:
        return readOne<7>(first, stride, columns, across.count(), rows, 7);
    default:
        return readOne<0>(first, stride, columns, across.count(), rows, down.count());
    }
}

void readRowFootprints(const SourceBox& box, const FootprintPlaces& places, std::size_t first,
                       const FootprintLine& line, std::size_t count, MixPixel* out) {
    const hn::Repartition<std::uint8_t, OnePixel> bytes;
    const auto alphaPattern = hn::Load(bytes, alphaBytes);
    const auto weight = hn::Set(onePixel, line.weight());
    for (std::size_t i = 0; i < count; ++i) {
        auto total = hn::Zero(onePixel);
        if (line.count == 1)
            total = readFootprint(box, places.at(first + i));
        else
            for (int reading = 0; reading < line.count; ++reading)
                total = hn::Add(total,
                                hn::MulFixedPoint15(
                                    readFootprint(box, line.reading(places.at(first + i), reading)), weight));
        const auto positive = hn::Max(total, hn::Zero(onePixel));
        const auto alpha =
            hn::BitCast(onePixel, hn::TableLookupBytes(hn::BitCast(bytes, positive), alphaPattern));
        const auto valid =
            hn::ShiftLeft<2>(hn::Min(positive, hn::Min(alpha, hn::Set(onePixel, std::int16_t(filterOne)))));
        hn::StoreU(valid, onePixel, reinterpret_cast<std::int16_t*>(out + i));
    }
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(projectRowFootprints);
HWY_EXPORT(readRowFootprints);

void projectFootprints(const FootprintRow& row, std::size_t first, std::size_t end, FootprintPlaces& out) {
    HWY_DYNAMIC_DISPATCH(projectRowFootprints)(row, first, end, out);
}

void readFootprints(const SourceBox& box, const FootprintPlaces& places, std::size_t first,
                    const FootprintLine& line, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(readRowFootprints)(box, places, first, line, count, out);
}

} // namespace framora::raster
#endif
