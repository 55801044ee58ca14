#include "screencapture/portal/HandedFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {
namespace {

TEST(HandedFileTest, ReadsFileUrisOfThisMachineOnly) {
    EXPECT_EQ(pathOfFileUri("file:///home/a%20b/%C3%A4.png"), "/home/a b/\xc3\xa4.png");
    EXPECT_EQ(pathOfFileUri("file://localhost/a.png"), "/a.png");
    EXPECT_EQ(pathOfFileUri("file:/a.png"), "/a.png");
    EXPECT_EQ(pathOfFileUri("file:///a%2fb"), "/a/b");
    for (const char* uri : {"", "a.png", "/a.png", "file:", "file:a.png", "file://", "file://host/a.png",
                            "file://host", "http:///a.png", "FILES:///a", "file:///a%", "file:///a%2",
                            "file:///a%zz", "file:///a%00b", "file:///a?b", "file:///a#b"})
        EXPECT_EQ(pathOfFileUri(uri), std::nullopt) << uri;
}

class HandedFileOnDisk : public testing::Test {
protected:
    std::string pathOf(const char* name) const { return folder.filePath(QLatin1String(name)).toStdString(); }
    std::string write(const char* name, const QByteArray& contents) const {
        QFile file(folder.filePath(QLatin1String(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return pathOf(name);
    }

    QTemporaryDir folder;
};

TEST_F(HandedFileOnDisk, GivesTheBytesAndRemovesTheFileWhenTold) {
    const std::string path = write("a.png", "picture");
    const HandedFile file(path);
    EXPECT_EQ(std::string(file.bytes().begin(), file.bytes().end()), "picture");
    EXPECT_EQ(file.failure(), "");
    EXPECT_EQ(access(path.c_str(), F_OK), 0);
    file.remove();
    EXPECT_NE(access(path.c_str(), F_OK), 0);
}

TEST_F(HandedFileOnDisk, RemovesNoOtherFileOfThatName) {
    const std::string path = write("a.png", "picture");
    const HandedFile file(path);
    ASSERT_EQ(rename(write("b.png", "another").c_str(), path.c_str()), 0);
    file.remove();
    EXPECT_EQ(access(path.c_str(), F_OK), 0);
}

TEST_F(HandedFileOnDisk, TellsAnEmptyOneAndATooLargeOneWithTheirPaths) {
    const std::string empty = write("empty.png", {});
    EXPECT_EQ(HandedFile(empty).failure(), "the desktop's picture is empty: " + empty);
    const std::string large = write("large.png", "x");
    ASSERT_EQ(truncate(large.c_str(), off_t(HandedFile::kLargest) + 1), 0);
    const HandedFile file(large);
    EXPECT_TRUE(file.bytes().empty());
    EXPECT_EQ(file.failure(), "the desktop's picture is too large: " + large);
}

TEST_F(HandedFileOnDisk, LeavesWhatIsNoRegularFile) {
    const std::string kept = write("kept.png", "kept");
    const std::string link = pathOf("link.png");
    ASSERT_EQ(symlink(kept.c_str(), link.c_str()), 0);
    const std::string pipe = pathOf("pipe.png");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {link, pipe, folder.path().toStdString(), std::string("/dev/zero")}) {
        const HandedFile file(path);
        EXPECT_TRUE(file.bytes().empty()) << path;
        EXPECT_NE(file.failure(), "") << path;
        file.remove();
    }
    EXPECT_EQ(access(kept.c_str(), F_OK), 0);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::System | QDir::Files).size(), 3);
}

TEST_F(HandedFileOnDisk, TellsOneThatIsGone) {
    const HandedFile file(pathOf("gone.png"));
    EXPECT_EQ(file.failure(), "the desktop's picture is gone: " + pathOf("gone.png"));
    file.remove();
}

} // namespace
} // namespace framora
