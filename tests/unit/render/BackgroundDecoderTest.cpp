#include "editor/render/BackgroundDecoder.h"

#include "unit/render/TestPictures.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

class BackgroundDecoderTest : public testing::Test {
protected:
    QUrl file(const QString& name) const { return QUrl::fromLocalFile(m_folder.filePath(name)); }

    QTemporaryDir m_folder;
};

TEST_F(BackgroundDecoderTest, ReadsStillPictures) {
    for (const char* format : {"png", "jpg", "webp", "tiff"}) {
        const QUrl url = file(QStringLiteral("picture.") + QLatin1String(format));
        ASSERT_TRUE(flatPicture(30, 20, QColor(200, 100, 50)).save(url.toLocalFile(), format, 95)) << format;
        const QImage image = BackgroundDecoder::decode(url);
        ASSERT_EQ(image.size(), QSize(30, 20)) << format;
        EXPECT_NEAR(qRed(image.pixel(15, 10)), 200, 4) << format;
    }
}

TEST_F(BackgroundDecoderTest, GivesNothingForWhatIsNoPicture) {
    EXPECT_TRUE(BackgroundDecoder::decode(file("missing.png")).isNull());
    EXPECT_TRUE(BackgroundDecoder::decode(QUrl()).isNull());
    EXPECT_TRUE(BackgroundDecoder::decode(QUrl("http://localhost/picture.png")).isNull());
    EXPECT_TRUE(BackgroundDecoder::decode(QUrl::fromLocalFile(m_folder.path())).isNull());
    QFile text(file("text.png").toLocalFile());
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no picture");
    text.close();
    EXPECT_TRUE(BackgroundDecoder::decode(file("text.png")).isNull());
}

TEST_F(BackgroundDecoderTest, ReadsAPictureForTwoOnlyOnceAndAChangedOneAnew) {
    const QString path = m_folder.filePath(QStringLiteral("two.png"));
    QImage picture(8, 6, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(path));
    const QUrl url = QUrl::fromLocalFile(path);

    const QImage first = BackgroundDecoder::decodeForTwo(url);
    EXPECT_EQ(first.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(BackgroundDecoder::decode(url).cacheKey(), first.cacheKey()) << "the very same picture";
    EXPECT_NE(BackgroundDecoder::decode(url).cacheKey(), first.cacheKey()) << "it is given once";

    const QImage forgotten = BackgroundDecoder::decodeForTwo(url);
    BackgroundDecoder::forget(file("other.png"));
    BackgroundDecoder::forget(url);
    EXPECT_NE(BackgroundDecoder::decode(url).cacheKey(), forgotten.cacheKey());

    BackgroundDecoder::decodeForTwo(url);
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(5), QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(BackgroundDecoder::decode(url).pixelColor(0, 0), QColor(Qt::blue));
}

TEST_F(BackgroundDecoderTest, KnowsVideosByTheirExtension) {
    EXPECT_TRUE(BackgroundDecoder::isVideo(file("a.mov")));
    EXPECT_TRUE(BackgroundDecoder::isVideo(file("a.b.MP4")));
    EXPECT_FALSE(BackgroundDecoder::isVideo(file("a.mp4.png")));
    EXPECT_FALSE(BackgroundDecoder::isVideo(file("mov")));
    // A video gives nothing, also when a picture hides behind the name.
    ASSERT_TRUE(flatPicture(3, 3).save(file("a.mov").toLocalFile(), "png"));
    EXPECT_TRUE(BackgroundDecoder::decode(file("a.mov")).isNull());
}

} // namespace
} // namespace framora
