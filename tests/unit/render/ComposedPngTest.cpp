#include "editor/render/ComposedPng.h"

#include "editor/render/PictureFile.h"
#include "editor/render/RasterView.h"
#include "editor/render/raster/Opacity.h"
#include "editor/render/raster/ParallelFor.h"
#include "unit/render/MemoryLimit.h"
#include "unit/render/RandomComposition.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>

namespace framora {
namespace {

constexpr unsigned styles = 60;

/// A picture of a few colours on a canvas of a size that no tile divides.
Composition plainComposition(BackgroundType background) {
    Composition composition;
    composition.image = QImage(301, 203, QImage::Format_ARGB32_Premultiplied);
    composition.image.fill(qRgb(20, 90, 160));
    composition.isRendering = true;
    composition.config.backgroundType = background;
    composition.config.padding = 37;
    return composition;
}

QByteArray composed(const Composition& composition) {
    return composedPng(composition).value_or(QByteArray());
}

QByteArray encodedWhole(const Composition& composition) {
    const QSizeF frame = outputFrame(pointSize(composition.image), composition.config);
    return encodePng(CompositionRasterizer().drawFrame(composition, frame, 2), 144);
}

TEST(Compositor, DrawsThePiecesOfAPictureAsTheWhole) {
    for (unsigned seed = 0; seed < styles; ++seed) {
        const RandomComposition random(seed);
        CompositionRasterizer rasterizer;
        const QSize size = random.viewport().pixelSize;
        QImage whole(size, QImage::Format_ARGB32_Premultiplied);
        const std::vector<raster::Layer> layers = rasterizer.layers(random.composition(), random.viewport());
        raster::compose(mutableRasterView(whole), layers);
        const raster::Compositor picture(size.width(), size.height(), layers);
        QImage pieces(size, QImage::Format_ARGB32_Premultiplied);
        pieces.fill(qRgba(1, 2, 3, 4));
        raster::MutablePixelView rows = mutableRasterView(pieces);
        int top = 0;
        for (int count = 1; top < size.height(); top += count, count = count * 3 % 41) {
            rows.height = std::min(count, size.height() - top);
            picture.draw(rows, top);
            rows.data += rows.height * rows.stride;
        }
        EXPECT_EQ(pieces, whole) << "seed " << seed;
    }
}

TEST(Compositor, IsSureOfAnOpaquePictureOnlyWhereItIsOne) {
    int sure = 0;
    for (unsigned seed = 0; seed < styles; ++seed) {
        const RandomComposition random(seed);
        CompositionRasterizer rasterizer;
        const QSize size = random.viewport().pixelSize;
        const QImage whole = rasterizer.draw(random.composition(), random.viewport());
        const raster::Compositor picture(size.width(), size.height(),
                                         rasterizer.layers(random.composition(), random.viewport()));
        if (!picture.isSurelyOpaque())
            continue;
        ++sure;
        EXPECT_TRUE(raster::isOpaque(rasterView(whole))) << "seed " << seed;
    }
    EXPECT_GT(sure, 0);
}

TEST(CompositionRasterizer, SaysThatTheCanvasIsOpaqueOnlyWhereItIs) {
    int opaque = 0;
    const auto check = [&](const Composition& composition, const CompositionRasterizer::Viewport& viewport) {
        CompositionRasterizer rasterizer;
        const QImage drawn = rasterizer.draw(composition, viewport);
        if (!rasterizer.isCanvasOpaque())
            return true;
        ++opaque;
        const QSizeF canvas =
            canvasSize(pointSize(composition.image), composition.config) * viewport.pixelsPerPoint;
        const QPointF corner = viewport.canvasCentre - QPointF(canvas.width(), canvas.height()) / 2;
        const QRectF place = QRectF(corner, canvas) & QRectF(drawn.rect());
        for (int y = int(std::ceil(place.top())); y < int(std::floor(place.bottom())); ++y)
            for (int x = int(std::ceil(place.left())); x < int(std::floor(place.right())); ++x)
                if (qAlpha(drawn.pixel(x, y)) != 255)
                    return false;
        return true;
    };
    for (unsigned seed = 0; seed < styles; ++seed) {
        const RandomComposition random(seed);
        EXPECT_TRUE(check(random.composition(), random.viewport())) << "seed " << seed;
    }
    EXPECT_GT(opaque, 0);
    // A frame of glass that reaches over the canvas's edge.
    for (const double padding : {4.0, 10.0, 60.0}) {
        Composition composition = plainComposition(BackgroundType::gradient);
        composition.config.padding = padding;
        composition.config.mockupStyle = MockupStyle::glassEffect;
        composition.config.screenshotOffset = {75, 0};
        EXPECT_TRUE(check(composition, {QSize(1200, 700), 1.6, QPointF(600, 350)})) << padding;
    }
}

TEST(ComposedPng, IsTheFileOfTheFinishedPicture) {
    for (unsigned seed = 0; seed < styles; ++seed) {
        const RandomComposition random(seed);
        Composition composition = random.composition();
        composition.isRendering = true;
        EXPECT_EQ(composed(composition), encodedWhole(composition)) << "seed " << seed;
    }
}

TEST(ComposedPng, IsTheFileOfTheFinishedPictureWhateverShowsThatItIsOpaque) {
    // A canvas that fills the frame, one that leaves corners, and none under a picture that fills the frame.
    Composition filled = plainComposition(BackgroundType::gradient);
    Composition turned = filled;
    turned.config.rotation = 30;
    Composition bare = plainComposition(BackgroundType::transparent);
    bare.config.padding = 0;
    bare.config.borderRadius = 0;
    for (const Composition& composition : {filled, turned, bare}) {
        const QByteArray expected = encodedWhole(composition);
        EXPECT_FALSE(expected.isEmpty());
        EXPECT_EQ(composed(composition), expected);
        raster::setParallelThreadLimit(1);
        EXPECT_EQ(composed(composition), expected) << "by one thread";
        raster::setParallelThreadLimit(0);
    }
    constexpr int colourType = 25;
    EXPECT_EQ(composed(filled).at(colourType), 2);
    EXPECT_EQ(composed(turned).at(colourType), 6);
    EXPECT_EQ(composed(bare).at(colourType), 2);
}

TEST(ComposedPng, IsNothingWhereTheFrameCannotBeDrawn) {
    Composition composition = plainComposition(BackgroundType::gradient);
    for (const double scale : {0.0, 1e6, std::numeric_limits<double>::quiet_NaN()}) {
        composition.config.scale = scale;
        EXPECT_FALSE(composedPng(composition)) << scale;
    }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they take more than all memory
TEST(ComposedPngDeathTest, IsEmptyWhereMemoryIsShort) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto compose = [] {
        // A gigabyte is asked for where half of one is to be had: only the whole of this frame shows that
        // it is not opaque.
        limitMemoryTo(rlim_t(512) << 20);
        Composition composition = plainComposition(BackgroundType::image);
        composition.loadedBackgroundImage = QImage(8, 8, QImage::Format_ARGB32_Premultiplied);
        composition.loadedBackgroundImage.fill(Qt::blue);
        composition.loadedBackgroundImage.setPixel(4, 4, 0);
        composition.image.setDevicePixelRatio(0.04);
        composition.config.padding *= 25;
        const auto file = composedPng(composition);
        std::_Exit(file && file->isEmpty() ? 0 : 1);
    };
    EXPECT_EXIT(compose(), testing::ExitedWithCode(0), "");
}

TEST(ComposedPngDeathTest, IsEmptyWhereLayersFindNoMemory) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto compose = [] {
        Composition composition = plainComposition(BackgroundType::gradient);
        composition.image = QImage(30'000, 8, QImage::Format_ARGB32_Premultiplied);
        composition.image.fill(Qt::red);
        composition.config.padding = 0;
        // Where the picture's columns are read from takes megabytes.
        limitMemoryTo(rlim_t(1) << 20);
        const auto file = composedPng(composition);
        std::_Exit(file && file->isEmpty() ? 0 : 1);
    };
    EXPECT_EXIT(compose(), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
} // namespace framora
