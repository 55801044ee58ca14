#include "editor/render/ScreenshotRenderer.h"

#include "unit/render/TestPictures.h"

#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <thread>

namespace framora {
namespace {

TEST(ScreenshotRenderer, DrawsTheFrameAtTwiceItsPoints) {
    ScreenshotStyleConfig config = bareStyle();
    config.padding = 25;
    config.scale = 1.5;
    const QImage result = ScreenshotRenderer(flatPicture(101, 60), config).render();
    EXPECT_EQ(result.size(), QSize(453, 330));
    EXPECT_EQ(result.devicePixelRatio(), 2);
    EXPECT_EQ(result.deviceIndependentSize(), QSizeF(226.5, 165));
}

TEST(ScreenshotRenderer, GivesTheSameAgain) {
    const ScreenshotRenderer renderer(noisePicture(80, 50), ScreenshotStyleConfig());
    const QImage first = renderer.render();
    EXPECT_FALSE(first.isNull());
    EXPECT_EQ(renderer.render(), first);
}

TEST(ScreenshotRenderer, IgnoresTheZoomAndTheSocialPresetsSize) {
    ScreenshotStyleConfig config = bareStyle();
    const QImage image = noisePicture(80, 50);
    const QImage plain = ScreenshotRenderer(image, config).render();
    config.zoom = 250;
    EXPECT_EQ(ScreenshotRenderer(image, config).render(), plain);
    config.selectedSocialPreset = PresetCatalogues::socialMediaPresets()[0];
    EXPECT_EQ(ScreenshotRenderer(image, config).render().size(), plain.size());
}

TEST(ScreenshotRenderer, CutsTheCanvasWhereTheFrameIsSmaller) {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::color;
    config.padding = 50;
    config.scale = 0.5;
    const QImage half = ScreenshotRenderer(flatPicture(100, 100), config).render();
    ASSERT_EQ(half.size(), QSize(200, 200));
    EXPECT_EQ(half.pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(half.pixel(49, 100), qRgb(255, 255, 255));
    EXPECT_EQ(half.pixel(50, 100), qRgb(255, 0, 0));
    config.scale = 2;
    const QImage twice = ScreenshotRenderer(flatPicture(100, 100), config).render();
    ASSERT_EQ(twice.size(), QSize(800, 800));
    EXPECT_EQ(twice.pixel(0, 0), 0u) << "around the canvas";
}

TEST(ScreenshotRenderer, DecodesItsBackgroundAndDoesWithoutWhenItCannot) {
    QTemporaryDir folder;
    const QString path = folder.filePath("blue.png");
    ASSERT_TRUE(flatPicture(8, 8, Qt::blue).save(path));
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::image;
    config.backgroundImageURL = QUrl::fromLocalFile(path);
    EXPECT_EQ(ScreenshotRenderer(flatPicture(10, 10), config).render().pixel(3, 3), qRgb(0, 0, 255));
    config.backgroundImageURL = QUrl::fromLocalFile(folder.filePath("missing.png"));
    const QImage without = ScreenshotRenderer(flatPicture(10, 10), config).render();
    EXPECT_EQ(without.size(), QSize(340, 340));
    EXPECT_EQ(without.pixel(3, 3), 0u);
    config.backgroundImageURL.reset();
    EXPECT_EQ(ScreenshotRenderer(flatPicture(10, 10), config).render().pixel(3, 3), 0u);
    config.backgroundImageURL = QUrl::fromLocalFile(path);
    config.backgroundType = BackgroundType::transparent;
    EXPECT_EQ(ScreenshotRenderer(flatPicture(10, 10), config).render().pixel(3, 3), 0u);
}

TEST(ScreenshotRenderer, GivesNothingForNoFrame) {
    ScreenshotStyleConfig config = bareStyle();
    EXPECT_TRUE(ScreenshotRenderer(QImage(), config).render().isNull());
    config.scale = 0;
    EXPECT_TRUE(ScreenshotRenderer(flatPicture(10, 10), config).render().isNull());
    config.scale = 1;
    config.padding = -5;
    EXPECT_TRUE(ScreenshotRenderer(flatPicture(10, 10), config).render().isNull());
}

TEST(RenderComposition, RunsOnManyThreadsAtOnce) {
    const QImage image = noisePicture(120, 90);
    ScreenshotStyleConfig config;
    config.backgroundType = BackgroundType::gradient;
    config.rotationX = 30;
    config.imageScale = 40;
    const QImage expected = renderComposition(image, config);
    std::vector<QImage> results(6);
    std::vector<std::thread> threads;
    for (QImage& result : results)
        threads.emplace_back([&] { result = renderComposition(image, config); });
    for (std::thread& thread : threads)
        thread.join();
    for (const QImage& result : results)
        EXPECT_EQ(result, expected);
}

using ScreenshotRendererDeathTest = testing::Test;

TEST_F(ScreenshotRendererDeathTest, EndsTheProgramOffTheMainThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            std::unique_ptr<QThread> thread(
                QThread::create([] { ScreenshotRenderer(flatPicture(4, 4), bareStyle()).render(); }));
            thread->start();
            thread->wait();
        },
        "ScreenshotRenderer");
}

} // namespace
} // namespace framora
