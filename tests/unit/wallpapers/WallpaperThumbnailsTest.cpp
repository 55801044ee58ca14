#include "editor/render/WallpaperThumbnails.h"

#include "editor/render/BackgroundDecoder.h"
#include "editor/render/ImageResampler.h"
#include "support/MediaFiles.h"
#include "support/PngChunks.h"
#include "unit/render/MemoryLimit.h"
#include "unit/wallpapers/WallpaperFixture.h"

#include <QColorSpace>
#include <QImageWriter>
#include <QPainter>
#include <cmath>

namespace framora {
namespace {

class WallpaperThumbnail : public WallpaperFixture {
protected:
    static QImage thumbnail(const QString& file) {
        const auto made = makeWallpapers({{url(file), QString(), 0, BackgroundDecoder::isVideo(url(file))}});
        return made.empty() ? QImage() : made[0].second;
    }

    /// Smooth colours with edges at some angle: what a wrong reduction shifts, blurs or shimmers.
    static QImage scene(int width, int height) {
        QImage image(width, height, QImage::Format_RGB32);
        QPainter painter(&image);
        QLinearGradient sky(0, 0, width, height);
        sky.setColorAt(0, QColor(250, 180, 60));
        sky.setColorAt(1, QColor(20, 60, 160));
        painter.fillRect(image.rect(), sky);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(QColor(240, 250, 245));
        painter.drawEllipse(QPointF(width * 0.7, height * 0.3), height * 0.12, height * 0.12);
        painter.setBrush(QColor(15, 30, 25));
        painter.drawPolygon(QPolygonF(
            {QPointF(0, height), QPointF(width * 0.4, height * 0.4), QPointF(width * 0.8, height)}));
        return image;
    }

    /// The root of the mean squared difference of all channels, in levels of 255. A reduced picture's shape
    /// is rounded to whole pixels once more, so that a side may differ by one.
    static double distance(const QImage& a, QImage b) {
        const QSize apart = a.size() - b.size();
        if (a.isNull() || b.isNull() || std::abs(apart.width()) > 1 || std::abs(apart.height()) > 1)
            return 255;
        b = b.scaled(a.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        double sum = 0;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x) {
                const QRgb p = a.pixel(x, y);
                const QRgb q = b.pixel(x, y);
                for (const int difference : {qRed(p) - qRed(q), qGreen(p) - qGreen(q), qBlue(p) - qBlue(q)})
                    sum += difference * difference;
            }
        return std::sqrt(sum / (3.0 * a.width() * a.height()));
    }
    static QImage wholeThenReduced(const QString& file) {
        return resizedImage(BackgroundDecoder::decode(url(file)), 400, 300);
    }
};

TEST_F(WallpaperThumbnail, FitsTheBoundInEveryFormatAndLooksLikeTheWholePictureReduced) {
    const QImage picture = scene(3001, 1999);
    for (const char* format : {"jpg", "png", "webp", "tiff"}) {
        const QString file = path(QStringLiteral("a.") + QLatin1String(format));
        QImageWriter writer(file);
        writer.setQuality(95);
        ASSERT_TRUE(writer.write(picture)) << format;
        const QImage small = thumbnail(file);
        EXPECT_EQ(small.width(), 400) << format;
        EXPECT_LT(distance(small, wholeThenReduced(file)), 2.5) << format;
    }
    const QString heic = write(QStringLiteral("a.heic"), heifFile(picture));
    EXPECT_EQ(thumbnail(heic).width(), 400);
    EXPECT_LT(distance(thumbnail(heic), wholeThenReduced(heic)), 2.5);
}

TEST_F(WallpaperThumbnail, OfEveryReductionOfAJpegFillsTheBound) {
    for (const int width : {300, 599, 601, 900, 1201, 1799, 2400, 3601, 4801, 6017})
        for (const bool isTall : {false, true}) {
            const int other = width * 5 / 8;
            const QString file = path(QStringLiteral("%1.jpg").arg(width));
            ASSERT_TRUE(scene(isTall ? other : width, isTall ? width : other).save(file, "jpg", 95));
            const QImage small = thumbnail(file);
            EXPECT_TRUE(small.width() == 400 || small.height() == 300)
                << width << (isTall ? " tall" : " wide");
            EXPECT_LT(distance(small, wholeThenReduced(file)), 2.5) << width << (isTall ? " tall" : " wide");
        }
}

TEST_F(WallpaperThumbnail, StandsUprightAsItsFileSays) {
    // EXIF orientation 6: the stored picture is to be turned a quarter clockwise.
    const QByteArray exif =
        QByteArray::fromHex("ffe1002245786966000049492a0008000000010012010300010000000600000000000000");
    QByteArray jpeg;
    {
        const QString plain = path(QStringLiteral("plain.jpg"));
        ASSERT_TRUE(fourQuarters(2000, 1000).save(plain, "jpg", 95));
        QFile file(plain);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        jpeg = file.readAll();
    }
    const QImage turned = thumbnail(write(QStringLiteral("turned.jpg"), jpeg.insert(2, exif)));
    EXPECT_EQ(turned.size(), QSize(150, 300));
    EXPECT_EQ(cornerColors(turned), QStringLiteral("BRWG"));

    HeifOptions sideways;
    sideways.orientation = 6;
    const QImage heif =
        thumbnail(write(QStringLiteral("turned.heic"), heifFile(fourQuarters(2000, 1000), sideways)));
    EXPECT_EQ(heif.size(), QSize(150, 300));
    EXPECT_EQ(cornerColors(heif), QStringLiteral("BRWG"));
}

TEST_F(WallpaperThumbnail, OfASmallPictureIsEnlargedToTheBound) {
    const QString file = path(QStringLiteral("a.png"));
    ASSERT_TRUE(scene(40, 30).save(file));
    EXPECT_EQ(thumbnail(file).size(), QSize(400, 300));
}

TEST_F(WallpaperThumbnail, OfAWideGamutPictureKeepsItsColours) {
    QImage picture(2000, 1200, QImage::Format_RGB32);
    picture.fill(QColor(200, 60, 60));
    picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    for (const char* name : {"a.jpg", "a.png", "a.webp", "a.tiff"}) {
        const QString file = path(QLatin1String(name));
        ASSERT_TRUE(picture.save(file, nullptr, 95));
        const QColor expected = BackgroundDecoder::decode(url(file)).pixelColor(5, 5);
        const QColor found = thumbnail(file).pixelColor(5, 5);
        EXPECT_GT(expected.red(), 205) << name;
        EXPECT_NEAR(found.red(), expected.red(), 2) << name;
        EXPECT_NEAR(found.green(), expected.green(), 2) << name;
    }
}

TEST_F(WallpaperThumbnail, OfAPngThatSaysSrgbByItsGammaHasTheColoursOfOneWithout) {
    const QByteArray srgb =
        pngChunk("gAMA", {45455}) + pngChunk("cHRM", {31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000});
    for (const QImage::Format kind : {QImage::Format_RGB32, QImage::Format_Indexed8, QImage::Format_RGBX64}) {
        const QString bare = path(QStringLiteral("bare.png"));
        ASSERT_TRUE(scene(1000, 600).convertToFormat(kind).save(bare));
        QFile file(bare);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const QString same = write(QStringLiteral("same.png"), withChunks(bytes, srgb));
        const QString linear =
            write(QStringLiteral("linear.png"), withChunks(bytes, pngChunk("gAMA", {100000})));
        EXPECT_EQ(thumbnail(same), thumbnail(bare)) << kind;
        EXPECT_EQ(BackgroundDecoder::decode(url(same)), BackgroundDecoder::decode(url(bare))) << kind;
        EXPECT_NE(thumbnail(linear), thumbnail(bare)) << kind;
        EXPECT_NE(BackgroundDecoder::decode(url(linear)), BackgroundDecoder::decode(url(bare))) << kind;
    }
}

TEST_F(WallpaperThumbnail, OfADeepHeifAndOneWithAlphaIsTheirOwn) {
    for (const bool hasAlpha : {false, true}) {
        HeifOptions options;
        options.bits = 10;
        options.hasAlpha = hasAlpha;
        QImage picture = scene(1500, 1000).convertToFormat(QImage::Format_ARGB32);
        const QString file = write(QStringLiteral("a.heic"), heifFile(picture, options));
        EXPECT_LT(distance(thumbnail(file), wholeThenReduced(file)), 1.5) << hasAlpha;
    }
}

TEST_F(WallpaperThumbnail, OfAVideoIsItsFrameAtOneSecond) {
    const auto frame = [](int i) {
        QImage image(640, 360, QImage::Format_RGB32);
        image.fill(i < 10 ? Qt::red : i < 15 ? Qt::green : Qt::blue);
        return image;
    };
    const QString file = path(QStringLiteral("a.MP4"));
    ASSERT_EQ(makeClip(path(QStringLiteral("a.mp4")), 30, QStringLiteral("10"), frame), QString());
    ASSERT_TRUE(QFile::rename(path(QStringLiteral("a.mp4")), file));
    const QImage still = thumbnail(file);
    EXPECT_EQ(still.size(), QSize(400, 225));
    EXPECT_GT(still.pixelColor(200, 100).green(), 200);
    EXPECT_LT(still.pixelColor(200, 100).red(), 60);

    const QString brief = path(QStringLiteral("brief.mov"));
    ASSERT_EQ(makeClip(brief, 3, QStringLiteral("10"), frame), QString());
    EXPECT_GT(thumbnail(brief).pixelColor(200, 100).red(), 200) << "shorter than a second: its first frame";
}

TEST_F(WallpaperThumbnail, TakesAVideosExactFrameThoughItSkipsOthers) {
    // Each frame a colour of its own; pyramids of B frames, so that some are built on and some are not.
    const auto frame = [](int i) {
        QImage image(320, 192, QImage::Format_RGB32);
        image.fill(QColor(i * 4, 255 - i * 4, i % 2 ? 200 : 40));
        return image;
    };
    const QString file = path(QStringLiteral("a.mp4"));
    ASSERT_EQ(
        makeClip(file, 60, QStringLiteral("25"), frame,
                 {QStringLiteral("-bf"), QStringLiteral("5"), QStringLiteral("-g"), QStringLiteral("250"),
                  QStringLiteral("-x264-params"), QStringLiteral("scenecut=0:b-adapt=0:b-pyramid=strict")}),
        QString());
    const QColor found = thumbnail(file).pixelColor(100, 100);
    EXPECT_NEAR(found.red(), 100, 3) << "the 25th frame";
    EXPECT_NEAR(found.blue(), 200, 8);
}

TEST_F(WallpaperThumbnail, TakesAHeifsOwnThumbnailOnlyWhenItIsLargeEnoughAndOfItsShape) {
    QImage picture(1500, 1000, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const auto shown = [&](QSize thumbnailSize, int side) {
        HeifOptions options;
        options.thumbnail = QImage(thumbnailSize, QImage::Format_RGB32);
        options.thumbnail.fill(Qt::green);
        options.thumbnailSide = side;
        const QImage small = thumbnail(write(QStringLiteral("a.heic"), heifFile(picture, options)));
        EXPECT_EQ(small.width(), 400);
        return small.isNull() ? QColor() : small.pixelColor(200, 100);
    };
    EXPECT_GT(shown({1200, 800}, 750).green(), 200);
    EXPECT_GT(shown({1200, 800}, 320).red(), 200) << "it would have to be enlarged";
    EXPECT_GT(shown({800, 800}, 750).red(), 200) << "of an earlier crop";
}

TEST_F(WallpaperThumbnail, OfAHeifsOwnThumbnailWithoutColoursIsInThePictures) {
    QImage picture(1500, 1000, QImage::Format_RGB32);
    picture.fill(QColor(200, 60, 60));
    HeifOptions options;
    options.profile = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    options.thumbnail = QImage(1200, 800, QImage::Format_RGB32);
    options.thumbnail.fill(QColor(200, 60, 60));
    options.thumbnailSide = 750;
    QByteArray bytes = heifFile(picture, options);
    int removed = 0;
    for (qsizetype at = bytes.indexOf("colrnclx"); at > 0; at = bytes.indexOf("colrnclx"), ++removed)
        bytes.replace(at, 4, "free");
    ASSERT_GT(removed, 0);
    const QString file = write(QStringLiteral("a.heic"), bytes);
    const QColor expected = BackgroundDecoder::decode(url(file)).pixelColor(5, 5);
    const QColor found = thumbnail(file).pixelColor(5, 5);
    EXPECT_GT(expected.red(), 205);
    EXPECT_NEAR(found.red(), expected.red(), 2);
    EXPECT_NEAR(found.green(), expected.green(), 2);
}

TEST_F(WallpaperThumbnail, KeepsTransparencyAndTakesNoMoreThanItNeedsWithout) {
    const QString opaque = path(QStringLiteral("opaque.png"));
    ASSERT_TRUE(scene(1200, 900).save(opaque));
    EXPECT_LE(thumbnail(opaque).sizeInBytes(), 400 * 300 * 3);
    QImage veil(1200, 900, QImage::Format_ARGB32);
    veil.fill(QColor(255, 0, 0, 100));
    for (const char* name : {"veil.png", "veil.webp", "veil.tiff"}) {
        const QString file = path(QLatin1String(name));
        ASSERT_TRUE(veil.save(file)) << name;
        const QColor found = thumbnail(file).pixelColor(200, 150);
        EXPECT_NEAR(found.alpha(), 100, 1) << name;
        EXPECT_NEAR(found.red(), 255, 2) << name;
    }
}

TEST_F(WallpaperThumbnail, OfEveryReductionOfAPngWebpOrTiffFillsTheBoundAndLooksLikeIt) {
    for (const int width : {599, 1201, 1799, 2400, 4801})
        for (const char* format : {"png", "webp", "tiff"}) {
            const QString file = path(QStringLiteral("a.") + QLatin1String(format));
            QImageWriter writer(file);
            writer.setQuality(95);
            ASSERT_TRUE(writer.write(scene(width, width * 5 / 8))) << format;
            EXPECT_EQ(thumbnail(file).width(), 400) << width << format;
            EXPECT_LT(distance(thumbnail(file), wholeThenReduced(file)), 2.5) << width << format;
        }
}

TEST_F(WallpaperThumbnail, ListKeepsItsOrderAndDropsWhatCannotBeDecoded) {
    std::vector<WallpaperCandidate> candidates;
    QList<QUrl> expected;
    for (int i = 0; i < 24; ++i) {
        const QString file =
            path(QStringLiteral("%1.%2").arg(i).arg(i % 2 ? QStringLiteral("jpg") : QStringLiteral("png")));
        if (i % 5 == 3) {
            write(QFileInfo(file).fileName(), "no picture at all");
        } else {
            // Of very different sizes, so that later ones are ready earlier.
            ASSERT_TRUE(scene(i % 3 == 0 ? 2400 : 60, i % 3 == 0 ? 1600 : 40).save(file));
            expected.append(url(file));
        }
        candidates.push_back({url(file), QString(), 0, false});
    }
    QList<QUrl> found;
    for (const Wallpaper& wallpaper : makeWallpapers(candidates))
        found.append(wallpaper.first);
    EXPECT_EQ(found, expected);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they take more than all memory
TEST(WallpaperThumbnailDeathTest, IsThePictureItselfWhereMemoryIsTooShort) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto make = [] {
        QImage picture(8000, 6000, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        const bool isSmall = thumbnailOf(picture).size() == QSize(400, 300);
        limitMemoryTo(rlim_t(64) << 20);
        std::_Exit(isSmall && thumbnailOf(picture) == picture ? 0 : 1);
    };
    EXPECT_EXIT(make(), testing::ExitedWithCode(0), "");
}
#endif

TEST_F(WallpaperThumbnail, NoneIsMadeOnceStopIsAskedFor) {
    const QString file = path(QStringLiteral("a.png"));
    ASSERT_TRUE(scene(40, 30).save(file));
    std::stop_source source;
    source.request_stop();
    EXPECT_TRUE(makeWallpapers({{url(file), QString(), 0, false}}, source.get_token()).empty());
}

} // namespace
} // namespace framora
