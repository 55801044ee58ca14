#include "editor/render/raster/GradientKernels.h"

#include "editor/render/raster/AlphaBytes.h"
#include "editor/render/raster/Dither.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/GradientKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors, or none of a known size: the plain kernels.
void runRow(const ColorRun& run, int x, int y, std::size_t count, MixPixel* out) {
    plain::paintRun(run, x, y, count, out);
}
void radialRow(const GradientRow& row, std::size_t count, std::int32_t* out) {
    plain::radialPositions(row, count, out);
}
void angularRow(const GradientRow& row, float start, std::size_t count, std::int32_t* out) {
    plain::angularPositions(row, start, count, out);
}
void rampRow(const MixPixel* ramp, const std::int32_t* positions, int x, int y, std::size_t count,
             MixPixel* out) {
    plain::paintRamp(ramp, positions, x, y, count, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 16>;
using Vector = hn::Vec<Floats>;
constexpr Floats floats;
using Lanes = hn::CappedTag<std::int16_t, 32>;
constexpr Lanes lanes;

HWY_INLINE Vector along(float first, float step, std::size_t i) {
    const Vector index = hn::Add(hn::Iota(floats, 0.0f), hn::Set(floats, float(i)));
    return hn::Add(hn::Set(floats, first), hn::Mul(index, hn::Set(floats, step)));
}

/// Writes the entries of count positions, vector by vector.
template <typename Position>
HWY_INLINE void writeEntries(std::size_t count, std::int32_t* out, const Position& position) {
    const hn::RebindToSigned<Floats> words;
    const std::size_t step = hn::Lanes(floats);
    const Vector size = hn::Set(floats, float(rampSize));
    for (std::size_t i = 0; i < count; i += step) {
        const Vector scaled = hn::Add(hn::Mul(position(i), size), hn::Set(floats, 0.5f));
        const auto entries = hn::ConvertTo(words, hn::Min(hn::Max(scaled, hn::Zero(floats)), size));
        if (i + step <= count) {
            hn::StoreU(entries, words, out + i);
            continue;
        }
        alignas(64) std::int32_t part[16];
        hn::Store(entries, words, part);
        std::memcpy(out + i, part, (count - i) * sizeof(std::int32_t));
    }
}

void radialRow(const GradientRow& row, std::size_t count, std::int32_t* out) {
    writeEntries(count, out, [&](std::size_t i) HWY_ATTR {
        const Vector x = along(row.x, row.stepX, i);
        const Vector y = along(row.y, row.stepY, i);
        return hn::Sqrt(hn::Add(hn::Mul(x, x), hn::Mul(y, y)));
    });
}

void angularRow(const GradientRow& row, float start, std::size_t count, std::int32_t* out) {
    writeEntries(count, out, [&](std::size_t i) HWY_ATTR {
        const Vector x = along(row.x, row.stepX, i);
        const Vector y = along(row.y, row.stepY, i);
        const Vector wide = hn::Abs(x);
        const Vector high = hn::Abs(y);
        const Vector longSide = hn::Max(hn::Max(wide, high), hn::Set(floats, arcTangentLeast));
        const Vector ratio = hn::Div(hn::Min(wide, high), longSide);
        const Vector square = hn::Mul(ratio, ratio);
        constexpr std::size_t terms = sizeof(arcTangent) / sizeof(arcTangent[0]);
        Vector turns = hn::Set(floats, arcTangent[terms - 1]);
        for (std::size_t term = terms - 1; term-- > 0;)
            turns = hn::Add(hn::Mul(turns, square), hn::Set(floats, arcTangent[term]));
        turns = hn::Mul(turns, ratio);
        turns = hn::IfThenElse(hn::Gt(wide, high), hn::Sub(hn::Set(floats, 0.25f), turns), turns);
        turns = hn::IfThenElse(hn::Gt(y, hn::Zero(floats)), hn::Sub(hn::Set(floats, 0.5f), turns), turns);
        turns = hn::IfThenElse(hn::Lt(x, hn::Zero(floats)), hn::Sub(hn::Set(floats, 1.0f), turns), turns);
        turns = hn::Sub(turns, hn::Set(floats, start));
        return hn::Sub(turns, hn::Floor(turns));
    });
}

HWY_INLINE hn::Vec<Lanes> dithered(hn::Vec<Lanes> color, const MixPixel* pattern) {
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    const auto alpha = hn::BitCast(
        lanes, hn::TableLookupBytes(hn::BitCast(bytes, color), hn::LoadDup128(bytes, alphaBytes)));
    const auto offset = hn::LoadU(lanes, reinterpret_cast<const std::int16_t*>(pattern));
    return hn::Min(hn::Max(hn::Add(color, offset), hn::Zero(lanes)), alpha);
}

void runRow(const ColorRun& run, int x, int y, std::size_t count, MixPixel* out) {
    const hn::RepartitionToWide<Lanes> words;
    const std::size_t half = hn::Lanes(words) / 4; // pixels
    const auto first = hn::LoadDup128(words, run.first);
    const auto one = hn::LoadDup128(words, run.step);
    auto low = hn::Add(first, hn::Mul(one, hn::ShiftRight<2>(hn::Iota(words, 0))));
    auto high = hn::Add(low, hn::Mul(one, hn::Set(words, std::int32_t(half))));
    const auto step = hn::Mul(one, hn::Set(words, std::int32_t(2 * half)));
    const MixPixel* pattern = Dither::row(x, y);
    for (std::size_t i = 0; i < count; i += 2 * half) {
        // Their upper halves are the channels.
        const auto color = hn::ConcatOdd(lanes, hn::BitCast(lanes, high), hn::BitCast(lanes, low));
        const auto painted = dithered(color, pattern + i % Dither::period);
        if (i + 2 * half <= count) {
            hn::StoreU(painted, lanes, reinterpret_cast<std::int16_t*>(out + i));
        } else {
            alignas(64) std::int16_t part[32];
            hn::Store(painted, lanes, part);
            std::memcpy(out + i, part, (count - i) * sizeof(MixPixel));
        }
        low = hn::Add(low, step);
        high = hn::Add(high, step);
    }
}

void rampRow(const MixPixel* ramp, const std::int32_t* positions, int x, int y, std::size_t count,
             MixPixel* out) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    // All are fetched before the first is read back as a part of a vector.
    for (std::size_t i = 0; i < count; ++i)
        out[i] = ramp[positions[i]];
    std::size_t i = 0;
    for (; i + step <= count; i += step) {
        auto* pixels = reinterpret_cast<std::int16_t*>(out + i);
        hn::StoreU(dithered(hn::LoadU(lanes, pixels), Dither::row(x + int(i), y)), lanes, pixels);
    }
    plain::paintRamp(ramp, positions + i, x + int(i), y, count - i, out + i);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(runRow);
HWY_EXPORT(radialRow);
HWY_EXPORT(angularRow);
HWY_EXPORT(rampRow);

void paintRun(const ColorRun& run, int x, int y, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(runRow)(run, x, y, count, out);
}

void radialPositions(const GradientRow& row, std::size_t count, std::int32_t* out) {
    HWY_DYNAMIC_DISPATCH(radialRow)(row, count, out);
}

void angularPositions(const GradientRow& row, float start, std::size_t count, std::int32_t* out) {
    HWY_DYNAMIC_DISPATCH(angularRow)(row, start, count, out);
}

void paintRamp(const MixPixel* ramp, const std::int32_t* positions, int x, int y, std::size_t count,
               MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(rampRow)(ramp, positions, x, y, count, out);
}

} // namespace framora::raster
#endif
