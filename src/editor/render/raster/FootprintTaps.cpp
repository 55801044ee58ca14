#include "editor/render/raster/FootprintTaps.h"

#include "editor/render/raster/ResampleKernel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <mutex>
#include <optional>

namespace framora::raster {
namespace {

constexpr int fractionBits = 23 - FootprintTaps::widthBits; // of a float that are left out
constexpr std::int32_t bitsOfOne = 0x3f800000;

double squareAt(int index) {
    return double(std::bit_cast<float>(bitsOfOne + (index << fractionBits)));
}

} // namespace

int FootprintTaps::index(float square, int most) {
    // The bits of a float are nearly its logarithm.
    const auto bits = std::bit_cast<std::int32_t>(std::max(square, 1.0f));
    return std::min((bits - bitsOfOne + (1 << (fractionBits - 1))) >> fractionBits, most);
}

std::array<std::atomic<const FootprintTaps*>, std::size_t(FootprintTaps::widthCount)> FootprintTaps::made{};

const FootprintTaps& FootprintTaps::make(int index) {
    static std::mutex mutex;
    static std::array<std::optional<FootprintTaps>, std::size_t(widthCount)> kept;
    const std::lock_guard lock(mutex);
    std::optional<FootprintTaps>& place = kept[std::size_t(index)];
    if (!place)
        place = FootprintTaps(index);
    made[std::size_t(index)].store(&*place, std::memory_order_release);
    return *place;
}

FootprintTaps::FootprintTaps(int index) {
    const double width = stretchedWidth(std::sqrt(squareAt(index)));
    m_count = int(std::ceil(4 * width));
    m_stride = (m_count + 7) / 8 * 8;
    m_weights.assign(std::size_t(phases * m_stride), 0);
    std::vector<double> exact(std::size_t(m_count), 0.0);
    for (int phase = 0; phase < phases; ++phase) {
        const double place = double(phase) / phases;
        const int first = int(std::floor(place - 2 * width)) + 1;
        m_first[phase] = std::int16_t(first);
        m_reach = std::max({m_reach, -first, first + m_count - 2});
        double sum = 0;
        for (int tap = 0; tap < m_count; ++tap) {
            exact[std::size_t(tap)] = catmullRom((first + tap - place) / width);
            sum += exact[std::size_t(tap)];
        }
        std::int16_t* weights = m_weights.data() + phase * m_stride;
        int whole = 0;
        int largest = 0;
        for (int tap = 0; tap < m_count; ++tap) {
            weights[tap] = std::int16_t(std::lround(exact[std::size_t(tap)] / sum * one));
            whole += weights[tap];
            if (weights[tap] > weights[largest])
                largest = tap;
        }
        // A plain surface stays what it is.
        weights[largest] = std::int16_t(weights[largest] + one - whole);
    }
}

} // namespace framora::raster
