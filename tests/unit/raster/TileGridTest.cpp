#include "editor/render/raster/TileGrid.h"

#include <gtest/gtest.h>

namespace framora::raster {
namespace {

TEST(TileGrid, PutsEveryPixelIntoOneTile) {
    for (const int lead : {0, 1, 7, 15})
        for (const int length : {0, 1, 7, 8, 16, 50}) {
            SCOPED_TRACE(testing::Message() << lead << " of " << length);
            const TileAxis axis{length, 16, lead};
            EXPECT_EQ(axis.start(0), 0);
            EXPECT_EQ(axis.start(axis.count()), length);
            for (int at = 0; at < length; ++at) {
                const int index = axis.indexOf(at);
                EXPECT_GE(index, 0);
                EXPECT_LT(index, axis.count());
                EXPECT_LE(axis.start(index), at);
                EXPECT_GT(axis.start(index + 1), at);
            }
        }
}

TEST(TileGrid, EndsItsFirstTileAtTheLead) {
    const TileAxis axis{100, 64, 20};
    EXPECT_EQ(axis.count(), 3);
    EXPECT_EQ(axis.start(1), 20);
    EXPECT_EQ(axis.start(2), 84);
    EXPECT_EQ(axis.indexOf(19), 0);
    EXPECT_EQ(axis.indexOf(20), 1);
}

} // namespace
} // namespace framora::raster
