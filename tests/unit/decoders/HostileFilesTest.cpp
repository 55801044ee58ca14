#include "editor/render/decoders/DecoderLimits.h"
#include "unit/decoders/DecoderTest.h"

#include <QElapsedTimer>
#include <QtEndian>
#include <random>
#include <sys/stat.h>

namespace framora {
namespace {

class HostileFiles : public DecoderTest {
protected:
    QByteArray clipBytes(const QString& name, const QStringList& options = {}) {
        EXPECT_EQ(makeClip(
                      path(name), 12, "10", [](int) { return fourQuarters(64, 48); }, options),
                  QString());
        return read(name);
    }

    /// Decodes under the time that a decoder has, and some for its start.
    QImage decodeInTime(const QString& path) {
        QElapsedTimer timer;
        timer.start();
        const QImage image = decode(path);
        EXPECT_LT(timer.elapsed(), (decoderSeconds + 10) * 1000) << path.toStdString();
        return image;
    }

    /// Every picture that comes out is the whole one.
    void decodeDamaged(const QString& name, const QByteArray& bytes, QSize size) {
        const QImage image = decodeInTime(write(name, bytes));
        EXPECT_TRUE(image.isNull() || image.size() == size);
    }

    void cutOffAt(const QString& name, const QByteArray& whole, int pieces) {
        for (int i = 0; i < pieces; ++i) {
            SCOPED_TRACE(testing::Message() << name.toStdString() << ", piece " << i << " of " << pieces);
            decodeDamaged(name, whole.left(whole.size() * i / pieces), QSize(64, 48));
        }
    }

    void damage(const QString& name, const QByteArray& whole, int rounds) {
        std::mt19937 random(7);
        for (int round = 0; round < rounds; ++round) {
            SCOPED_TRACE(testing::Message() << name.toStdString() << ", round " << round);
            QByteArray bytes = whole;
            for (int i = 0; i < 1 + round % 8; ++i)
                bytes[qsizetype(random() % unsigned(whole.size()))] = char(random());
            decodeInTime(write(name, bytes));
        }
    }
};

TEST_F(HostileFiles, APictureCutOffAnywhereIsNone) {
    const QByteArray whole = heifFile(fourQuarters(64, 48));
    ASSERT_FALSE(whole.isEmpty());
    constexpr int pieces = 40;
    for (int i = 0; i < pieces; ++i)
        EXPECT_TRUE(decodeInTime(write("cut.heic", whole.left(whole.size() * i / pieces))).isNull()) << i;
}

TEST_F(HostileFiles, AClipCutOffAnywhereIsNoneOrWhole) {
    cutOffAt("cut.mp4", clipBytes("end.mp4"), 20);
    cutOffAt("cut.mov", clipBytes("start.mov", {"-movflags", "+faststart"}), 30);
}

TEST_F(HostileFiles, OneCutOffAfterItsFirstFramesShowsTheFirst) {
    const QByteArray whole =
        clipBytes("start.mov", {"-c:v", "mjpeg", "-q:v", "2", "-movflags", "+faststart"});
    EXPECT_EQ(cornerColors(decodeInTime(write("cut.mov", whole.left(whole.size() * 7 / 10)))),
              QStringLiteral("RGBW"));
}

TEST_F(HostileFiles, DamageNeverCrashesTheProgram) {
    damage("damaged.heic", heifFile(fourQuarters(64, 48)), 30);
    damage("damaged.mp4", clipBytes("clip.mp4"), 30);
}

TEST_F(HostileFiles, APictureThatClaimsAnAbsurdSizeIsNone) {
    QByteArray file = heifFile(fourQuarters(128, 128));
    const qsizetype sizes = file.indexOf("ispe");
    ASSERT_GT(sizes, 0);
    for (const auto& [width, height] :
         {std::pair(60000u, 60000u), std::pair(32767u, 32767u), std::pair(0xffffffffu, 0xffffffffu)}) {
        qToBigEndian(quint32(width), file.data() + sizes + 8);
        qToBigEndian(quint32(height), file.data() + sizes + 12);
        EXPECT_TRUE(decodeInTime(write("bomb.heic", file)).isNull()) << width;
    }
}

TEST_F(HostileFiles, AFrameThatClaimsAnAbsurdSizeIsNone) {
    // The track's own size, which this codec goes by.
    QByteArray file = clipBytes("rle.mov", {"-c:v", "qtrle", "-pix_fmt", "rgb24"});
    const qsizetype entry = file.indexOf("rle ");
    ASSERT_GT(entry, 0);
    qToBigEndian(quint16(60000), file.data() + entry + 28);
    qToBigEndian(quint16(60000), file.data() + entry + 30);
    EXPECT_TRUE(decodeInTime(write("bomb.mov", file)).isNull());

    // The frame's own size, which this one goes by.
    file = clipBytes("png.mov", {"-c:v", "png", "-pix_fmt", "rgb24"});
    for (qsizetype at = file.indexOf("IHDR"); at > 0; at = file.indexOf("IHDR", at + 1)) {
        qToBigEndian(quint32(60000), file.data() + at + 4);
        qToBigEndian(quint32(60000), file.data() + at + 8);
    }
    EXPECT_TRUE(decodeInTime(write("frames.mov", file)).isNull());
}

TEST_F(HostileFiles, WhatIsNoRegularFileIsNotWaitedFor) {
    for (const char* name : {"pipe.png", "pipe.heic", "pipe.mp4"}) {
        ASSERT_EQ(mkfifo(QFile::encodeName(path(QString::fromLatin1(name))).constData(), 0600), 0);
        EXPECT_TRUE(decodeInTime(path(QString::fromLatin1(name))).isNull()) << name;
    }
    for (const char* name : {"zero.png", "zero.heic", "zero.mov"}) {
        ASSERT_TRUE(QFile::link("/dev/zero", path(QString::fromLatin1(name))));
        EXPECT_TRUE(decodeInTime(path(QString::fromLatin1(name))).isNull()) << name;
    }
}

TEST_F(HostileFiles, WhatIsNoFilmIsNone) {
    EXPECT_TRUE(decodeInTime(write("empty.mp4", {})).isNull());
    EXPECT_TRUE(decodeInTime(write("text.mov", "just a line of text\n")).isNull());
    EXPECT_TRUE(decodeInTime(write("zeros.mp4", QByteArray(100000, '\0'))).isNull());
    ASSERT_TRUE(fourQuarters(64, 48).save(path("picture.mov"), "png"));
    EXPECT_TRUE(decodeInTime(path("picture.mov")).isNull());
    EXPECT_TRUE(decodeInTime(write("picture.mp4", heifFile(fourQuarters(64, 48)))).isNull());
    EXPECT_TRUE(decodeInTime(path("missing.mov")).isNull());
    clipBytes("matroska.mkv");
    EXPECT_TRUE(decodeInTime(write("matroska.mp4", read("matroska.mkv"))).isNull());
}

} // namespace
} // namespace framora
