#include "unit/decoders/DecoderTest.h"

#include <QtEndian>
#include <cmath>

namespace framora {
namespace {

class VideoStill : public DecoderTest {
protected:
    static constexpr int levelStep = 5;
    static constexpr int firstLevel = 20;

    /// A clip whose frames are numbered by their grey level.
    QString numberedClip(const QString& name, int count, const QString& rate,
                         const QStringList& options = {}) {
        const QString error = makeClip(
            path(name), count, rate,
            [](int i) {
                QImage image(64, 48, QImage::Format_RGB32);
                const int level = firstLevel + levelStep * i;
                image.fill(QColor(level, level, level));
                return image;
            },
            options);
        EXPECT_EQ(error, QString());
        return path(name);
    }

    /// The number of the frame that the picture is; -1 for none.
    static int frameNumber(const QImage& image) {
        if (image.isNull())
            return -1;
        return int(std::lround(double(image.pixelColor(32, 24).green() - firstLevel) / levelStep));
    }

    QString clip(const QString& name, const QImage& picture, const QStringList& options = {}) {
        EXPECT_EQ(makeClip(
                      path(name), 3, "10", [&picture](int) { return picture; }, options),
                  QString());
        return path(name);
    }

    /// Overwrites the matrix of the clip's track header; y down, (x, y) goes to (a x + c y, b x + d y).
    QString withMatrix(const QString& name, int a, int b, int c, int d) {
        QByteArray file = read(name);
        const qsizetype header = file.indexOf("tkhd");
        EXPECT_GT(header, 0);
        const qsizetype matrix = header + 44;
        const int values[] = {a, b, 0, c, d, 0, 0, 0};
        for (int i = 0; i < 8; ++i)
            qToBigEndian(qint32(values[i]) * 65536, file.data() + matrix + i * 4);
        return write("turned-" + name, file);
    }
};

TEST_F(VideoStill, ShowsTheFrameAtExactlyOneSecond) {
    EXPECT_EQ(frameNumber(decode(numberedClip("a.mp4", 45, "30"))), 30);
    EXPECT_EQ(frameNumber(decode(numberedClip("b.mov", 40, "24"))), 24);
    EXPECT_EQ(frameNumber(decode(numberedClip("c.mp4", 40, "30000/1001"))), 29)
        << "it began before the second";
    EXPECT_EQ(frameNumber(decode(numberedClip("d.mp4", 4, "0.8"))), 0) << "and is shown for longer";
    EXPECT_EQ(frameNumber(decode(numberedClip("E.MOV", 31, "30"))), 30) << "the last frame";
}

TEST_F(VideoStill, FindsItsFrameInEveryGroupOfPictures) {
    const std::pair<const char*, int> cases[] = {
        {"-g 1", 30},
        {"-g 7 -bf 0", 30},
        {"-g 30 -bf 3", 30},
        {"-g 31 -bf 4", 30},
        {"-g 300 -bf 8", 30},
        {"-g 10 -bf 3 -x264-params open-gop=1", 30},
        {"-g 12 -bf 0 -movflags +frag_keyframe", 30},
        {"-g 12 -bf 2 -movflags +frag_keyframe+delay_moov", 30},
        // Without an edit list the first frame is shown as late as its reordering takes.
        {"-g 12 -bf 2 -use_editlist 0", 28},
    };
    for (const auto& [options, shown] : cases) {
        const QString file = numberedClip(
            "gop.mp4", 45, "30", QString("-c:v libx264 -qp 4 " + QString::fromLatin1(options)).split(u' '));
        EXPECT_EQ(frameNumber(decode(file)), shown) << options;
    }
}

TEST_F(VideoStill, OfAClipShorterThanASecondIsTheFirstFrame) {
    EXPECT_EQ(frameNumber(decode(numberedClip("short.mp4", 12, "30"))), 0) << "0.4 s";
    EXPECT_EQ(frameNumber(decode(numberedClip("one.mov", 30, "30"))), 0) << "exactly one second: it is over";
    EXPECT_EQ(frameNumber(decode(numberedClip("single.mp4", 1, "30"))), 0);
}

TEST_F(VideoStill, CountsTheTimeOfThePresentation) {
    // The track begins half a second into the film.
    numberedClip("plain.mp4", 45, "30");
    ASSERT_EQ(runFfmpeg({"-itsoffset", "0.5", "-i", path("plain.mp4"), "-c", "copy", path("late.mp4")}),
              QString());
    EXPECT_EQ(frameNumber(decode(path("late.mp4"))), 15);
}

TEST_F(VideoStill, IsTurnedAndMirroredAsTheTrackSays) {
    clip("upright.mov", fourQuarters(64, 32));
    const struct {
        int a, b, c, d;
        const char* shown;
    } cases[] = {{1, 0, 0, 1, "RGBW"}, {-1, 0, 0, 1, "GRWB"}, {-1, 0, 0, -1, "WBGR"}, {1, 0, 0, -1, "BWRG"},
                 {0, 1, 1, 0, "RBGW"}, {0, 1, -1, 0, "BRWG"}, {0, -1, -1, 0, "WGBR"}, {0, -1, 1, 0, "GWRB"}};
    for (const auto& [a, b, c, d, shown] : cases) {
        const QImage image = decode(withMatrix("upright.mov", a, b, c, d));
        EXPECT_EQ(image.size(), a ? QSize(64, 32) : QSize(32, 64)) << shown;
        EXPECT_EQ(cornerColors(image), QLatin1String(shown));
    }
}

TEST_F(VideoStill, AgreesWithTheEncodersOwnIdeaOfARotation) {
    clip("plain.mp4", fourQuarters(64, 32));
    ASSERT_EQ(
        runFfmpeg({"-i", path("plain.mp4"), "-c", "copy", "-metadata:s:v", "rotate=90", path("turned.mov")}),
        QString());
    ASSERT_EQ(runFfmpeg({"-i", path("turned.mov"), "-frames:v", "1", path("turned.png")}), QString());
    EXPECT_EQ(decode(path("turned.mov")).size(), QSize(32, 64));
    EXPECT_EQ(cornerColors(decode(path("turned.mov"))), cornerColors(QImage(path("turned.png"))));
}

TEST_F(VideoStill, HasSquarePixels) {
    EXPECT_EQ(decode(clip("wide.mp4", fourQuarters(64, 48), {"-vf", "setsar=2"})).size(), QSize(128, 48));
    EXPECT_EQ(decode(clip("narrow.mov", fourQuarters(64, 48), {"-vf", "setsar=1/2"})).size(), QSize(32, 48));
    clip("tv.mov", fourQuarters(64, 48), {"-vf", "setsar=4/3"});
    EXPECT_EQ(cornerColors(decode(path("tv.mov"))), QStringLiteral("RGBW"));
}

TEST_F(VideoStill, ObeysItsMatrixAndItsRange) {
    const QColor color(210, 90, 40);
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(color);
    for (const char* matrix : {"bt709", "smpte170m", "bt2020nc"})
        for (const char* range : {"tv", "pc"}) {
            SCOPED_TRACE(testing::Message() << matrix << " " << range);
            const QString coded = QString::fromLatin1(matrix);
            const QString file = clip(
                "matrix.mp4", picture,
                {"-vf",
                 QStringLiteral("scale=out_color_matrix=%1:out_range=%2:flags=accurate_rnd+full_chroma_int")
                     .arg(coded, QString::fromLatin1(range)),
                 "-colorspace", coded, "-color_range", QString::fromLatin1(range), "-color_primaries",
                 "bt709"});
            expectColor(decode(file), {32, 24}, color, 3);
        }
}

TEST_F(VideoStill, WithoutALabelIsReadAsItsSizeSuggests) {
    const QColor color(210, 90, 40);
    for (const auto& [height, matrix] : {std::pair(480, "bt601"), std::pair(720, "bt709")}) {
        QImage picture(64, height, QImage::Format_RGB32);
        picture.fill(color);
        const QString file = clip("plain.mp4", picture,
                                  {"-vf", QStringLiteral("scale=out_color_matrix=") + QLatin1String(matrix)});
        SCOPED_TRACE(height);
        expectColor(decode(file), {32, 24}, color, 3);
    }
}

TEST_F(VideoStill, OfManyCodecsAndDepthsIsRead) {
    for (const char* options : {"-c:v libx265 -x265-params log-level=none -pix_fmt yuv420p10le -tag:v hvc1",
                                "-c:v mjpeg -q:v 2 -pix_fmt yuvj420p", "-c:v prores_ks -pix_fmt yuv422p10le",
                                "-c:v mpeg4 -q:v 2", "-c:v png -pix_fmt rgb24",
                                "-c:v libx264 -qp 4 -pix_fmt yuv444p", "-c:v libx264 -qp 4 -pix_fmt gray"}) {
        const QString file =
            clip("codec.mov", fourQuarters(64, 48), QString::fromLatin1(options).split(u' '));
        const QImage image = decode(file);
        EXPECT_EQ(image.size(), QSize(64, 48)) << options;
        const bool isGrey = QByteArray(options).endsWith("gray");
        EXPECT_EQ(cornerColors(image), isGrey ? QStringLiteral("???W") : QStringLiteral("RGBW")) << options;
    }
}

TEST_F(VideoStill, WithAlphaIsPremultiplied) {
    QImage picture(64, 48, QImage::Format_ARGB32);
    picture.fill(QColor(200, 100, 50, 128));
    const QImage image = decode(clip("alpha.mov", picture, {"-c:v", "qtrle", "-pix_fmt", "argb"}));
    ASSERT_FALSE(image.isNull());
    const QRgb pixel = reinterpret_cast<const QRgb*>(image.constScanLine(24))[32];
    EXPECT_NEAR(qAlpha(pixel), 128, 1);
    EXPECT_NEAR(qRed(pixel), 100, 1);
    EXPECT_NEAR(qGreen(pixel), 50, 1);
    EXPECT_NEAR(qBlue(pixel), 25, 1);
}

TEST_F(VideoStill, IsScaledDownIntoTheMaximumAndNeverUp) {
    const QStringList fast{"-c:v", "mpeg4", "-q:v", "2", "-vf", "scale=out_color_matrix=bt709"};
    EXPECT_EQ(decode(clip("wide.mp4", fourQuarters(4096, 1024), fast)).size(), QSize(3840, 960));
    EXPECT_EQ(decode(clip("high.mp4", fourQuarters(1024, 4096), fast)).size(), QSize(540, 2160));
    clip("turned.mov", fourQuarters(1024, 4096), fast);
    EXPECT_EQ(decode(withMatrix("turned.mov", 0, 1, -1, 0)).size(), QSize(3840, 960));
    const QImage small = decode(clip("small.mp4", fourQuarters(64, 48), fast));
    EXPECT_EQ(small.size(), QSize(64, 48));
    EXPECT_EQ(cornerColors(decode(path("wide.mp4"))), QStringLiteral("RGBW"));
}

TEST_F(VideoStill, OfSoundAloneIsNone) {
    ASSERT_EQ(runFfmpeg({"-f", "lavfi", "-i", "sine=d=2", path("sound.mp4")}), QString());
    EXPECT_TRUE(decode(path("sound.mp4")).isNull());
    ASSERT_TRUE(fourQuarters(64, 48).save(path("cover.png")));
    ASSERT_EQ(runFfmpeg({"-i", path("sound.mp4"), "-i", path("cover.png"), "-map", "0", "-map", "1", "-c:v",
                         "png", "-disposition:v", "attached_pic", path("cover.mp4")}),
              QString());
    EXPECT_TRUE(decode(path("cover.mp4")).isNull()) << "a cover is no film";
}

TEST_F(VideoStill, IsFoundBesideSound) {
    numberedClip("silent.mp4", 45, "30");
    ASSERT_EQ(runFfmpeg({"-i", path("silent.mp4"), "-f", "lavfi", "-i", "sine=d=2", "-map", "1", "-map", "0",
                         "-c:v", "copy", path("film.mp4")}),
              QString());
    EXPECT_EQ(frameNumber(decode(path("film.mp4"))), 30);
}

} // namespace
} // namespace framora
