#include "platform/desktop/FileResourceBundle.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(FileResourceBundle, findsAFileInItsFolderOrAnywhere) {
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("a/b")));
    QFile file(folder.filePath(QStringLiteral("a/b/leaf [1].png")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const FileResourceBundle bundle(folder.path());
    const auto found = QUrl::fromLocalFile(file.fileName());
    EXPECT_EQ(bundle.url(u"leaf [1]"_qs, u"png"_qs, u"a/b"_qs), found);
    EXPECT_EQ(bundle.url(u"leaf [1]"_qs, u"png"_qs, u"a"_qs), std::nullopt);
    EXPECT_EQ(bundle.urlAnywhere(u"leaf [1]"_qs, u"png"_qs), found);
    EXPECT_EQ(bundle.urlAnywhere(u"leaf"_qs, u"png"_qs), std::nullopt);
}

} // namespace
} // namespace framora
