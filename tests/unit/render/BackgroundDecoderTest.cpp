#include "editor/render/BackgroundDecoder.h"

#include "unit/render/TestPictures.h"

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
