#pragma once

#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/ResampleKernel.h"

#include <vector>

namespace framora::raster {

/// A ResampleKernel for the fast kernels: weights in 16384ths (at a picture's edge they may exceed 1), as
/// many for every output position, in both orders that vectors want.
class FixedTaps {
public:
    /// A weight of 1.
    static constexpr int one = 1 << 14;
    /// With more, the taps of one output fill a vector by themselves.
    static constexpr int mostDenseTaps = 8;
    /// Held by taps, their number is filled up to a multiple of this.
    static constexpr std::size_t together = 4;

    FixedTaps() = default;
    /// For the outputs [first, end).
    FixedTaps(const ResampleKernel& kernel, int first, int end);

    int firstOutput() const { return m_firstOutput; }
    int count() const { return int(m_starts.size()); }
    int taps() const { return m_taps; }
    /// Whether there are few taps and every output starts at most one source behind the one before.
    bool isDense() const { return m_isDense; }
    /// How far at most an output starts behind the seventh one before it: across a vector of eight.
    int reach() const { return m_reach; }
    /// The outputs [doubledFirst, doubledEnd), counted from firstOutput(), where every second one has the
    /// same four weights and starts one source further on: a picture of twice the size, but for its edges.
    int doubledFirst() const { return m_doubledFirst; }
    int doubledEnd() const { return m_doubledEnd; }
    /// The same where every output has the weights of the one before and starts two sources further on: half
    /// the size.
    int halvedFirst() const { return m_halvedFirst; }
    int halvedEnd() const { return m_halvedEnd; }
    /// The first source of an output, which is counted from firstOutput(); it never decreases.
    int start(int index) const { return int(m_starts[std::size_t(index)]); }
    const std::int64_t* starts() const { return m_starts.data(); }
    /// The sources of the outputs [index, index + count): from the first one to behind the last one.
    struct Span {
        int first;
        int end;
    };
    Span span(int index, int count) const;

    std::int16_t weight(int index, int tap) const {
        return m_weights[std::size_t(index) * std::size_t(m_taps) + std::size_t(tap)];
    }
    const std::int16_t* weights(int index) const {
        return m_weights.data() + std::size_t(index) * std::size_t(m_taps);
    }
    /// Whether spread() holds the first taps of all outputs, then all second ones and so on, and some of
    /// weight zero; else one output after the other, each padded with zeros to paddedTaps().
    bool isByTaps() const { return m_isByTaps; }
    /// The weights four times each.
    const MixPixel* spread(int index) const {
        return m_spread.data() + std::size_t(index) * std::size_t(m_isByTaps ? 1 : paddedTaps());
    }
    /// Between the taps of one output in spread(), when they are held by taps.
    std::size_t tapStride() const { return m_tapStride; }
    int paddedTaps() const { return (m_taps + 7) / 8 * 8; }

    /// Makes spread(), which only columns need.
    void spreadWeights();

private:
    /// Where every output has the weights of the one `period` outputs before, and starts `distance` sources
    /// behind it: [first, end), around the middle.
    void findRegular(int period, int distance, int& first, int& end) const;

    int m_firstOutput = 0;
    int m_doubledFirst = 0;
    int m_doubledEnd = 0;
    int m_halvedFirst = 0;
    int m_halvedEnd = 0;
    int m_taps = 0;
    int m_reach = 0;
    bool m_isDense = true;
    bool m_isByTaps = true;
    std::size_t m_tapStride = 0;
    std::vector<std::int64_t> m_starts;
    std::vector<std::int16_t> m_weights;
    std::vector<MixPixel> m_spread;
};

} // namespace framora::raster
