#include "editor/render/decoders/BoxSums.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

template <typename Channel> void expectMeans(int width, int channels, int factor, Channel full) {
    SCOPED_TRACE(testing::Message() << width << " wide, " << channels << " channels, by " << factor);
    BoxSums<Channel> sums(width, channels, factor);
    ASSERT_EQ(sums.size(), std::size_t(width / factor * channels));
    std::vector<Channel> row(std::size_t(width * channels));
    std::vector<Channel> reduced(sums.size());
    for (int round = 0; round < 2; ++round) { // the second begins anew
        std::vector<std::uint64_t> expected(sums.size(), 0);
        for (int y = 0; y < factor; ++y) {
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = round == 0 ? full : Channel((i * 7919 + std::size_t(y) * 104729) % (full + 1u));
            for (std::size_t i = 0; i < reduced.size() * std::size_t(factor); ++i) {
                const std::size_t column = i / std::size_t(channels) / std::size_t(factor);
                expected[column * std::size_t(channels) + i % std::size_t(channels)] += row[i];
            }
            sums.add(row.data());
        }
        sums.take(reduced);
        const auto area = std::uint64_t(factor) * std::uint64_t(factor);
        for (std::size_t i = 0; i < reduced.size(); ++i)
            EXPECT_EQ(reduced[i], (expected[i] + area / 2) / area) << i;
    }
}

TEST(BoxSums, AreTheMeansOfSquaresAtEveryWidth) {
    for (int width = 1; width < 70; ++width)
        for (const int channels : {1, 3, 4})
            for (const int factor : {1, 2, 5})
                if (factor <= width) {
                    expectMeans<std::uint8_t>(width, channels, factor, 255);
                    expectMeans<std::uint16_t>(width, channels, factor, 65535);
                }
}

TEST(BoxSums, HoldTheLargestFactorAtFullBrightness) {
    expectMeans<std::uint8_t>(513, 4, 256, 255);
    expectMeans<std::uint16_t>(513, 3, 256, 65535);
}

} // namespace
} // namespace framora
