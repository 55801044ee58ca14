#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <vector>

namespace framora {

/// Averages squares of `factor` x `factor` pixels of interleaved channels, row by row; what is left over at
/// the far edges is dropped. `factor` is 1 to 256.
template <typename Channel> class BoxSums {
public:
    BoxSums(int width, int channels, int factor)
        : m_columns(std::size_t(width / factor)), m_channels(std::size_t(channels)),
          m_factor(std::size_t(factor)), m_sums(m_columns * m_factor * m_channels) {}

    /// Of a reduced row, in channels.
    std::size_t size() const { return m_columns * m_channels; }

    /// Adds a row of at least the width.
    void add(const Channel* __restrict row) {
        Sum* __restrict sums = m_sums.data();
        const std::size_t count = m_sums.size();
        std::size_t i = 0;
        // In blocks of a fixed length apart from each other, which compilers make vectors of at every level
        // of optimization.
        constexpr std::size_t block = 32;
        for (; i + block <= count; i += block)
            for (std::size_t j = 0; j < block; ++j)
                sums[i + j] = Sum(sums[i + j] + row[i + j]);
        for (; i < count; ++i)
            sums[i] = Sum(sums[i] + row[i]);
    }

    /// The mean of the rows added since the last call, `factor` of them.
    void take(std::span<Channel> reduced) {
        const auto area = std::uint32_t(m_factor * m_factor);
        const Sum* sums = m_sums.data();
        for (std::size_t x = 0; x < m_columns; ++x, sums += m_factor * m_channels)
            for (std::size_t channel = 0; channel < m_channels; ++channel) {
                std::uint32_t sum = area / 2;
                for (std::size_t i = 0; i < m_factor; ++i)
                    sum += sums[i * m_channels + channel];
                reduced[x * m_channels + channel] = Channel(sum / area);
            }
        m_sums.assign(m_sums.size(), 0);
    }

private:
    /// A column of 256 full channels at least.
    using Sum = std::conditional_t<sizeof(Channel) == 1, std::uint16_t, std::uint32_t>;

    std::size_t m_columns;
    std::size_t m_channels;
    std::size_t m_factor;
    std::vector<Sum> m_sums;
};

} // namespace framora
