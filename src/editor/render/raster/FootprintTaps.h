#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace framora::raster {

/// The weights of a cubic stretched over a width of source pixels, along one axis, for any place between two
/// of them. There is one for each of a row of widths, each made when it is first asked for.
class FootprintTaps {
public:
    /// Steps of a place between two pixels.
    static constexpr int phaseBits = 7;
    static constexpr int phases = 1 << phaseBits;
    /// Widths for each doubling of a width's square.
    static constexpr int widthBits = 3;
    /// The widths reach from 1 to 32 pixels.
    static constexpr int widthCount = 10 << widthBits;
    /// The sum of a place's weights.
    static constexpr int one = 1 << 14;

    /// The index of the width whose square is nearest to `square`, from 0 to `most`.
    static int index(float square, int most);
    static const FootprintTaps& of(int index) {
        const FootprintTaps* taps = made[std::size_t(index)].load(std::memory_order_acquire);
        return taps ? *taps : make(index);
    }

    /// Source pixels that a place between pixels 0 and 1 mixes, at most: from -reach() to reach() + 1.
    int reach() const { return m_reach; }
    int count() const { return m_count; }
    /// The first of the pixels that place `phase` mixes.
    int first(int phase) const { return m_first[phase]; }
    /// Their weights, followed by zeros up to a multiple of eight.
    const std::int16_t* weights(int phase) const { return m_weights.data() + phase * m_stride; }

private:
    explicit FootprintTaps(int index);
    static const FootprintTaps& make(int index);

    static std::array<std::atomic<const FootprintTaps*>, std::size_t(widthCount)> made;

    int m_count;
    int m_stride;
    int m_reach = 0;
    std::int16_t m_first[phases];
    std::vector<std::int16_t> m_weights;
};

} // namespace framora::raster
