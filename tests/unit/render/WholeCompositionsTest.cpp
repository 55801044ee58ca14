#include "editor/render/RasterView.h"
#include "editor/render/raster/ParallelFor.h"
#include "unit/raster/EachTarget.h"
#include "unit/render/RandomComposition.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace framora {
namespace {

QImage drawn(CompositionRasterizer& rasterizer, const RandomComposition& random) {
    return rasterizer.draw(random.composition(), random.viewport());
}

QImage drawn(const RandomComposition& random) {
    CompositionRasterizer rasterizer;
    return drawn(rasterizer, random);
}

/// How many pixels have a channel that differs by 0, 1, 2 and more steps.
std::array<int, 4> differences(const QImage& a, const QImage& b) {
    std::array<int, 4> counts{};
    for (int y = 0; y < a.height(); ++y) {
        const auto* first = reinterpret_cast<const quint32*>(a.constScanLine(y));
        const auto* second = reinterpret_cast<const quint32*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            int largest = 0;
            for (int shift = 0; shift < 32; shift += 8)
                largest =
                    std::max(largest, std::abs(int(first[x] >> shift & 255) - int(second[x] >> shift & 255)));
            ++counts[std::size_t(std::min(largest, 3))];
        }
    }
    return counts;
}

constexpr unsigned seedsInCase = 20;
/// Each case holds so many styles, from its own first seed on.
class WholeCompositions : public testing::TestWithParam<unsigned> {
protected:
    template <typename Check> void forEachStyle(const Check& check) {
        for (unsigned i = 0; i < seedsInCase; ++i) {
            const unsigned seed = GetParam() * seedsInCase + i;
            SCOPED_TRACE(testing::Message() << "seed " << seed);
            check(RandomComposition(seed));
        }
    }
};

TEST_P(WholeCompositions, AreWithinAStepOfTheFloats) {
    forEachStyle([](const RandomComposition& random) {
        CompositionRasterizer rasterizer;
        QImage plain(random.viewport().pixelSize, QImage::Format_ARGB32_Premultiplied);
        raster::plain::compose(mutableRasterView(plain),
                               rasterizer.layers(random.composition(), random.viewport()));
        const auto counts = differences(drawn(random), plain);
        EXPECT_EQ(counts[2] + counts[3], 0)
            << counts[2] << " pixels by two steps, " << counts[3] << " by more";
    });
}

TEST_P(WholeCompositions, AreTheSameBytesOnEveryVectorUnitForAnyNumberOfThreadsAndAgain) {
    CompositionRasterizer used;
    forEachStyle([&](const RandomComposition& random) {
        const QImage first = drawn(random);
        for (const int threads : {1, 2, 7}) {
            raster::setParallelThreadLimit(threads);
            EXPECT_EQ(drawn(random), first) << threads << " threads";
        }
        raster::setParallelThreadLimit(0);
        raster::forEachTarget([&](const char* target) { EXPECT_EQ(drawn(random), first) << target; });
        for (int time = 0; time < 3; ++time)
            EXPECT_EQ(drawn(used, random), first) << "by an object that drew before, time " << time;
    });
}

INSTANTIATE_TEST_SUITE_P(Random, WholeCompositions, testing::Range(0u, 12u));

} // namespace
} // namespace framora
