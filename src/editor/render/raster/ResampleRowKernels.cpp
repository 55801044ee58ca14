#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <hwy/cache_control.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "editor/render/raster/ResampleRowKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// Behind the targets: it is compiled for each of them.
#include "editor/render/raster/MixVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace framora::raster::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE

// No vectors, or none of a known size: the plain kernels.
void widenAll(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    plain::widenRow(pixels, count, out);
}
void weighAllRows(PixelView picture, int column, const FixedTaps& taps, int index, const MixBlock& out) {
    plain::weighRows(picture, column, taps, index, out);
}

#else

HWY_INLINE Vector widened(const std::uint32_t* pixels) {
    const hn::Rebind<std::uint8_t, Lanes> bytes;
    return hn::ShiftLeft<sourceShift>(
        hn::PromoteTo(lanes, hn::LoadU(bytes, reinterpret_cast<const std::uint8_t*>(pixels))));
}

void widenAll(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    std::size_t i = 0;
    for (; i + step <= count; i += step)
        store(widened(pixels + i), out + i);
    // The last vector again, from where it ends with the row.
    if (i == count)
        return;
    if (count >= step)
        store(widened(pixels + count - step), out + (count - step));
    else
        plain::widenRow(pixels, count, out);
}

/// As many vectors of each output, from its pixel x on; with any number of taps.
template <int vectors>
HWY_INLINE void weighStrip(PixelView picture, int column, const FixedTaps& taps, int index,
                           const MixBlock& out, int x) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    for (int y = 0; y < out.height; ++y) {
        const std::int16_t* weights = taps.weights(index + y);
        Vector sums[vectors];
        for (Vector& sum : sums)
            sum = hn::Zero(lanes);
        for (int tap = 0; tap < taps.taps(); ++tap) {
            const int row = std::min(taps.start(index + y) + tap, picture.height - 1);
            const std::uint32_t* from = picture.row(row) + column + x;
            const Vector weight = hn::Set(lanes, weights[tap]);
            for (int i = 0; i < vectors; ++i)
                sums[i] =
                    hn::Add(sums[i], hn::MulFixedPoint15(widened(from + std::size_t(i) * step), weight));
        }
        for (int i = 0; i < vectors; ++i)
            store(sums[i], out.row(y) + x + std::size_t(i) * step);
    }
}

/// The same of four taps: each row of the picture is read once, and kept in registers, for all the outputs
/// that it is in.
template <int vectors>
HWY_INLINE void weighStripOfFour(PixelView picture, int column, const FixedTaps& taps, int index,
                                 const MixBlock& out, int x) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    struct Strip {
        Vector part[vectors];
    };
    const auto read = [&](int row) HWY_ATTR {
        const std::uint32_t* from = picture.row(std::min(row, picture.height - 1)) + column + x;
        // The block to the right is next; of few pixels a row the processor does not guess that.
        hwy::Prefetch(from + out.width);
        Strip strip;
        for (int i = 0; i < vectors; ++i)
            strip.part[i] = widened(from + std::size_t(i) * step);
        return strip;
    };
    const std::int64_t* starts = taps.starts() + index;
    const std::int16_t* weights = taps.weights(index);
    int next = int(starts[0]);
    Strip a = read(next++);
    Strip b = read(next++);
    Strip c = read(next++);
    Strip d = read(next++);
    MixPixel* to = out.first + x;
    const std::size_t stride = out.stride;
    for (int y = 0, height = out.height; y < height; ++y, to += stride, weights += 4) {
        for (; next < int(starts[y]) + 4; ++next) {
            a = b;
            b = c;
            c = d;
            d = read(next);
        }
        const Vector first = hn::Set(lanes, weights[0]);
        const Vector second = hn::Set(lanes, weights[1]);
        const Vector third = hn::Set(lanes, weights[2]);
        const Vector fourth = hn::Set(lanes, weights[3]);
        for (int i = 0; i < vectors; ++i) {
            const Vector upper =
                hn::Add(hn::MulFixedPoint15(a.part[i], first), hn::MulFixedPoint15(b.part[i], second));
            const Vector lower =
                hn::Add(hn::MulFixedPoint15(c.part[i], third), hn::MulFixedPoint15(d.part[i], fourth));
            store(hn::Add(upper, lower), to + std::size_t(i) * step);
        }
    }
}

/// A strip of the last rows of a picture that were asked for, as the kernels read them: row r is at r & mask.
struct WidenedRows {
    static constexpr int most = 32; ///< A power of two, as the half of it.
    static constexpr int width = 64;

    alignas(64) MixPixel pixels[most * width];
    int mask;

    MixPixel* row(int r) { return pixels + (r & mask) * width; }
};

/// As many vectors of one output that starts with row `start`, from the strip's pixel x on.
template <int vectors>
HWY_INLINE void weighWidened(WidenedRows& rows, int start, const std::int16_t* weights, int taps, int x,
                             MixPixel* to) {
    const std::size_t step = hn::Lanes(lanes) / 4;
    Vector sums[vectors];
    for (Vector& sum : sums)
        sum = hn::Zero(lanes);
    for (int tap = 0; tap < taps; ++tap) {
        const MixPixel* from = rows.row(start + tap) + x;
        const Vector weight = hn::Set(lanes, weights[tap]);
        for (int i = 0; i < vectors; ++i)
            sums[i] = hn::Add(sums[i], hn::MulFixedPoint15(load(from + std::size_t(i) * step), weight));
    }
    for (int i = 0; i < vectors; ++i)
        store(sums[i], to + x + std::size_t(i) * step);
}

/// The same of more than four taps: each row is widened once for all the outputs that it is in.
void weighManyRows(PixelView picture, int column, const FixedTaps& taps, int index, const MixBlock& out) {
    constexpr int wide = 8;
    constexpr int line = 64 / int(sizeof(std::uint32_t));
    const int step = int(hn::Lanes(lanes) / 4);
    const int tapCount = taps.taps();
    WidenedRows rows;
    rows.mask = (tapCount <= WidenedRows::most / 2 ? WidenedRows::most / 2 : WidenedRows::most) - 1;
    for (int x = 0; x < out.width; x += WidenedRows::width) {
        // The last strip has a vector at least.
        const int left = std::min(x, out.width - step);
        const int width = std::min(WidenedRows::width, out.width - left);
        const auto widen = [&](int row) HWY_ATTR {
            const std::uint32_t* from = picture.row(std::min(row, picture.height - 1)) + column + left;
            // The block to the right is next; the nearest cache has no room for it yet.
            for (int i = 0; i < width; i += line)
                __builtin_prefetch(from + out.width + i, 0, 2);
            widenAll(from, std::size_t(width), rows.row(row));
        };
        int next = taps.start(index);
        for (int y = 0; y < out.height; ++y) {
            const int start = taps.start(index + y);
            for (next = std::max(next, start); next < start + tapCount; ++next)
                widen(next);
            const std::int16_t* weights = taps.weights(index + y);
            MixPixel* to = out.row(y) + left;
            int i = 0;
            for (; i + wide * step <= width; i += wide * step)
                weighWidened<wide>(rows, start, weights, tapCount, i, to);
            for (; i + step <= width; i += step)
                weighWidened<1>(rows, start, weights, tapCount, i, to);
            if (i < width)
                weighWidened<1>(rows, start, weights, tapCount, width - step, to);
        }
    }
}

void weighAllRows(PixelView picture, int column, const FixedTaps& taps, int index, const MixBlock& out) {
    const int step = int(hn::Lanes(lanes) / 4);
    if (out.width < step) {
        plain::weighRows(picture, column, taps, index, out);
        return;
    }
    if (taps.taps() > 4 && taps.taps() <= WidenedRows::most && out.height > 1) {
        weighManyRows(picture, column, taps, index, out);
        return;
    }
    const bool isOfFour = taps.taps() == 4;
    const auto weighTwo = isOfFour ? weighStripOfFour<2> : weighStrip<2>;
    const auto weighOne = isOfFour ? weighStripOfFour<1> : weighStrip<1>;
    int x = 0;
    for (; x + 2 * step <= out.width; x += 2 * step)
        weighTwo(picture, column, taps, index, out, x);
    if (x + step <= out.width) {
        weighOne(picture, column, taps, index, out, x);
        x += step;
    }
    // The last vector overlaps the one before.
    if (x < out.width)
        weighOne(picture, column, taps, index, out, out.width - step);
}

#endif

} // namespace framora::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framora::raster {

HWY_EXPORT(widenAll);
HWY_EXPORT(weighAllRows);

void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    HWY_DYNAMIC_DISPATCH(widenAll)(pixels, count, out);
}

void weighRows(PixelView picture, int column, const FixedTaps& taps, int index, const MixBlock& out) {
    HWY_DYNAMIC_DISPATCH(weighAllRows)(picture, column, taps, index, out);
}

} // namespace framora::raster
#endif
