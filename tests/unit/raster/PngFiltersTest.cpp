#include "editor/render/raster/PngFilters.h"

#include "EachTarget.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

constexpr std::size_t zerosBefore = 4;

/// Two rows behind zeros, with other bytes in the padding.
struct Rows {
    std::vector<std::uint8_t> now;
    std::vector<std::uint8_t> above;
    std::size_t size;
    std::size_t pixelBytes;

    Rows(std::size_t bytes, std::size_t bytesOfPixel, int spread, unsigned seed)
        : now(zerosBefore + bytes + pngRowPadding), above(now.size()), size(bytes), pixelBytes(bytesOfPixel) {
        std::mt19937 random(seed);
        for (std::vector<std::uint8_t>* row : {&now, &above})
            for (std::size_t i = zerosBefore; i < row->size(); ++i)
                (*row)[i] = std::uint8_t(i / 3 + random() % unsigned(spread));
    }
    PngRow row() const { return {now.data() + zerosBefore, above.data() + zerosBefore, size, pixelBytes}; }
};

TEST(PngFilters, EveryTargetChoosesAndWritesAsThePlainKernelsDo) {
    forEachTarget([](const char* target) {
        for (const std::size_t pixelBytes : {1, 3, 4})
            for (const int spread : {1, 3, 70, 256})
                for (std::size_t pixels = 1; pixels <= 140; ++pixels) {
                    const Rows rows(pixels * pixelBytes, pixelBytes, spread, unsigned(pixels));
                    SCOPED_TRACE(testing::Message() << target << ", " << pixels << " pixels of " << pixelBytes
                                                    << ", spread " << spread);
                    ASSERT_EQ(pngFilterCosts(rows.row()), plain::pngFilterCosts(rows.row()));
                    for (std::size_t filter = 0; filter < pngFilterCount; ++filter) {
                        std::vector<std::uint8_t> fast(rows.size + pngRowPadding);
                        std::vector<std::uint8_t> expected(rows.size);
                        applyPngFilter(PngFilter(filter), rows.row(), fast.data());
                        plain::applyPngFilter(PngFilter(filter), rows.row(), expected.data());
                        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), fast.begin()))
                            << "filter " << filter;
                    }
                }
    });
}

TEST(PngFilters, EveryTargetSamplesLongRowsAsThePlainKernelDoes) {
    forEachTarget([](const char* target) {
        for (std::size_t size = wholePngRow - 2; size < wholePngRow + 2 * pngCostStep + 3; ++size) {
            const Rows rows(size, 3, 70, unsigned(size));
            ASSERT_EQ(pngFilterCosts(rows.row()), plain::pngFilterCosts(rows.row()))
                << target << ", " << size << " bytes";
        }
    });
}

TEST(PngFilters, CountsOnlyTheSamplesOfLongRows) {
    const std::size_t size = wholePngRow + 1;
    const std::vector<std::uint8_t> zeros(zerosBefore + size + pngRowPadding);
    for (std::size_t place = 0; place < size; ++place) {
        std::vector<std::uint8_t> row = zeros;
        row[zerosBefore + place] = 1;
        const auto costs = pngFilterCosts({row.data() + zerosBefore, zeros.data() + zerosBefore, size, 3});
        ASSERT_EQ(costs[0], place % pngCostStep < pngCostSample ? 3u : 0u) << place;
    }
}

TEST(PngFilters, PaethAgreesForEveryKindOfNeighbours) {
    // left, up and up-left from a grid of values with all their extremes; the value itself is zero.
    const std::vector<int> values = {0, 1, 2, 3, 63, 64, 126, 127, 128, 129, 191, 192, 253, 254, 255};
    std::vector<std::uint8_t> now(zerosBefore);
    std::vector<std::uint8_t> above(zerosBefore);
    for (const int left : values)
        for (const int up : values)
            for (const int upLeft : values) {
                now.insert(now.end(), {std::uint8_t(left), 0});
                above.insert(above.end(), {std::uint8_t(upLeft), std::uint8_t(up)});
            }
    const std::size_t size = now.size() - zerosBefore;
    now.resize(now.size() + pngRowPadding);
    above.resize(now.size());
    const PngRow row{now.data() + zerosBefore, above.data() + zerosBefore, size, 1};
    std::vector<std::uint8_t> expected(size);
    plain::applyPngFilter(PngFilter::paeth, row, expected.data());
    forEachTarget([&](const char* target) {
        std::vector<std::uint8_t> fast(size + pngRowPadding);
        applyPngFilter(PngFilter::paeth, row, fast.data());
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), fast.begin())) << target;
    });
}

TEST(PngFilters, PacksColoursOnEveryTarget) {
    std::mt19937 random(1);
    forEachTarget([&](const char* target) {
        for (std::size_t count = 1; count <= 70; ++count) {
            std::vector<std::uint32_t> pixels(count);
            for (std::uint32_t& pixel : pixels)
                pixel = 0xff000000u | std::uint32_t(random());
            std::vector<std::uint8_t> fast(3 * count + pngRowPadding);
            std::vector<std::uint8_t> expected(3 * count);
            packRgb(pixels.data(), count, fast.data());
            plain::packRgb(pixels.data(), count, expected.data());
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), fast.begin())) << target << " " << count;
        }
    });
}

TEST(PngFilters, PacksTranslucentColoursOnEveryTarget) {
    enum class Kind { opaque, clear, any, mixed };
    forEachTarget([&](const char* target) {
        std::mt19937 random(3);
        for (const Kind kind : {Kind::opaque, Kind::clear, Kind::any, Kind::mixed})
            for (std::size_t count = 1; count <= 70; ++count) {
                std::vector<std::uint32_t> pixels(count);
                for (std::uint32_t& pixel : pixels) {
                    const bool isAny = kind == Kind::any || (kind == Kind::mixed && random() % 40 == 0);
                    pixel = isAny || kind == Kind::opaque ? std::uint32_t(random()) : 0;
                    if (!isAny && (kind == Kind::opaque || (kind == Kind::mixed && random() % 2 == 0)))
                        pixel |= 0xff000000u;
                }
                std::vector<std::uint8_t> fast(4 * count + pngRowPadding);
                std::vector<std::uint8_t> expected(4 * count);
                packRgba(pixels.data(), count, fast.data());
                plain::packRgba(pixels.data(), count, expected.data());
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), fast.begin()))
                    << target << " " << count << " " << int(kind);
            }
    });
}

TEST(PngFilters, CountsNothingForZerosAndMoreForLargerResiduals) {
    std::vector<std::uint8_t> row(zerosBefore + 300 + pngRowPadding);
    const std::vector<std::uint8_t> zeros(row.size());
    const auto cost = [&](std::uint8_t value) {
        row[zerosBefore + 150] = value;
        return pngFilterCosts({row.data() + zerosBefore, zeros.data() + zerosBefore, 300, 3})[0];
    };
    const std::vector<std::pair<int, unsigned>> expected = {{0, 0},   {1, 3},  {255, 3}, {2, 4},
                                                            {254, 4}, {4, 5},  {15, 6},  {16, 7},
                                                            {240, 7}, {31, 7}, {32, 8},  {128, 8}};
    for (const auto& [value, bits] : expected)
        EXPECT_EQ(cost(std::uint8_t(value)), bits) << value;
}

} // namespace
} // namespace framora::raster
