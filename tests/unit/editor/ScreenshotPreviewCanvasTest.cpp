#include "unit/editor/PreviewCanvasFixture.h"

#include "editor/render/CompositionRasterizer.h"
#include "support/MediaFiles.h"

#include <QFile>
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

} // namespace
} // namespace framora
