#include "editor/render/raster/PngUnfilter.h"

#include "EachTarget.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

constexpr std::size_t zerosBefore = 4;
using Bytes = std::vector<std::uint8_t>;

Bytes randomBytes(std::size_t count, int spread, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = std::uint8_t(i / 3 + random() % unsigned(spread));
    return bytes;
}

/// A row of samples and the one above it behind zeros, as the filters take them.
struct Samples {
    Bytes now;
    Bytes above;

    Samples(std::size_t size, int spread, unsigned seed)
        : now(randomBytes(zerosBefore + size + pngRowPadding, spread, seed)),
          above(randomBytes(now.size(), spread, seed + 1)) {
        std::fill_n(now.begin(), zerosBefore, 0);
        std::fill_n(above.begin(), zerosBefore, 0);
    }
};

TEST(PngUnfilter, EveryTargetGivesBackWhatWasFiltered) {
    forEachTarget([](const char* target) {
        for (const std::size_t pixelBytes : {3, 4})
            for (const int spread : {1, 3, 70, 256})
                for (std::size_t pixels = 1; pixels <= 140; ++pixels) {
                    const std::size_t size = pixels * pixelBytes;
                    const Samples samples(size, spread, unsigned(pixels));
                    for (std::size_t filter = 0; filter < pngFilterCount; ++filter) {
                        SCOPED_TRACE(testing::Message()
                                     << target << ", " << pixels << " pixels of " << pixelBytes << ", spread "
                                     << spread << ", filter " << filter);
                        const std::uint8_t* above = samples.above.data() + zerosBefore;
                        const std::uint8_t* now = samples.now.data() + zerosBefore;
                        Bytes filtered(size + pngRowPadding);
                        plain::applyPngFilter(PngFilter(filter), {now, above, size, pixelBytes},
                                              filtered.data());
                        Bytes out(size + pngRowPadding);
                        undoPngFilter(PngFilter(filter),
                                      {filtered.data(), above, out.data(), size, pixelBytes});
                        ASSERT_TRUE(std::equal(now, now + size, out.begin()));
                        std::fill(out.begin(), out.end(), 0);
                        plain::undoPngFilter(PngFilter(filter),
                                             {filtered.data(), above, out.data(), size, pixelBytes});
                        ASSERT_TRUE(std::equal(now, now + size, out.begin())) << "in plain loops";
                    }
                }
    });
}

TEST(PngUnfilter, UnpacksOnEveryTargetAsThePlainKernelsDo) {
    forEachTarget([](const char* target) {
        for (std::size_t count = 1; count <= 70; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels");
            const Bytes samples = randomBytes(count * 4 + pngRowPadding, 256, unsigned(count));
            constexpr std::uint32_t guard = 0x12345678;
            std::vector<std::uint32_t> fast(count + 1, guard);
            std::vector<std::uint32_t> expected(count + 1, guard);
            unpackRgb(samples.data(), count, fast.data());
            plain::unpackRgb(samples.data(), count, expected.data());
            ASSERT_EQ(fast, expected);
            unpackRgba(samples.data(), count, fast.data());
            plain::unpackRgba(samples.data(), count, expected.data());
            ASSERT_EQ(fast, expected);
        }
    });
}

TEST(PngUnfilter, PremultipliesRoundedToTheNearest) {
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
        Bytes samples;
        for (std::uint32_t colour = 0; colour < 256; ++colour)
            samples.insert(samples.end(), {std::uint8_t(colour), 0, 255, std::uint8_t(alpha)});
        samples.resize(samples.size() + pngRowPadding);
        std::vector<std::uint32_t> pixels(256);
        unpackRgba(samples.data(), pixels.size(), pixels.data());
        for (std::uint32_t colour = 0; colour < 256; ++colour) {
            const std::uint32_t expected = (2 * colour * alpha + 255) / 510;
            ASSERT_EQ(pixels[colour], alpha << 24 | expected << 16 | alpha) << colour << " at " << alpha;
        }
    }
}

} // namespace
} // namespace framora::raster
