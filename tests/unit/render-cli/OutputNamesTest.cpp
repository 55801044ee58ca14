#include "render-cli/OutputNames.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(OutputNames, TheExtensionBecomesPng) {
    const OutputNames names =
        outputNames({"a.jpg", "/x/b.tar.webp", "c", "-", ".hidden"}, QStringLiteral("out"));
    EXPECT_EQ(names.error, QString());
    EXPECT_EQ(names.paths,
              QStringList({"out/a.png", "out/b.tar.png", "out/c.png", "out/stdin.png", "out/.hidden.png"}));
}

TEST(OutputNames, TwoImagesOfOneNameAreRefused) {
    const OutputNames names = outputNames({"a/x.png", "b/x.jpg"}, QStringLiteral("out"));
    EXPECT_TRUE(names.error.contains(u"'a/x.png' and 'b/x.jpg'")) << names.error.toStdString();
}

TEST(OutputNames, NoImageIsReplacedByAPictureWhateverTheWayToItsFolder) {
    const QTemporaryDir place;
    const QDir folder(place.path());
    ASSERT_TRUE(folder.mkdir("shots"));
    ASSERT_TRUE(folder.mkdir("out"));
    for (const char* name : {"shots/b.png", "shots/c.jpg", "out/b.png"}) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    ASSERT_TRUE(QFile::link(folder.filePath("shots"), folder.filePath("link")));
    const QString image = folder.filePath("shots/b.png");
    for (const char* target : {"shots", "shots/", "./shots/.", "out/../shots", "link"}) {
        const OutputNames names = outputNames({image}, folder.filePath(QString::fromLatin1(target)));
        EXPECT_TRUE(names.error.startsWith(QStringLiteral("'%1' would be replaced").arg(image)))
            << target << ": " << names.error.toStdString();
    }
    EXPECT_FALSE(outputNames({folder.filePath("link/b.png")}, folder.filePath("shots")).error.isEmpty());
    EXPECT_EQ(outputNames({image}, folder.filePath("out")).error, QString()) << "an earlier picture may be";
    EXPECT_EQ(outputNames({folder.filePath("shots/c.jpg")}, folder.filePath("shots")).error, QString());

    // Another image's file, behind a link that stands where the picture goes.
    ASSERT_TRUE(QFile::link(image, folder.filePath("out/c.png")));
    const OutputNames crossed = outputNames({folder.filePath("shots/c.jpg"), image}, folder.filePath("out"));
    EXPECT_TRUE(crossed.error.startsWith(QStringLiteral("'%1' would be replaced").arg(image)))
        << crossed.error.toStdString();
}

} // namespace
} // namespace framora
