#include "editor/render/raster/Compositor.h"

#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PicturePaint.h"
#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/ScenePaint.h"
#include "editor/render/raster/SolidPaint.h"
#include "unit/raster/RandomPicture.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <random>

namespace framora::raster {
namespace {

Layer solid(RoundedRect shape, const Homography& toOutput, Float4 color) {
    return {shape, {}, {toOutput, {}}, std::make_shared<SolidPaint>(color), {}, {}};
}

std::vector<std::uint32_t> composed(int width, int height, const std::vector<Layer>& layers) {
    PixelBuffer buffer = PixelBuffer::create(width, height);
    for (int y = 0; y < height; ++y)
        std::memset(buffer.mutableView().row(y), 0x5a, std::size_t(buffer.mutableView().stride));
    compose(buffer.mutableView(), layers);
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < height; ++y)
        pixels.insert(pixels.end(), buffer.view().row(y), buffer.view().row(y) + width);
    return pixels;
}

TEST(Compositor, OverwritesEverythingWithNothing) {
    EXPECT_EQ(composed(700, 20, {}), std::vector<std::uint32_t>(700 * 20, 0u));
}

TEST(Compositor, BlendsSourceOver) {
    const Homography here = Homography::translation(2, 2);
    const auto pixels = composed(4, 4,
                                 {solid({10, 10, 0}, here, premultiplied(1, 0, 0, 1)),
                                  solid({10, 10, 0}, here, premultiplied(0, 0, 1, 0.25))});
    EXPECT_EQ(pixels, std::vector<std::uint32_t>(16, 0xffbf0040u));
}

TEST(Compositor, RoundsOnceHoweverManyLayers) {
    // Sixteen veils of a tenth: 1 - 0.9^16 = 0.8147, 207.7 of 255. Rounding in between would drift.
    std::vector<Layer> layers;
    for (int i = 0; i < 16; ++i)
        layers.push_back(solid({10, 10, 0}, Homography::translation(1, 1), premultiplied(1, 1, 1, 0.1)));
    EXPECT_EQ(composed(2, 2, layers)[0], 0xd0d0d0d0u);
}

TEST(Compositor, CutsTheHoleOut) {
    Layer ring = solid({8, 8, 0}, Homography::translation(5, 5), premultiplied(1, 1, 1, 1));
    ring.hole = RoundedRect{5, 5, 0};
    const auto pixels = composed(10, 10, {ring});
    EXPECT_EQ(pixels[1 * 10 + 5], 0xffffffffu) << "the ring";
    EXPECT_EQ(pixels[5 * 10 + 5], 0u) << "the hole";
    EXPECT_EQ(pixels[5 * 10 + 2], 0x80808080u) << "half of a pixel";
    EXPECT_EQ(pixels[0], 0u);
}

TEST(Compositor, GivesTheSameBytesWhateverTheThreads) {
    std::vector<Layer> layers;
    const Homography toMiddle = Homography::translation(350, 220);
    layers.push_back(
        {{700, 440, 0},
         {},
         {toMiddle},
         std::make_shared<GradientPaint>(GradientPaint::Kind::angular, 40, 700, 440,
                                         std::vector{premultiplied(1, 0, 0, 1), premultiplied(0, 1, 1, 1)},
                                         toMiddle.inverse()),
         Layer::Adjustment{1.3f, -0.1f},
         Layer::Noise{0.2f, 3, 4}});
    layers.push_back(solid({300, 200, 40}, toMiddle * Homography::rotation(15), premultiplied(0, 0, 1, 0.6)));
    const auto all = composed(701, 443, layers);
    for (const int threads : {1, 2, 5}) {
        setParallelThreadLimit(threads);
        EXPECT_EQ(composed(701, 443, layers), all) << threads;
    }
    setParallelThreadLimit(0);
}

TEST(Compositor, WritesInsideTheViewOnly) {
    PixelBuffer buffer = PixelBuffer::create(40, 40);
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x)
            buffer.mutableView().row(y)[x] = 0x12345678u;
    MutablePixelView part = buffer.mutableView();
    part.data += 10 * part.stride + 10 * 4;
    part.width = part.height = 20;
    compose(part, {solid({500, 500, 0}, {}, premultiplied(1, 1, 1, 1))});
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x) {
            const bool isInside = x >= 10 && x < 30 && y >= 10 && y < 30;
            ASSERT_EQ(buffer.view().row(y)[x], isInside ? 0xffffffffu : 0x12345678u) << x << "," << y;
        }
}

TEST(Compositor, ReplacesWhatLiesUnderAlsoWhereItIsNotOpaque) {
    const Homography here = Homography::translation(2, 2);
    Layer pane = solid({3, 10, 0}, here, premultiplied(0, 0, 1, 0.25));
    pane.blend = Layer::Blend::replace;
    const std::vector<Layer> layers = {solid({10, 10, 0}, here, premultiplied(1, 0, 0, 1)), pane};
    // Half of the first pixel is covered, then two whole ones, then half again.
    const auto pixels = composed(4, 1, layers);
    EXPECT_EQ(pixels, (std::vector<std::uint32_t>{0x9f7f0020u, 0x40000040u, 0x40000040u, 0x9f7f0020u}));
    PixelBuffer plainly = PixelBuffer::create(4, 1);
    plain::compose(plainly.mutableView(), layers);
    for (int x = 0; x < 4; ++x)
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(int(pixels[std::size_t(x)] >> shift & 255),
                        int(plainly.view().row(0)[x] >> shift & 255), 1);
}

TEST(Compositor, LeavesOutWhatIsHiddenAtTheSidesOfTilesAndNothingElse) {
    constexpr int width = 700;
    constexpr int height = 90;
    const Homography toMiddle = Homography::translation(width / 2.0, height / 2.0);
    const auto background = std::make_shared<GradientPaint>(
        GradientPaint::Kind::linear, 70, 600, 90,
        std::vector{premultiplied(1, 0.2, 0, 1), premultiplied(0, 0.4, 1, 1)}, toMiddle.inverse());
    const auto scene = std::make_shared<ScenePaint>(
        ScenePaint::Look{{premultiplied(0, 0, 0.2, 0.3), premultiplied(1, 1, 0.5, 0.3)}, 0.7}, width, height,
        toMiddle.inverse(), width, height);
    for (const double left : {0.0, 13.25, 130.0, 255.5})
        for (const double cardWidth : {60.0, 200.5, 420.0})
            for (const double turn : {0.0, 20.0}) {
                SCOPED_TRACE(testing::Message() << left << ", " << cardWidth << ", " << turn);
                const Homography place =
                    Homography::translation(left + cardWidth / 2, 45) * Homography::rotation(turn);
                std::vector<Layer> layers{{{600, 90, 0}, {}, {toMiddle}, background, {}, {}}};
                layers.push_back(solid({cardWidth + 60, 85, 0}, place, premultiplied(0, 0, 0, 0.2)));
                layers.push_back(solid({cardWidth + 20, 80, 12}, place, premultiplied(1, 1, 1, 0.4)));
                layers.back().blend = Layer::Blend::replace;
                layers.push_back(solid({cardWidth, 70, 8}, place, premultiplied(0.1, 0.6, 0.3, 1)));
                layers.push_back({{width, height, 0}, {}, {toMiddle}, scene, {}, {}});
                layers.back().blend = Layer::Blend::overlay;
                PixelBuffer plainly = PixelBuffer::create(width, height);
                plain::compose(plainly.mutableView(), layers);
                const auto pixels = composed(width, height, layers);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        for (int shift = 0; shift < 32; shift += 8)
                            ASSERT_NEAR(pixels[std::size_t(y * width + x)] >> shift & 255,
                                        plainly.view().row(y)[x] >> shift & 255, 2)
                                << x << ", " << y;
            }
}

/// Wants a part of every row, and of it some whose tiles are offered.
class Taker : public TileTaker {
public:
    Taker(int width, int height) : pieces(std::size_t(width) * std::size_t(height)), m_width(width) {}
    void findWanted(int, int, std::vector<Columns>& wanted) const override {
        wanted.push_back({10, 26});
        wanted.push_back({96, 208});
    }
    bool takeSole(const TileRect& tile, std::size_t layer) override {
        if (tile.x != 10)
            return false;
        const std::lock_guard guard(m_mutex);
        sole.emplace(tile.y, layer);
        return true;
    }
    void take(const TileRect& tile, const MixPixel* pixels) override {
        for (int y = 0; y < tile.height; ++y)
            packPixels(pixels + std::ptrdiff_t(y) * tile.width, std::size_t(tile.width),
                       pieces.data() + std::ptrdiff_t(tile.y + y) * m_width + tile.x);
    }

    std::vector<std::uint32_t> pieces;
    std::map<int, std::size_t> sole; ///< The layer, by the tile's first row.

private:
    int m_width;
    std::mutex m_mutex;
};

TEST(Compositor, HandsOverWantedTilesAsTheyAreMixed) {
    std::vector<Layer> layers;
    for (int i = 0; i < 5; ++i)
        layers.push_back(solid({90.0 + 7 * i, 60, 9},
                               Homography::translation(150, 60) * Homography::rotation(13 * i),
                               premultiplied(0.2 * i, 0.5, 1 - 0.2 * i, 0.7)));
    const int width = 301;
    const int height = 131;
    const auto whole = composed(width, height, layers);
    Taker taker(width, height);
    composeTiles(width, height, layers, taker);
    EXPECT_TRUE(taker.sole.empty()) << "something lies there, but it hides nothing";
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::size_t i = std::size_t(y) * width + std::size_t(x);
            const bool isWanted = (x >= 10 && x < 26) || (x >= 96 && x < 208);
            const std::uint32_t expected = isWanted ? whole[i] : 0u;
            // A row's coverage is summed up from where its tile starts: the last bit may round elsewhere.
            for (int shift = 0; shift < 32; shift += 8)
                ASSERT_NEAR(int(taker.pieces[i] >> shift & 255), int(expected >> shift & 255), 1)
                    << x << "," << y;
        }
}

TEST(Compositor, OffersTilesOfWhichOneLayerIsSeen) {
    constexpr int width = 301;
    constexpr int height = 64;
    const Homography toMiddle = Homography::translation(150.5, 32);
    const Layer ground = solid({400, 100, 0}, toMiddle, premultiplied(0.2, 0.5, 1, 1));
    const Layer below = solid({20, 20, 0}, Homography::translation(18, 40), premultiplied(1, 0, 0, 1));
    Layer above = solid({301, 16, 0}, Homography::translation(150.5, 24), premultiplied(1, 1, 1, 0.5));
    Layer dyed = ground;
    dyed.adjustment = Layer::Adjustment{1.2f, 0.1f};

    Taker taker(width, height);
    composeTiles(width, height, {below, ground, above}, taker);
    EXPECT_EQ(taker.sole, (std::map<int, std::size_t>{{0, 1}, {32, 1}, {48, 1}}));
    EXPECT_EQ(taker.pieces[10], 0u) << "what was taken is not mixed";
    EXPECT_NE(taker.pieces[16 * width + 10], 0u);
    EXPECT_NE(taker.pieces[100], 0u) << "nor is what was refused left out";
    Taker another(width, height);
    composeTiles(width, height, {dyed}, another);
    EXPECT_TRUE(another.sole.empty()) << "its paint alone does not make it";
}

/// Shapes of all kinds over one another, and sometimes a scene over them all.
std::vector<Layer> randomLayers(std::mt19937& random, int width, int height) {
    const auto between = [&](double least, double most) {
        return std::uniform_real_distribution(least, most)(random);
    };
    const auto oneIn = [&](int count) { return int(random() % unsigned(count)) == 0; };
    const Placement toMiddle{Homography::translation(width / 2.0, height / 2.0)};
    std::vector<Layer> layers;
    const int count = 1 + int(random() % 6);
    const bool isGrounded = oneIn(2);
    for (int i = 0; i < count; ++i) {
        Layer layer;
        layer.placement.toOutput = Homography::translation(width / 2.0 + between(-300, 300), height / 2.0) *
                                   Homography::rotation(oneIn(3) ? between(-20, 20) : 0);
        layer.shape = {between(300, 2600), between(300, 2000), between(0, 80)};
        if (i == 0 && isGrounded) {
            layer.placement = toMiddle;
            layer.shape = {double(width), double(height), 0};
        }
        const double alpha = oneIn(2) ? 1 : between(0.1, 1);
        const std::vector colors{premultiplied(1, between(0, 1), 0, alpha),
                                 premultiplied(0, between(0, 1), 1, alpha)};
        if (oneIn(2))
            layer.paint = std::make_shared<SolidPaint>(colors.front());
        else
            layer.paint = std::make_shared<GradientPaint>(GradientPaint::Kind::linear, between(0, 360), width,
                                                          height, colors, layer.placement.toOutput.inverse());
        if (oneIn(4))
            layer.opacity = float(between(0.2, 1));
        if (oneIn(4))
            layer.hole = RoundedRect{layer.shape.width * 0.6, layer.shape.height * 0.5, 10};
        if (oneIn(5))
            layer.blend = Layer::Blend::overlay;
        else if (oneIn(4))
            layer.blend = Layer::Blend::replace;
        layers.push_back(std::move(layer));
    }
    if (oneIn(2)) {
        const ScenePaint::Look look{{premultiplied(1, 1, 1, 0.3), premultiplied(0.2, 0.3, 0.6, 0.3)}, 0.8};
        const auto scene =
            std::make_shared<ScenePaint>(look, width, height, toMiddle.toOutput.inverse(), width, height);
        layers.push_back(
            {{width - 100.0, height - 90.0, 0}, {}, toMiddle, scene, {}, {}, 1, Layer::Blend::overlay, true});
    }
    return layers;
}

TEST(Compositor, DrawsAnyLayersAsTheirPieces) {
    constexpr int width = 2400;
    constexpr int height = 1750;
    constexpr int misplaced = 4; // pixels beside a line of the cache: its tiles begin elsewhere
    std::mt19937 random(5);
    for (int round = 0; round < 16; ++round) {
        const std::vector<Layer> layers = randomLayers(random, width, height);
        PixelBuffer room = PixelBuffer::create(width + 16, height);
        MutablePixelView whole = room.mutableView();
        ASSERT_GT(std::ptrdiff_t(whole.stride) * height, 16 << 20) << "large";
        whole.data += misplaced * 4;
        whole.width = width;
        compose(whole, layers);
        PixelBuffer pieces = PixelBuffer::create(width, height);
        Compositor(width, height, layers).draw(pieces.mutableView(), 0);
        int different = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                different += whole.row(y)[x] != pieces.view().row(y)[x];
        EXPECT_EQ(different, 0) << "round " << round;
    }
}

TEST(Compositor, ReplacesByHalfWhateverLiesInTheSameTile) {
    constexpr int width = 512;
    constexpr int height = 128;
    const Homography toMiddle = Homography::translation(width / 2.0, height / 2.0);
    std::vector<Layer> layers{solid({512, 128, 0}, toMiddle, premultiplied(1, 1, 1, 1)),
                              solid({300, 80, 20}, toMiddle, premultiplied(1, 0, 0, 1)),
                              solid({400, 100, 10}, toMiddle, premultiplied(0.5, 0.5, 0.5, 1))};
    layers[1].opacity = 0.9f;
    layers[2].opacity = 0.5f;
    layers[2].blend = Layer::Blend::replace;
    const auto pixels = composed(width, height, layers);
    for (int y = 20; y < 108; ++y)
        for (int x = 60; x < 100; ++x)
            ASSERT_EQ(pixels[std::size_t(y * width + x)], pixels[60 * width + 80]) << x << ", " << y;
}

TEST(Compositor, DrawsALargePictureAsItsPiecesWhereverItLiesInMemory) {
    constexpr int width = 2390;
    constexpr int height = 1790;
    std::vector<Layer> layers;
    const Homography toMiddle = Homography::translation(width / 2.0 + 0.3, height / 2.0);
    layers.push_back(
        {{2300.4, 1700.7, 90},
         {},
         {toMiddle},
         std::make_shared<GradientPaint>(GradientPaint::Kind::linear, 40, 2300, 1700,
                                         std::vector{premultiplied(1, 0, 0, 1), premultiplied(0, 1, 1, 0.5)},
                                         toMiddle.inverse()),
         Layer::Adjustment{1.3f, -0.1f},
         Layer::Noise{0.2f, 3, 4}});
    for (int i = 0; i < 5; ++i) {
        layers.push_back(solid({900.0 + 210 * i, 600, 50},
                               Homography::translation(1150, 880) * Homography::rotation(13 * i + 3),
                               premultiplied(0.2 * i, 0.5, 1 - 0.2 * i, 0.7)));
        if (i == 3)
            layers.back().hole = RoundedRect{700, 400, 30};
    }
    PixelBuffer pieces = PixelBuffer::create(width, height);
    const Compositor picture(width, height, layers);
    picture.draw(pieces.mutableView(), 0);
    // Its rows begin where lines of the cache do, and beside that.
    for (const int misplaced : {0, 1, 4, 15}) {
        PixelBuffer room = PixelBuffer::create(width + 16, height);
        MutablePixelView whole = room.mutableView();
        ASSERT_EQ(whole.stride % 64, 0);
        ASSERT_GT(std::ptrdiff_t(whole.stride) * height, 16 << 20) << "large";
        whole.data += misplaced * 4;
        whole.width = width;
        compose(whole, layers);
        int different = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                different += whole.row(y)[x] != pieces.view().row(y)[x];
        EXPECT_EQ(different, 0) << "pixels, " << misplaced << " beside";
    }
}

/// Draws a tilted picture about the pixel (x, y), in one piece or in some that begin anywhere.
PixelBuffer drawnTilted(const std::shared_ptr<const PicturePyramid>& picture, int x, int y, bool isInPieces) {
    constexpr int width = 330;
    constexpr int height = 250;
    Placement placement{Homography::tiltX(25, 300) * Homography::rotation(8) * Homography::scaling(2, 2)};
    placement.originX = x;
    placement.originY = y;
    const std::vector<Layer> layers{
        {{120, 90, 0},
         {},
         placement,
         std::make_shared<PicturePaint>(picture, 120, 90, placement, width, height),
         {},
         {}}};
    PixelBuffer drawn = PixelBuffer::create(width, height);
    if (!isInPieces) {
        compose(drawn.mutableView(), layers);
        return drawn;
    }
    const Compositor pieces(width, height, layers);
    for (int top = 0, end = 0; top < height; top = end) {
        end = std::min(top + 1 + top % 41, height);
        MutablePixelView rows = drawn.mutableView();
        rows.data = reinterpret_cast<std::byte*>(rows.row(top));
        rows.height = end - top;
        pieces.draw(rows, top);
    }
    return drawn;
}

TEST(Compositor, DrawsATiltedPictureAlikeWhereverItsBlocksBegin) {
    std::mt19937 random(3);
    PixelBuffer buffer = PixelBuffer::create(120, 90);
    for (int y = 0; y < 90; ++y) {
        const auto row = randomPicture(random, 120);
        std::copy(row.begin(), row.end(), buffer.mutableView().row(y));
    }
    const auto picture = std::make_shared<const PicturePyramid>(buffer.view());
    const PixelBuffer first = drawnTilted(picture, 160, 128, false);
    for (const auto& [right, down] :
         {std::pair(0, 0), std::pair(1, 0), std::pair(-33, 17), std::pair(20, -31)})
        for (const bool isInPieces : {false, true}) {
            const PixelBuffer drawn = drawnTilted(picture, 160 + right, 128 + down, isInPieces);
            int different = 0;
            int seen = 0;
            for (int y = std::max(0, -down); y < std::min(250, 250 - down); ++y)
                for (int x = std::max(0, -right); x < std::min(330, 330 - right); ++x) {
                    different += drawn.view().row(y + down)[x + right] != first.view().row(y)[x];
                    seen += first.view().row(y)[x] != 0;
                }
            EXPECT_EQ(different, 0) << right << ", " << down << (isInPieces ? " in pieces" : "");
            EXPECT_GT(seen, 20000);
        }
}

} // namespace
} // namespace framora::raster
