#include "editor/render/raster/ProjectiveKernels.h"

#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/ProjectiveKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
// Four neighbours fill a vector of 32 bytes; narrower units take the plain kernels.
#if HWY_TARGET == HWY_SCALAR || HWY_MAX_BYTES < 32

void project(const ProjectiveRow& row, const SourceBox& box, std::size_t count, std::int32_t* columns,
             std::int32_t* rows) {
    plain::projectRow(row, box, count, columns, rows);
}
void interpolate(const SourceBox& box, const std::int32_t* columns, const std::int32_t* rows,
                 std::size_t count, MixPixel* out) {
    plain::interpolateRow(box, columns, rows, count, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 8>;
constexpr Floats floats;
using Lanes = hn::CappedTag<std::int16_t, 16>;
constexpr Lanes lanes;

template <typename Vector>
HWY_INLINE void place(Vector value, int size, std::size_t count, std::int32_t* out) {
    constexpr int positions = 1 << positionBits;
    const hn::RebindToSigned<Floats> words;
    const auto scaled = hn::Add(hn::Mul(value, hn::Set(floats, float(positions))), hn::Set(floats, 0.5f));
    const auto most = hn::Set(floats, float((size - 3) * positions - 1));
    const auto whole = hn::ConvertTo(words, hn::Min(hn::Max(scaled, hn::Zero(floats)), most));
    if (count >= hn::Lanes(floats)) {
        hn::StoreU(whole, words, out);
        return;
    }
    alignas(32) std::int32_t part[8];
    hn::Store(whole, words, part);
    std::memcpy(out, part, count * sizeof(std::int32_t));
}

void project(const ProjectiveRow& row, const SourceBox& box, std::size_t count, std::int32_t* columns,
             std::int32_t* rows) {
    for (std::size_t i = 0; i < count; i += hn::Lanes(floats)) {
        const auto index = hn::Add(hn::Iota(floats, 0.0f), hn::Set(floats, float(i)));
        const auto along = [&](float first, float step) HWY_ATTR {
            return hn::Add(hn::Set(floats, first), hn::Mul(index, hn::Set(floats, step)));
        };
        const auto near = hn::Div(hn::Set(floats, 1.0f), along(row.w, row.stepW));
        place(hn::Mul(along(row.x, row.stepX), near), box.width, count - i, columns + i);
        place(hn::Mul(along(row.y, row.stepY), near), box.height, count - i, rows + i);
    }
}

void interpolate(const SourceBox& box, const std::int32_t* columns, const std::int32_t* rows,
                 std::size_t count, MixPixel* out) {
    // Each of the four weights for the four channels of its pixel.
    alignas(32) static constexpr std::uint8_t spread[32] = {0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3,
                                                            4, 5, 4, 5, 4, 5, 4, 5, 6, 7, 6, 7, 6, 7, 6, 7};
    alignas(16) static constexpr std::uint8_t ofAlpha[16] = {6, 7, 6, 7, 6, 7, 6, 7, 6, 7, 6, 7, 6, 7, 6, 7};
    constexpr int fraction = (1 << positionBits) - 1;
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    const hn::Repartition<std::uint64_t, Lanes> words;
    const hn::Half<Lanes> half;
    const hn::Repartition<std::uint8_t, hn::Half<Lanes>> halfBytes;
    const auto pattern = hn::Load(bytes, spread);
    const auto alphaPattern = hn::Load(halfBytes, ofAlpha);
    const auto* weights = cubicWeights(0).data();
    const std::ptrdiff_t stride = std::ptrdiff_t(box.width) * 4;
    const auto* pixels = reinterpret_cast<const std::int16_t*>(box.pixels);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t column = columns[i];
        const std::int32_t row = rows[i];
        const std::int16_t* first = pixels + (row >> positionBits) * stride + (column >> positionBits) * 4;
        const std::int16_t* down = weights + (row & fraction) * 4;
        auto sum = hn::MulFixedPoint15(hn::LoadU(lanes, first), hn::Set(lanes, down[0]));
        sum = hn::Add(sum, hn::MulFixedPoint15(hn::LoadU(lanes, first + stride), hn::Set(lanes, down[1])));
        sum =
            hn::Add(sum, hn::MulFixedPoint15(hn::LoadU(lanes, first + 2 * stride), hn::Set(lanes, down[2])));
        sum =
            hn::Add(sum, hn::MulFixedPoint15(hn::LoadU(lanes, first + 3 * stride), hn::Set(lanes, down[3])));
        std::uint64_t across = 0;
        std::memcpy(&across, weights + (column & fraction) * 4, sizeof(across));
        const auto spreadAcross =
            hn::BitCast(lanes, hn::TableLookupBytes(hn::BitCast(bytes, hn::Set(words, across)), pattern));
        sum = hn::MulFixedPoint15(sum, spreadAcross);
        const auto pairs = hn::Add(hn::LowerHalf(half, sum), hn::UpperHalf(half, sum));
        const auto total =
            hn::Add(pairs, hn::BitCast(half, hn::Shuffle01(hn::BitCast(
                                                 hn::Repartition<std::uint64_t, hn::Half<Lanes>>(), pairs))));
        const auto positive = hn::Max(total, hn::Zero(half));
        const auto alpha =
            hn::BitCast(half, hn::TableLookupBytes(hn::BitCast(halfBytes, positive), alphaPattern));
        const auto valid =
            hn::ShiftLeft<2>(hn::Min(positive, hn::Min(alpha, hn::Set(half, std::int16_t(filterOne)))));
        const hn::Half<hn::Half<Lanes>> pixel;
        hn::StoreU(hn::LowerHalf(pixel, valid), pixel, reinterpret_cast<std::int16_t*>(out + i));
    }
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

void widenBox(PixelView picture, int firstColumn, int firstRow, const SourceBox& box, MixPixel* pixels) {
    const int left = std::clamp(-firstColumn, 0, box.width - 1);
    const int from = std::clamp(firstColumn + left, 0, picture.width - 1);
    const int count = std::clamp(picture.width - from, 1, box.width - left);
    for (int y = 0; y < box.height; ++y, pixels += box.width) {
        const std::uint32_t* row = picture.row(std::clamp(firstRow + y, 0, picture.height - 1)) + from;
        widenRow(row, std::size_t(count), pixels + left);
        std::fill_n(pixels, left, pixels[left]);
        std::fill(pixels + left + count, pixels + box.width, pixels[left + count - 1]);
    }
}

HWY_EXPORT(project);
HWY_EXPORT(interpolate);

void projectRow(const ProjectiveRow& row, const SourceBox& box, std::size_t count, std::int32_t* columns,
                std::int32_t* rows) {
    HWY_DYNAMIC_DISPATCH(project)(row, box, count, columns, rows);
}

void interpolateRow(const SourceBox& box, const std::int32_t* columns, const std::int32_t* rows,
                    std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(interpolate)(box, columns, rows, count, out);
}

} // namespace framora::raster
#endif
