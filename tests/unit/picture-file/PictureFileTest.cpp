#include "editor/render/PictureFile.h"

#include "editor/render/NamelessFile.h"

#include <QBuffer>
#include <QColorSpace>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtEndian>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace framora {
namespace {

QImage gradient(int width, int height, bool isOpaque) {
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y,
                           qRgba(x * 7 % 256, y * 5 % 256, (x + y) * 3 % 256, isOpaque ? 255 : x * 9 % 256));
    return image;
}

QByteArray encoded(const QImage& image, const char* format) {
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format, 95));
    return file;
}

/// A PNG header that claims this size, with the right checksum, and nothing behind it.
QByteArray claimingPng(int width, int height) {
    QByteArray file = encoded(gradient(2, 2, true), "PNG");
    qToBigEndian(quint32(width), file.data() + 16);
    qToBigEndian(quint32(height), file.data() + 20);
    quint32 crc = 0xffffffffu;
    for (int i = 12; i < 29; ++i) {
        crc ^= uchar(file[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xedb88320u : 0u);
    }
    qToBigEndian(~crc, file.data() + 29);
    return file;
}

void expectFailure(const LoadedPicture& picture, const char* word) {
    EXPECT_TRUE(picture.image.isNull());
    EXPECT_TRUE(picture.error.contains(QString::fromLatin1(word))) << picture.error.toStdString();
    EXPECT_FALSE(picture.error.contains(u'\n'));
}

TEST(PictureFile, APngComesBackPixelForPixelWithItsRatio) {
    QImage image = gradient(37, 21, false);
    image.setDotsPerMeterX(5669);
    image.setDotsPerMeterY(5669);
    const LoadedPicture picture = loadPicture(encoded(image, "PNG"));
    ASSERT_TRUE(picture) << picture.error.toStdString();
    EXPECT_EQ(picture.image.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(picture.image.devicePixelRatio(), 2.0);
    const QImage expected = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ASSERT_EQ(picture.image.pixel(x, y), expected.pixel(x, y)) << x << ", " << y;
}

TEST(PictureFile, WithoutAStoredResolutionTheRatioIsOne) {
    QByteArray file = encodePng(gradient(8, 8, true), 0.0);
    EXPECT_FALSE(file.contains("pHYs"));
    EXPECT_EQ(loadPicture(file).image.devicePixelRatio(), 1.0);
}

TEST(PictureFile, WhatItWritesItReadsAgain) {
    for (const bool isOpaque : {true, false}) {
        const QImage image = gradient(50, 40, isOpaque).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        const LoadedPicture picture = loadPicture(encodePng(image, 144.0));
        ASSERT_TRUE(picture) << picture.error.toStdString();
        EXPECT_EQ(picture.image.devicePixelRatio(), 2.0);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                ASSERT_EQ(picture.image.pixel(x, y), image.pixel(x, y)) << x << ", " << y;
    }
    EXPECT_TRUE(encodePng(QImage(), 144.0).isEmpty());
}

TEST(PictureFile, ABmpAndAGreyPngAreReadToo) {
    EXPECT_TRUE(loadPicture(encoded(gradient(5, 5, true), "BMP")));
    const LoadedPicture grey =
        loadPicture(encoded(gradient(5, 5, true).convertToFormat(QImage::Format_Grayscale8), "PNG"));
    EXPECT_EQ(grey.image.format(), QImage::Format_ARGB32_Premultiplied);
}

TEST(PictureFile, AnotherColourSpaceBecomesSrgb) {
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(QColor(100, 100, 100));
    image.setColorSpace(QColorSpace(QColorSpace::SRgbLinear));
    const LoadedPicture picture = loadPicture(encoded(image, "PNG"));
    ASSERT_TRUE(picture);
    EXPECT_NEAR(qRed(picture.image.pixel(0, 0)), 168, 3); // 100/255 of the light, encoded
}

TEST(PictureFile, AMissingFileAndAFolderSaySo) {
    expectFailure(loadPicture(QStringLiteral("/nowhere/at all.png")), "no such file");
    expectFailure(loadPicture(QDir::tempPath()), "folder");
}

TEST(PictureFile, APictureCutOffAnywhereIsRefused) {
    const QImage image = gradient(64, 64, true);
    for (const char* format : {"PNG", "JPG", "BMP"}) {
        const QByteArray whole = encoded(image, format);
        ASSERT_TRUE(loadPicture(whole)) << format;
        for (int eighth = 0; eighth < 8; ++eighth) {
            const LoadedPicture picture = loadPicture(whole.left(whole.size() * eighth / 8));
            EXPECT_TRUE(picture.image.isNull()) << format << " " << eighth;
            EXPECT_FALSE(picture.error.isEmpty()) << format << " " << eighth;
        }
    }
}

TEST(PictureFile, AGifIsWholeAtTheEndOfItsFirstPicture) {
    // 1 x 1, two colours; a comment before the picture and the trailer behind it.
    const QByteArray whole = QByteArray("GIF89a\x01\0\x01\0\x80\0\0\xff\0\0\0\0\xff", 19) +
                             QByteArray("!\xfe\x03hey\0", 7) + QByteArray(",\0\0\0\0\x01\0\x01\0\0\x02", 11) +
                             QByteArray("\x02\x44\x01\0", 4) + ";";
    const LoadedPicture picture = loadPicture(whole);
    ASSERT_TRUE(picture) << picture.error.toStdString();
    EXPECT_EQ(picture.image.pixel(0, 0), 0xffff0000u);
    EXPECT_TRUE(loadPicture(whole.chopped(1))) << "only the trailer is missing";
    for (qsizetype missing = 2; missing < whole.size(); ++missing)
        EXPECT_FALSE(loadPicture(whole.chopped(missing))) << missing;
}

TEST(PictureFile, AbsurdDimensionsAreRefusedBeforeMemoryIsTaken) {
    expectFailure(loadPicture(claimingPng(100000, 100000)), "100000 x 100000");
    expectFailure(loadPicture(claimingPng(32767, 32767)), "32767 x 32767");
    expectFailure(loadPicture(claimingPng(40000, 10)), "40000 x 10");
    expectFailure(loadPicture(claimingPng(20000, 6000)), "cut off");
}

TEST(PictureFile, WhatIsNoPictureIsRefused) {
    expectFailure(loadPicture(QByteArray()), "empty");
    expectFailure(loadPicture(QByteArray("just a line of text\n")), "not a picture");
    expectFailure(loadPicture(QByteArray(1000, '\0')), "not a picture");
}

TEST(PictureFile, AFileThatNeverEndsIsRefused) {
    class Endless : public QIODevice {
    public:
        bool isSequential() const override { return true; }
        qint64 given = 0;

    protected:
        qint64 readData(char* data, qint64 size) override {
            memset(data, 0, size_t(size));
            given += size;
            return size;
        }
        qint64 writeData(const char*, qint64) override { return -1; }
    } endless;
    endless.open(QIODevice::ReadOnly);
    expectFailure(loadPicture(endless), "larger");
    EXPECT_LT(endless.given, maximumPictureBytes * 2);
}

TEST(PictureFile, AFileIsReplacedWholeAndAFailureLeavesItAlone) {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("out.png"));
    EXPECT_EQ(writeFileAtomically(path, "one"), QString());
    EXPECT_EQ(writeFileAtomically(path, "two"), QString());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "two");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1) << "nothing else is left";
    EXPECT_FALSE(writeFileAtomically(path + QStringLiteral("/below.png"), "x").isEmpty());
    EXPECT_FALSE(writeFileAtomically(folder.path(), "x").isEmpty());
    EXPECT_FALSE(writeFileAtomically(folder.filePath(QStringLiteral("no/such/folder.png")), "x").isEmpty());
}

TEST(PictureFile, AFileThatDoesNotFitLeavesTheEarlierOneAlone) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("out.png"));
    ASSERT_EQ(writeFileAtomically(path, "one"), QString());
    // As on a full disk: the first bytes are taken, the rest is refused.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1 << 16, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const QString error = writeFileAtomically(path, QByteArray(100'000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(error.isEmpty());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "one");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1) << "nothing else is left";
}

TEST(PictureFile, ReplacingKeepsTheFilesPermissionsAndItsLink) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.png"));
    const QString link = folder.filePath(QStringLiteral("link.png"));
    ASSERT_EQ(writeFileAtomically(path, "one"), QString());
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    ASSERT_TRUE(QFile::setPermissions(path, permissions));
    ASSERT_TRUE(QFile::link(path, link));
    EXPECT_EQ(writeFileAtomically(link, "two"), QString());
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "two");
    // The process sees a file of its own with the user's bits as well.
    EXPECT_EQ(file.permissions() & ~(QFile::ReadUser | QFile::WriteUser), permissions);
}

/// Writes files of `size` bytes one after the other under new names until it is killed.
[[noreturn]] void writeForEver(const QDir& folder, qsizetype size) {
    for (int number = 0;; ++number)
        writeFileAtomically(folder.filePath(QStringLiteral("%1.png").arg(number)),
                            QByteArray(size, char('a' + number % 16)));
}

TEST(PictureFile, AKilledWriterLeavesWholeFilesAndNothingElse) {
    const QTemporaryDir folder;
    const int probe =
        ::open(QFile::encodeName(folder.path()).constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (probe < 0)
        GTEST_SKIP() << "this file system has no files without a name";
    close(probe);
    constexpr qsizetype size = 3'000'000;
    const QDir files(folder.path());
    for (int round = 0; round < 60; ++round) {
        const pid_t writer = fork();
        if (writer == 0)
            writeForEver(files, size);
        usleep(useconds_t(500 + round * 331));
        ASSERT_EQ(::kill(writer, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(waitpid(writer, &status, 0), writer);
        for (const QFileInfo& info : files.entryInfoList(QDir::Files | QDir::Hidden)) {
            EXPECT_EQ(info.suffix(), QStringLiteral("png")) << info.fileName().toStdString();
            EXPECT_EQ(info.size(), size);
            QFile::remove(info.filePath());
        }
    }
}

TEST(PictureFile, ADeviceIsWrittenToAndNotReplaced) {
    EXPECT_EQ(writeFileAtomically(QStringLiteral("/dev/null"), "x"), QString());
    EXPECT_TRUE(QFile::exists(QStringLiteral("/dev/null")));
    EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/null")).isFile());
    EXPECT_FALSE(writeFileAtomically(QStringLiteral("/dev/full"), QByteArray(100, 'x')).isEmpty());
}

std::span<const std::uint8_t> bytesOf(const char* text) {
    return {reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)};
}

TEST(NamelessFile, IsThereOnlyOnceItIsWhole) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("out.png"));
    const auto names = [&] { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); };
    {
        NamelessFile file(path);
        if (!file.isOpen())
            GTEST_SKIP() << "no files without a name here";
        file.write(bytesOf("half"));
        EXPECT_TRUE(names().isEmpty());
    }
    EXPECT_TRUE(names().isEmpty());
    NamelessFile file(path);
    file.write(bytesOf("what was wrong"));
    file.clear();
    file.write(bytesOf("all "));
    file.write(bytesOf("of it"));
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(names(), QStringList(QStringLiteral("out.png")));
    QFile written(path);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "all of it");
}

TEST(NamelessFile, IsNoneInPlaceOfWhatIsNoFile) {
    const QTemporaryDir folder;
    EXPECT_FALSE(NamelessFile(folder.path()).isOpen());
    EXPECT_FALSE(NamelessFile(QStringLiteral("/dev/null")).isOpen());
    EXPECT_FALSE(NamelessFile(folder.filePath(QStringLiteral("no/such/folder.png"))).isOpen());
}

} // namespace
} // namespace framora
