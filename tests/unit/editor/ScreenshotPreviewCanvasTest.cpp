#include "unit/editor/PreviewCanvasFixture.h"

#include "editor/render/CompositionRasterizer.h"
#include "editor/views/CanvasFrame.h"
#include "support/MediaFiles.h"

#include <QFile>
#include <QPainter>
#include <QTemporaryDir>

namespace framora {
namespace {

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

TEST_F(Canvas, ShowsACaptureOfAnySizePixelForPixel) {
    // About the middle of a view of 600 x 400.
    for (const QSize size :
         {QSize(200, 100), QSize(201, 100), QSize(200, 101), QSize(201, 101), QSize(1, 1)}) {
        QImage lines(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                lines.setPixel(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
        canvas->setImage(lines);
        set([](auto& style) {
            style.zoom = 100;
            style.borderRadius = 0;
        });
        const QImage grabbed = window.grabWindow().convertToFormat(QImage::Format_RGB32);
        const QRect place(QPoint(300 - size.width() / 2, 200 - size.height() / 2), size);
        EXPECT_EQ(grabbed.copy(place), lines) << size.width() << " x " << size.height();
    }
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

// The canvas stands at (150, 100) to (450, 300) in what follows, on white.

TEST_F(Canvas, LiesOnItsGroundWithASoftEdgeThatFadesOutwards) {
    const QImage grabbed = window.grabWindow();
    const auto grey = [&](int x, int y) { return qGray(grabbed.pixel(x, y)); };
    EXPECT_EQ(grey(60, 40), 255) << "the ground itself is as it was";
    EXPECT_LT(grey(300, 300), grey(300, 302)) << "the hairline";
    int before = 0;
    for (const int distance : {2, 6, 12, 18, 24}) {
        for (const int shade :
             {grey(150 - distance - 1, 200), grey(450 + distance, 200), grey(300, 300 + distance)}) {
            EXPECT_GT(shade, before) << distance;
            EXPECT_LT(shade, 255) << distance;
        }
        EXPECT_EQ(grey(150 - distance - 1, 200), grey(450 + distance, 200)) << "alike on both sides";
        EXPECT_LT(grey(300, 300 + distance), grey(300, 99 - distance)) << "it falls";
        before = grey(300, 300 + distance) - 1;
    }
    for (const QPoint corner : {QPoint(140, 95), QPoint(459, 95), QPoint(140, 310), QPoint(459, 310)})
        EXPECT_LT(qGray(grabbed.pixel(corner)), 255);
}

TEST_F(Canvas, ItsEdgeIsNeverInsideAndNeverDrawnIntoThePicture) {
    set([](auto& style) {
        style.backgroundType = BackgroundType::transparent;
        style.screenshotOffset = {0, 1000};
    });
    const QImage light = window.grabWindow();
    EXPECT_EQ(canvas->frame().pixelColor(300, 302).alpha(), 0);
    canvas->setDark(true);
    const QImage dark = window.grabWindow();
    EXPECT_NE(dark.pixel(300, 302), light.pixel(300, 302)) << "there is one around a clear canvas too";
    const QRect inside(150, 100, 300, 200);
    EXPECT_EQ(dark.copy(inside), light.copy(inside));
}

TEST_F(Canvas, ItsEdgeGoesWithTheCanvasAndWhenNothingIsAroundIt) {
    const QColor beside = shown(140, 200);
    set([](auto& style) { style.padding = 100; }); // 400 x 300
    EXPECT_EQ(shown(90, 200), beside);
    EXPECT_EQ(shown(60, 20), QColor(Qt::white));
    set([](auto& style) {
        style.padding = 50;
        style.zoom = 300;
        style.customColor = {0, 0.5, 1, 1};
    });
    const QImage grabbed = window.grabWindow().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(grabbed, canvas->frame()) << "nothing but the composition";
}

/// What is seen of a frame on what was there before.
QImage laidOver(const QImage& ground, const QImage& frame) {
    QImage both = ground.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter(&both).drawImage(0, 0, frame);
    return both;
}

TEST_F(Canvas, IsSeenWithWhatReachesOutOfItAndShinesThroughIt) {
    // The ground with its edge, and nothing on it.
    const auto ground = [&] {
        set([](auto& style) {
            style.backgroundType = BackgroundType::color;
            style.customColor = {0, 0, 0, 0.001}; // nothing of it is seen
            style.screenshotOffset = {5000, 0};
        });
        return window.grabWindow();
    };
    for (const double zoom : {100.0, 61.7, 220.0}) { // with edges on pixels, between them, and out of view
        set([&](auto& style) { style.zoom = zoom; });
        const QImage under = ground();
        for (const double alpha : {1.0, 0.5})
            for (const Size offset : {Size{0, 0}, Size{-140, 0}, Size{30, 130}}) {
                set([&](auto& style) {
                    style.customColor = {0, 0.5, 1, alpha};
                    style.rotation = 20;
                    style.screenshotOffset = offset;
                });
                const QImage grabbed =
                    window.grabWindow().convertToFormat(QImage::Format_ARGB32_Premultiplied);
                EXPECT_EQ(grabbed, laidOver(under, canvas->frame()))
                    << zoom << " %, alpha " << alpha << ", " << offset.width << ", " << offset.height;
            }
    }
}

TEST_F(Canvas, ShowsAFrameOfGlassOverItsEdgeAsItIsDrawn) {
    // What lies behind the glass there is blurred with the nothing beside the canvas.
    set([](auto& style) {
        style.customColor = {0, 0, 0, 0.001}; // nothing of it is seen
        style.screenshotOffset = {5000, 0};
        style.mockupStyle = MockupStyle::glassEffect;
    });
    const QImage under = window.grabWindow();
    for (const Size offset : {Size{-50, 0}, Size{0, 45}, Size{120, -60}}) {
        set([&](auto& style) {
            style.backgroundType = BackgroundType::gradient;
            style.screenshotOffset = offset;
        });
        const QImage grabbed = window.grabWindow().convertToFormat(QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(grabbed, laidOver(under, canvas->frame())) << offset.width << ", " << offset.height;
    }
}

TEST_F(Canvas, IsSeenWithEveryChangeThoughNoMoreThanThatIsDrawnAgain) {
    // Almost all of the view, with the screenshot's middle large enough to stay while the rest changes.
    set([](auto& style) {
        style.zoom = 190;
        style.padding = 20;
        style.backgroundType = BackgroundType::gradient;
    });
    CompositionRasterizer rasterizer;
    const auto isRight = [&] {
        Composition composition;
        composition.image = canvas->image();
        composition.config = config;
        const QImage expected = rasterizer.draw(composition, {{600, 400}, 1.9, {300, 200}});
        const QSizeF size = canvas->viewport().content();
        const QRect inside(int(300 - size.width() / 2) + 1, int(200 - size.height() / 2) + 1,
                           int(size.width()) - 2, int(size.height()) - 2);
        return window.grabWindow().convertToFormat(QImage::Format_ARGB32_Premultiplied).copy(inside) ==
               expected.copy(inside);
    };
    for (int step = 0; step < 6; ++step) {
        for (int again = 0; again < 3; ++again) {
            set([&](auto& style) { style.gradientConfig.saturation = 40 * step + 10 * again; });
            ASSERT_TRUE(isRight()) << "colours " << step;
        }
        set([&](auto& style) { style.screenshotOffset.width = step * 9 % 25; });
        ASSERT_TRUE(isRight()) << "place " << step;
        set([&](auto& style) { style.padding = 20 + step % 3; });
        ASSERT_TRUE(isRight()) << "size " << step;
        canvas->update(); // nothing changed
        ASSERT_TRUE(isRight()) << "nothing " << step;
    }
    QImage other = image;
    other.fill(QColor(20, 160, 40));
    canvas->setImage(other);
    EXPECT_TRUE(isRight());
    // Another view has another frame.
    canvas->setSize({500, 400});
    window.grabWindow();
    canvas->setSize({600, 400});
    EXPECT_TRUE(isRight());
}

TEST_F(Canvas, IsSeenInItsPlaceWhenPartsOfItComeLater) {
    // Beside a sidebar and under a header, as in the editor.
    const QPoint corner(90, 40);
    const auto seen = [&] {
        return window.grabWindow()
            .convertToFormat(QImage::Format_ARGB32_Premultiplied)
            .copy(QRect(corner, canvas->size().toSize()));
    };
    canvas->setPosition(corner);
    canvas->setSize({510, 360});
    set([](auto& style) { style.customColor = {0, 0.5, 1, 1}; });
    window.grabWindow(); // the canvas alone: its edges are on pixels
    for (const bool dark : {false, true}) {
        canvas->setDark(dark); // the edge is made anew
        set([](auto& style) { style.zoom = 61.7; });
        const QImage later = seen();
        const QColor ground = window.color();
        EXPECT_EQ(window.grabWindow().pixelColor(5, 200), ground) << "nothing of it beside it";
        EXPECT_EQ(window.grabWindow().pixelColor(300, 5), ground) << "nothing of it above it";
        // The same, with everything there from the start.
        ScreenshotPreviewCanvas fresh(window.contentItem());
        fresh.setPosition(corner);
        fresh.setSize(canvas->size());
        fresh.setImage(image);
        fresh.setConfig(config);
        fresh.setDark(dark);
        canvas->setVisible(false);
        EXPECT_EQ(later, seen()) << "dark: " << dark;
        canvas->setVisible(true);
        set([](auto& style) { style.zoom = 100; });
        window.grabWindow();
    }
}

TEST(CanvasFrame, DividesAPictureOnWholePointsOnly) {
    const QRect part(QPoint(7, 64), QPoint(200, 288));
    EXPECT_EQ(CanvasFrame::onWholePoints(part, 1), part);
    EXPECT_EQ(CanvasFrame::onWholePoints(part, 2), QRect(QPoint(8, 64), QPoint(199, 287)));
    EXPECT_EQ(CanvasFrame::onWholePoints(part, 1.25), QRect(QPoint(10, 65), QPoint(199, 284)));
    EXPECT_EQ(CanvasFrame::onWholePoints(part, 1.5), QRect(QPoint(9, 66), QPoint(200, 287)));
    EXPECT_TRUE(CanvasFrame::onWholePoints(QRect(6, 6, 3, 30), 1.25).isEmpty());
    EXPECT_TRUE(CanvasFrame::onWholePoints(QRect(), 1.25).isEmpty());
    EXPECT_TRUE(CanvasFrame::onWholePoints(part, 1.0001).isEmpty());
}

TEST(CanvasFrame, TakesNoMoreOfAPictureThanShowsSomething) {
    QImage frame(40, 30, QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::transparent);
    EXPECT_TRUE(CanvasFrame::used(frame, frame.rect()).isEmpty());
    frame.setPixel(7, 20, 0x01000000);
    frame.setPixel(31, 4, 0xffffffff);
    EXPECT_EQ(CanvasFrame::used(frame, frame.rect()), QRect(QPoint(7, 4), QPoint(31, 20)));
    EXPECT_EQ(CanvasFrame::used(frame, QRect(8, 0, 100, 100)), QRect(31, 4, 1, 1));
    EXPECT_TRUE(CanvasFrame::used(frame, QRect(8, 5, 20, 20)).isEmpty());
    EXPECT_TRUE(CanvasFrame::used(frame, QRect()).isEmpty());
    EXPECT_TRUE(CanvasFrame::used(frame, QRect(100, 0, 5, 5)).isEmpty());
}

TEST_F(Canvas, ItsEdgeSuitsACanvasSmallerThanTheShadow) {
    canvas->setImage(image.copy(0, 0, 20, 10));
    set([](auto& style) { style.padding = 0; }); // 20 x 10
    const QImage grabbed = window.grabWindow();
    EXPECT_LT(qGray(grabbed.pixel(300, 206)), 250);
    EXPECT_LT(qGray(grabbed.pixel(288, 200)), 250);
    EXPECT_EQ(qGray(grabbed.pixel(300, 250)), 255);
}

} // namespace
} // namespace framora
