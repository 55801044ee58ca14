#include "editor/views/ScreenshotPreviewCanvas.h"

#include "editor/render/CompositionRasterizer.h"
#include "support/MediaFiles.h"

#include <QFile>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace framora {
namespace {

class Canvas : public testing::Test {
public:
    static void SetUpTestSuite() { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); }

    Canvas() {
        image = QImage(200, 100, QImage::Format_ARGB32_Premultiplied);
        image.fill(QColor(200, 30, 40));
        config.backgroundType = BackgroundType::color;
        config.padding = 50;
        window.resize(600, 400);
        canvas = new ScreenshotPreviewCanvas(window.contentItem());
        canvas->setSize({600, 400});
        canvas->setImage(image);
        canvas->setConfig(config);
        // What the view model does with the answer.
        QObject::connect(canvas, &ScreenshotPreviewCanvas::screenshotOffsetChanged, canvas,
                         [this](QSizeF offset) {
                             offsets.append(offset);
                             config.screenshotOffset = {offset.width(), offset.height()};
                             canvas->setConfig(config);
                         });
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    void set(auto apply) {
        apply(config);
        canvas->setConfig(config);
    }
    QColor shown(int x, int y) { return window.grabWindow().pixelColor(x, y); }

    QQuickWindow window;
    ScreenshotPreviewCanvas* canvas = nullptr;
    QImage image;
    ScreenshotStyleConfig config;
    QList<QSizeF> offsets;
};

TEST_F(Canvas, ADragEndsWithTheNewOffsetOnce) {
    set([](auto& style) { style.screenshotOffset = {5, 5}; });
    QSignalSpy dragging(canvas, &ScreenshotPreviewCanvas::isDraggingChanged);
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    EXPECT_TRUE(canvas->isDragging());
    QTest::mouseMove(&window, {320, 195});
    EXPECT_EQ(canvas->dragOffset(), QSizeF(20, -5));
    QTest::mouseMove(&window, {330, 190});
    EXPECT_TRUE(offsets.isEmpty()) << "only at the end";
    EXPECT_EQ(canvas->config().screenshotOffset, (Size{5, 5})) << "the canvas never writes it";
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {330, 190});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(35, -5)});
    EXPECT_EQ(canvas->dragOffset(), QSizeF(0, 0));
    EXPECT_FALSE(canvas->isDragging());
    EXPECT_EQ(dragging.count(), 2);
}

TEST_F(Canvas, AClickReportsTheUnchangedOffset) {
    set([](auto& style) { style.screenshotOffset = {5, 6}; });
    QTest::mouseClick(&window, Qt::LeftButton, {}, {300, 200});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(5, 6)});
    EXPECT_FALSE(canvas->isDragging());
}

TEST_F(Canvas, ADragCountsInCanvasPointsAtAnyZoom) {
    set([](auto& style) { style.zoom = 50; });
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {320, 190});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {320, 190});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(40, -20)});
}

TEST_F(Canvas, APressBesideTheScreenshotDragsNothing) {
    QTest::mouseClick(&window, Qt::LeftButton, {}, {180, 200});
    EXPECT_TRUE(offsets.isEmpty()) << "20 points left of it, on the background";
    QTest::mouseClick(&window, Qt::LeftButton, {}, {205, 200});
    EXPECT_EQ(offsets.size(), 1);
}

TEST_F(Canvas, TheScreenshotIsFoundWhereItWasTurnedTo) {
    set([](auto& style) { style.rotation = 90; });
    QTest::mouseClick(&window, Qt::LeftButton, {}, {205, 200});
    EXPECT_TRUE(offsets.isEmpty());
    QTest::mouseClick(&window, Qt::LeftButton, {}, {300, 110});
    EXPECT_EQ(offsets.size(), 1);
}

TEST_F(Canvas, ShowsTheCompositionAtItsZoomInTheMiddle) {
    set([](auto& style) {
        style.zoom = 150;
        style.customColor = {0, 0.5, 1, 1};
    });
    const QImage grabbed = window.grabWindow().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    CompositionRasterizer rasterizer;
    Composition composition;
    composition.image = image;
    composition.config = config;
    const QImage expected = rasterizer.draw(composition, {{600, 400}, 1.5, {300, 200}});
    // The canvas is 450 x 300 there.
    const QRect inside(75, 50, 450, 300);
    EXPECT_EQ(grabbed.copy(inside), expected.copy(inside));
}

TEST_F(Canvas, TheScreenshotFollowsThePointerWhileItIsDragged) {
    const QColor red(200, 30, 40);
    EXPECT_EQ(shown(395, 200), red);
    EXPECT_NE(shown(405, 200), red);
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {320, 200});
    EXPECT_EQ(shown(405, 200), red);
    EXPECT_NE(shown(215, 200), red);
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {320, 200});
    EXPECT_EQ(shown(405, 200), red) << "and stays where it was let go";
}

TEST_F(Canvas, LoadsItsBackgroundAndClearsItWithTheUrl) {
    QTemporaryDir folder;
    QImage green(30, 30, QImage::Format_RGB32);
    green.fill(QColor(0, 200, 0));
    ASSERT_TRUE(green.save(folder.filePath(u"green.png"_qs)));
    QSignalSpy loaded(canvas, &ScreenshotPreviewCanvas::backgroundLoaded);
    set([&](auto& style) {
        style.backgroundType = BackgroundType::image;
        style.backgroundImageURL = QUrl::fromLocalFile(folder.filePath(u"green.png"_qs));
    });
    EXPECT_TRUE(canvas->loadedBackgroundImage().isNull()) << "never inside the call";
    ASSERT_TRUE(loaded.wait(5000));
    EXPECT_EQ(shown(170, 120), QColor(0, 200, 0));
    set([](auto& style) { style.backgroundImageURL.reset(); });
    EXPECT_TRUE(canvas->loadedBackgroundImage().isNull());
    EXPECT_NE(shown(170, 120), QColor(0, 200, 0));
}

TEST_F(Canvas, APictureThatComesTooLateIsIgnored) {
    QTemporaryDir folder;
    QImage picture(30, 30, QImage::Format_RGB32);
    picture.fill(Qt::green);
    ASSERT_TRUE(picture.save(folder.filePath(u"a.png"_qs)));
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(folder.filePath(u"b.png"_qs)));
    QSignalSpy loaded(canvas, &ScreenshotPreviewCanvas::backgroundLoaded);
    for (const QString& name : {u"a.png"_qs, u"b.png"_qs})
        set([&](auto& style) { style.backgroundImageURL = QUrl::fromLocalFile(folder.filePath(name)); });
    ASSERT_TRUE(loaded.wait(5000));
    QTest::qWait(0);
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_EQ(canvas->loadedBackgroundImage().pixelColor(3, 3), QColor(Qt::blue));
}

TEST_F(Canvas, LoadsHeifPicturesAndVideoStillsToo) {
    QTemporaryDir folder;
    const auto colored = [](QColor color) {
        QImage picture(64, 48, QImage::Format_RGB32);
        picture.fill(color);
        return picture;
    };
    QFile heif(folder.filePath(u"still.heic"_qs));
    ASSERT_TRUE(heif.open(QIODevice::WriteOnly));
    heif.write(heifFile(colored(QColor(0, 200, 0))));
    heif.close();
    // Blue from the first second on; the short clip is over by then.
    const auto clip = [&](int i) { return colored(i < 10 ? QColor(220, 0, 0) : QColor(0, 0, 220)); };
    ASSERT_EQ(makeClip(folder.filePath(u"film.mp4"_qs), 15, u"10"_qs, clip), QString());
    ASSERT_EQ(makeClip(folder.filePath(u"short.mp4"_qs), 4, u"10"_qs, clip), QString());

    QSignalSpy loaded(canvas, &ScreenshotPreviewCanvas::backgroundLoaded);
    const std::pair<QString, QColor> files[] = {{u"still.heic"_qs, QColor(0, 200, 0)},
                                                {u"film.mp4"_qs, QColor(0, 0, 220)},
                                                {u"short.mp4"_qs, QColor(220, 0, 0)}};
    for (const auto& [name, color] : files) {
        set([&, file = name](auto& style) {
            style.backgroundType = BackgroundType::image;
            style.backgroundImageURL = QUrl::fromLocalFile(folder.filePath(file));
        });
        EXPECT_TRUE(canvas->loadedBackgroundImage().isNull()) << "cleared at once";
        ASSERT_TRUE(loaded.wait(30000)) << name.toStdString();
        const QColor found = shown(170, 120);
        EXPECT_NEAR(found.red(), color.red(), 6) << name.toStdString();
        EXPECT_NEAR(found.green(), color.green(), 6) << name.toStdString();
        EXPECT_NEAR(found.blue(), color.blue(), 6) << name.toStdString();
    }
    set([](auto& style) { style.backgroundImageURL.reset(); });
    EXPECT_TRUE(canvas->loadedBackgroundImage().isNull());
}

TEST_F(Canvas, AMissingBackgroundLeavesItEmpty) {
    QSignalSpy loaded(canvas, &ScreenshotPreviewCanvas::backgroundLoaded);
    set([&](auto& style) {
        style.backgroundType = BackgroundType::image;
        style.backgroundImageURL = QUrl(u"file:///no/such/file.png"_qs);
    });
    ASSERT_TRUE(loaded.wait(5000));
    EXPECT_TRUE(canvas->loadedBackgroundImage().isNull());
}

TEST_F(Canvas, TheWheelScrollsWhatIsLargerThanTheRoomAndNothingElse) {
    const auto turn = [this](int vertical) {
        QWheelEvent event({300, 200}, window.mapToGlobal(QPointF(300, 200)), {}, {0, vertical}, Qt::NoButton,
                          {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&window, &event);
    };
    const QColor red(200, 30, 40);
    turn(-120);
    EXPECT_EQ(shown(300, 155), red) << "it fits: nothing to scroll";
    set([](auto& style) { style.zoom = 300; });
    EXPECT_EQ(shown(300, 55), red);
    turn(-1200);
    EXPECT_NE(shown(300, 345), red) << "scrolled down to its end";
    turn(12000);
    EXPECT_EQ(shown(300, 345), red);
}

} // namespace
} // namespace framora
