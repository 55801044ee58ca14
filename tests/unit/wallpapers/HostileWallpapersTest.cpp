#include "editor/render/BackgroundDecoder.h"
#include "editor/render/DecoderProcess.h"
#include "editor/render/IsoMediaSize.h"
#include "editor/render/PictureFile.h"
#include "editor/render/ReducedPicture.h"
#include "editor/render/WallpaperCache.h"
#include "platform/desktop/ThreadBackgroundQueue.h"
#include "support/FixedDesktopPictures.h"
#include "support/JpegOfScans.h"
#include "support/ManualMainQueue.h"
#include "support/MediaFiles.h"
#include "unit/wallpapers/WallpaperFixture.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QThread>
#include <QtEndian>
#include <ctime>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace framora {
namespace {

class HostileWallpapers : public WallpaperFixture {
protected:
    static int entriesOf(const QStringList& files) {
        std::vector<WallpaperCandidate> candidates;
        for (const QString& file : files)
            candidates.push_back({url(file), QString(), 0, BackgroundDecoder::isVideo(url(file))});
        return int(makeWallpapers(candidates).size());
    }

    static QByteArray encoded(const QImage& image, const char* format) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        EXPECT_TRUE(image.save(&buffer, format, 95)) << format;
        return bytes;
    }

    static quint32 crc32(QByteArrayView bytes) {
        quint32 crc = 0xffffffffu;
        for (const char byte : bytes) {
            crc ^= uchar(byte);
            for (int bit = 0; bit < 8; ++bit)
                crc = crc >> 1 ^ (crc & 1 ? 0xedb88320u : 0);
        }
        return ~crc;
    }

    /// A small PNG whose header, checksum and all, claims another size.
    static QByteArray pngClaiming(quint32 width, quint32 height) {
        QByteArray png = encoded(fourQuarters(32, 32), "png");
        const qsizetype header = png.indexOf("IHDR");
        qToBigEndian(width, png.data() + header + 4);
        qToBigEndian(height, png.data() + header + 8);
        qToBigEndian(crc32(QByteArrayView(png).sliced(header, 17)), png.data() + header + 17);
        return png;
    }

    static QByteArray jpegClaiming(quint16 width, quint16 height) {
        QByteArray jpeg = encoded(fourQuarters(32, 32), "jpg");
        const qsizetype frame = jpeg.indexOf(QByteArray::fromHex("ffc0"));
        EXPECT_GT(frame, 0);
        qToBigEndian(height, jpeg.data() + frame + 5);
        qToBigEndian(width, jpeg.data() + frame + 7);
        return jpeg;
    }

    /// The file's header says it is coded in passes, its colours as fine as its light.
    static QByteArray madeProgressive(QByteArray jpeg) {
        const qsizetype frame = jpeg.indexOf(QByteArray::fromHex("ffc0"));
        EXPECT_GT(frame, 0);
        jpeg[frame + 1] = '\xc2';
        jpeg[frame + 11] = '\x11';
        return jpeg;
    }

    static qint64 peakKilobytes() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    }
};

TEST_F(HostileWallpapers, CutOffAnywhereAreNoEntry) {
    QImage picture = fourQuarters(640, 480);
    for (int i = 0; i < 640 * 480; ++i) // so that every file has something to lose
        picture.setPixel(i % 640, i / 640, picture.pixel(i % 640, i / 640) ^ unsigned(i * 2654435761u >> 27));
    QStringList files;
    for (const char* format : {"jpg", "png", "webp", "tiff"}) {
        const QByteArray whole = encoded(picture, format);
        for (const int percent : {0, 1, 5, 50, 90, 99})
            files.append(write(QStringLiteral("%1.%2").arg(percent).arg(QLatin1String(format)),
                               whole.left(whole.size() * percent / 100)));
    }
    const QByteArray heif = heifFile(fourQuarters(64, 48));
    for (const int percent : {0, 5, 50, 90})
        files.append(write(QStringLiteral("%1.heic").arg(percent), heif.left(heif.size() * percent / 100)));
    EXPECT_EQ(entriesOf(files), 0);
}

TEST_F(HostileWallpapers, BombsAreNoEntryAndCostNoMemory) {
    QStringList files;
    for (const auto& [width, height] :
         {std::pair(60000u, 60000u), std::pair(32767u, 32767u), std::pair(30000u, 5000u), std::pair(0u, 5u),
          std::pair(0x7fffffffu, 1u)})
        files.append(write(QStringLiteral("%1x%2.png").arg(width).arg(height), pngClaiming(width, height)));
    files.append(write(QStringLiteral("bomb.jpg"), jpegClaiming(60000, 60000)));
    QByteArray tiff = encoded(fourQuarters(32, 32), "tiff");
    const bool isLittle = tiff.startsWith("II");
    ASSERT_TRUE(isLittle);
    const qsizetype directory = qFromLittleEndian<quint32>(tiff.constData() + 4);
    for (int entry = 0; entry < qFromLittleEndian<quint16>(tiff.constData() + directory); ++entry) {
        char* at = tiff.data() + directory + 2 + entry * 12;
        const quint16 tag = qFromLittleEndian<quint16>(at);
        if (tag != 256 && tag != 257) // width, height
            continue;
        qToLittleEndian(quint16(4), at + 2);
        qToLittleEndian(quint32(60000), at + 8);
    }
    files.append(write(QStringLiteral("bomb.tiff"), tiff));
    QByteArray heif = heifFile(fourQuarters(128, 128));
    const qsizetype sizes = heif.indexOf("ispe");
    ASSERT_GT(sizes, 0);
    qToBigEndian(quint32(60000), heif.data() + sizes + 8);
    qToBigEndian(quint32(60000), heif.data() + sizes + 12);
    files.append(write(QStringLiteral("bomb.heic"), heif));

    const qint64 before = peakKilobytes();
    EXPECT_EQ(entriesOf(files), 0);
    EXPECT_LT(peakKilobytes() - before, 100 * 1024);
}

TEST_F(HostileWallpapers, OfAHugeButHonestJpegOnlyTheReducedPictureIsHeld) {
    // 113 megapixels, which as a whole would take 450 MB.
    const QString file = path(QStringLiteral("huge.jpg"));
    {
        QImage grey(15000, 7500, QImage::Format_Grayscale8);
        grey.fill(90);
        ASSERT_TRUE(grey.save(file, "jpg", 50));
    }
    const auto made = makeWallpapers({{url(file), QString(), 0, false}});
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].second.size(), QSize(400, 200));
    EXPECT_NEAR(made[0].second.pixelColor(200, 100).red(), 90, 2);
}

TEST_F(HostileWallpapers, WhatIsNoRegularFileIsNeitherWaitedForNorAnEntry) {
    QStringList files;
    for (const char* name : {"pipe.jpg", "pipe.heic", "pipe.mp4"}) {
        files.append(path(QLatin1String(name)));
        ASSERT_EQ(mkfifo(QFile::encodeName(files.last()).constData(), 0600), 0);
    }
    for (const char* name : {"zero.png", "zero.mov"}) {
        files.append(path(QLatin1String(name)));
        ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), files.last()));
    }
    files.append(path(QStringLiteral("folder.mp4")));
    ASSERT_TRUE(QDir().mkpath(files.last()));
    files.append(path(QStringLiteral("missing.png")));
    EXPECT_EQ(entriesOf(files), 0);
}

TEST_F(HostileWallpapers, AVideoWithoutFramesIsNoEntry) {
    const QString sound = path(QStringLiteral("sound.mp4"));
    ASSERT_EQ(runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                         QStringLiteral("sine=duration=2"), sound}),
              QString());
    const QString clip = path(QStringLiteral("clip.mov"));
    ASSERT_EQ(makeClip(clip, 12, QStringLiteral("10"), [](int) { return fourQuarters(64, 48); },
                       {QStringLiteral("-movflags"), QStringLiteral("+faststart")}),
              QString());
    QFile whole(clip);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    const qsizetype frames = bytes.indexOf("mdat");
    ASSERT_GT(frames, 0);
    EXPECT_EQ(entriesOf({sound, write(QStringLiteral("empty.mp4"), {}),
                         write(QStringLiteral("text.mov"), "no film"),
                         write(QStringLiteral("frameless.mov"), bytes.left(frames + 4))}),
              0);
}

TEST_F(HostileWallpapers, ADecoderThatNeverEndsIsEnded) {
    const QString file = put(QStringLiteral("any"), 10);
    QFile open(file);
    ASSERT_TRUE(open.open(QIODevice::ReadOnly));
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(decodeInProcess(QStringLiteral("endless_decoder"), open.handle(), {.seconds = 1}).isNull());
    EXPECT_GE(timer.elapsed(), 1000);
    EXPECT_LT(timer.elapsed(), 15'000);
}

TEST_F(HostileWallpapers, AStopEndsADecoderThatIsUnderWay) {
    const QString file = put(QStringLiteral("any"), 10);
    QFile open(file);
    ASSERT_TRUE(open.open(QIODevice::ReadOnly));
    std::stop_source source;
    QImage image(1, 1, QImage::Format_RGB32);
    std::jthread decoding([&] {
        image = decodeInProcess(QStringLiteral("endless_decoder"), open.handle(),
                                {.seconds = 20, .stop = source.get_token()});
    });
    QElapsedTimer timer;
    timer.start();
    source.request_stop();
    decoding.join();
    EXPECT_TRUE(image.isNull());
    EXPECT_LT(timer.elapsed(), 10'000);
}

TEST_F(HostileWallpapers, AJpegOfEndlessScansIsGivenUp) {
    // Takes most of a minute by itself.
    const QByteArray bytes = jpegOfScans(4000, 40'000);
    const QString path = write(QStringLiteral("scans.jpg"), bytes);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ReducedPicture picture(file, {600, 450});
    ASSERT_GT(picture.bytesNeeded(), 0);
    const clock_t before = clock();
    EXPECT_TRUE(picture.decode({.patience = std::chrono::milliseconds(200)}).isNull());
    EXPECT_TRUE(loadPicture(bytes, {.patience = std::chrono::milliseconds(200)}).image.isNull());
    EXPECT_LT(double(clock() - before) / CLOCKS_PER_SEC, 5);
    // The same picture with few of them is one.
    EXPECT_EQ(entriesOf({write(QStringLiteral("few.jpg"), jpegOfScans(4000, 5))}), 1);
}

TEST_F(HostileWallpapers, TheEndOfTheProgramDoesNotWaitForADecoder) {
    ManualMainQueue mainQueue;
    FixedDesktopPictures desktop;
    const QString slow = write(QStringLiteral("scans.jpg"), jpegOfScans(4000, 40'000));
    desktop.pictures = {url(slow)};
    auto queue = std::make_unique<ThreadBackgroundQueue>(mainQueue);
    auto cache = std::make_unique<WallpaperCache>(WallpaperCache::Services{*queue, desktop, folders()});
    cache->load([] {});
    QThread::msleep(300); // into the decoder; where it has not begun there is nothing to wait for either
    QElapsedTimer timer;
    timer.start();
    cache.reset();
    queue.reset();
    EXPECT_LT(timer.elapsed(), 3000) << "some milliseconds on a machine that does nothing else";
}

TEST_F(HostileWallpapers, ABackgroundIsNotDecodedOnOnceAStopIsAskedFor) {
    const QUrl slow = url(write(QStringLiteral("scans.jpg"), jpegOfScans(4000, 40'000)));
    std::stop_source source;
    QImage image(1, 1, QImage::Format_RGB32);
    std::jthread decoding([&] { image = BackgroundDecoder::decode(slow, source.get_token()); });
    QThread::msleep(100);
    QElapsedTimer timer;
    timer.start();
    source.request_stop();
    decoding.join();
    EXPECT_TRUE(image.isNull());
    EXPECT_LT(timer.elapsed(), 3000);
}

TEST_F(HostileWallpapers, DecodersOfEveryFormatEndAtAStopAndAtTheEndOfTheirTime) {
    QImage picture(3000, 2000, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, unsigned(x * 2654435761u ^ unsigned(y) * 40503u) >> 7 | 0xff000000u);
    std::stop_source source;
    source.request_stop();
    for (const char* format : {"jpg", "png", "webp", "tiff"}) {
        const QByteArray bytes = encoded(picture, format);
        QFile file(write(QLatin1String(format), bytes));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        ReducedPicture reduced(file, {600, 450});
        EXPECT_TRUE(reduced.decode({.stop = source.get_token()}).isNull()) << format;
        EXPECT_TRUE(reduced.decode({.patience = std::chrono::milliseconds(0)}).isNull()) << format;
        EXPECT_FALSE(reduced.decode().isNull()) << format;
        EXPECT_FALSE(loadPicture(bytes, {.stop = source.get_token()})) << format;
        EXPECT_TRUE(BackgroundDecoder::decode(url(file.fileName()), source.get_token()).isNull()) << format;
        EXPECT_EQ(BackgroundDecoder::decode(url(file.fileName())).size(), picture.size()) << format;
    }
}

TEST_F(HostileWallpapers, AFileThatIsReplacedAfterItsHeaderWasReadIsHeldToTheSameBounds) {
    QFile file(write(QStringLiteral("a.png"), encoded(fourQuarters(640, 480), "png")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    for (const QSize claimed : {QSize(1, std::numeric_limits<int>::max()), QSize(32, 40'000)}) {
        ReducedPicture picture(file, {600, 450});
        ASSERT_GT(picture.bytesNeeded(), 0);
        write(QStringLiteral("a.png"), pngClaiming(quint32(claimed.width()), quint32(claimed.height())));
        EXPECT_TRUE(picture.decode().isNull());
        write(QStringLiteral("a.png"), encoded(fourQuarters(640, 480), "png"));
        file.seek(0);
    }
}

TEST_F(HostileWallpapers, AJpegInPassesCountsWithAllItsCoefficients) {
    const auto needed = [this](const QByteArray& jpeg) {
        QFile file(write(QStringLiteral("a.jpg"), jpeg));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return ReducedPicture(file, {600, 450}).bytesNeeded();
    };
    constexpr qint64 pixels = 11585 * 11585;
    const QByteArray plain = jpegClaiming(11585, 11585);
    EXPECT_GT(needed(plain), 0);
    EXPECT_LT(needed(plain), pixels / 4) << "its decoder keeps a few rows";
    EXPECT_GE(needed(madeProgressive(plain)), pixels * 6);
    EXPECT_EQ(entriesOf({write(QStringLiteral("large.jpg"), madeProgressive(plain))}), 0);
}

TEST_F(HostileWallpapers, OnlyTheKnownFormatsAreReadWhateverTheMachineKnows) {
    const QImage picture = fourQuarters(320, 240);
    QStringList files;
    for (const char* format : {"ppm", "xpm", "xbm", "ico", "icns", "tga"}) {
        const QByteArray bytes = [&] {
            QByteArray written;
            QBuffer buffer(&written);
            buffer.open(QIODevice::WriteOnly);
            return picture.save(&buffer, format) ? written : QByteArray();
        }();
        if (!bytes.isEmpty())
            files.append(write(QStringLiteral("%1.jpg").arg(QLatin1String(format)), bytes));
    }
    EXPECT_GE(files.size(), 3) << "the decoders that come with every Qt";
    files.append(write(QStringLiteral("svg.jpg"),
                       "<svg xmlns='http://www.w3.org/2000/svg' width='90' height='90'>"
                       "<rect width='50' height='50' fill='red'/></svg>"));
    EXPECT_EQ(entriesOf(files), 0);
    for (const QString& file : files)
        EXPECT_FALSE(loadPicture(file)) << file.toStdString();
}

TEST_F(HostileWallpapers, AVideoThatIsLargerThanItsHeaderSaysGetsNoMoreMemoryThanThatTakes) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer's shadow is larger than any bound";
#endif
    const QString honest = path(QStringLiteral("honest.mp4"));
    ASSERT_EQ(runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                         QStringLiteral("testsrc=size=7680x4320:rate=5:duration=1.4"), QStringLiteral("-c:v"),
                         QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("ultrafast"),
                         QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), honest}),
              QString());
    EXPECT_EQ(entriesOf({honest}), 1);
    QFile file(honest);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    const qsizetype track = bytes.indexOf("tkhd");
    ASSERT_GT(track, 0);
    qToBigEndian(quint32(16 << 16), bytes.data() + track + 80);
    qToBigEndian(quint32(16 << 16), bytes.data() + track + 84);
    EXPECT_EQ(entriesOf({write(QStringLiteral("liar.mp4"), bytes)}), 0);
}

TEST_F(HostileWallpapers, AClaimOfTheLargestNumbersIsALargeOne) {
    QByteArray heif = heifFile(fourQuarters(128, 128));
    const qsizetype sizes = heif.indexOf("ispe");
    ASSERT_GT(sizes, 0);
    qToBigEndian(0xffffffffu, heif.data() + sizes + 8);
    qToBigEndian(0xffffffffu, heif.data() + sizes + 12);
    QFile file(write(QStringLiteral("a.heic"), heif));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_GT(isoMediaPixels(file.handle()), qint64(1) << 40);
}

} // namespace
} // namespace framora
