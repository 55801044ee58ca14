#include "editor/window/SharedPictures.h"
#include "support/ManualMainQueue.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace framora {
namespace {

class Shared : public testing::Test {
public:
    int folders() const {
        return int(QDir(runtime.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
    }

    ManualMainQueue queue;
    QTemporaryDir runtime;
};

TEST_F(Shared, StayWhereTheProgramMakesRoomForAnotherProcess) {
    qApp->setProperty(SharedPictures::outliveProgram, true);
    {
        SharedPictures pictures(queue, runtime.path());
        pictures.add("1");
        const auto unwanted = pictures.add("2");
        pictures.remove(unwanted.value_or(QString()));
    }
    qApp->setProperty(SharedPictures::outliveProgram, {});
    EXPECT_EQ(folders(), 1);
    EXPECT_EQ(queue.waitingCount(), 0U);
}

TEST_F(Shared, LieUnderTheirTitleInAFolderOfTheirUsersOwn) {
    SharedPictures pictures(queue, runtime.path());
    const auto path = pictures.add("bytes");
    ASSERT_TRUE(path);
    EXPECT_TRUE(path->endsWith(u"/Screenshot.png"));
    QFile file(*path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "bytes");
    struct stat status {};
    ASSERT_EQ(stat(QFile::encodeName(QFileInfo(*path).path()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(Shared, AreNoneWithoutBytes) {
    SharedPictures pictures(queue, runtime.path());
    EXPECT_FALSE(pictures.add({}));
    EXPECT_EQ(folders(), 0);
}

TEST_F(Shared, AreRemovedAnHourLaterEachByItself) {
    SharedPictures pictures(queue, runtime.path());
    const auto first = pictures.add("1");
    queue.advance(SharedPictures::keptSeconds / 2);
    const auto second = pictures.add("2");
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    queue.advance(SharedPictures::keptSeconds / 2 + 1);
    EXPECT_FALSE(QFile::exists(*first));
    EXPECT_TRUE(QFile::exists(*second));
    queue.advance(SharedPictures::keptSeconds / 2);
    EXPECT_EQ(folders(), 0);
    EXPECT_EQ(queue.waitingCount(), 0U);
}

TEST_F(Shared, OfManyTheOldestGoFirst) {
    SharedPictures pictures(queue, runtime.path());
    QStringList paths;
    for (std::size_t i = 0; i < SharedPictures::keptPictures + 3; ++i)
        paths.append(pictures.add(QByteArray::number(int(i))).value_or(QString()));
    EXPECT_EQ(folders(), int(SharedPictures::keptPictures));
    EXPECT_FALSE(QFile::exists(paths[2]));
    EXPECT_TRUE(QFile::exists(paths[3]));
    queue.advance(SharedPictures::keptSeconds + 1);
    EXPECT_EQ(folders(), 0);
}

TEST_F(Shared, OneThatNobodyWantsGoesAtOnceAndAlone) {
    SharedPictures pictures(queue, runtime.path());
    const auto first = pictures.add("1");
    const auto second = pictures.add("2");
    ASSERT_TRUE(first && second);
    pictures.remove(*first);
    EXPECT_FALSE(QFile::exists(*first));
    EXPECT_TRUE(QFile::exists(*second));
    EXPECT_EQ(folders(), 1);
    pictures.remove(*first);
    EXPECT_TRUE(QFile::exists(*second));
    queue.advance(SharedPictures::keptSeconds + 1);
    EXPECT_EQ(folders(), 0);
}

TEST_F(Shared, GoWithTheProgram) {
    {
        SharedPictures pictures(queue, runtime.path());
        pictures.add("1");
        EXPECT_EQ(folders(), 1);
    }
    EXPECT_EQ(folders(), 0);
    EXPECT_EQ(queue.waitingCount(), 0U);
}

TEST_F(Shared, AFolderThatCannotBeMadeGivesNothing) {
    SharedPictures pictures(queue, runtime.filePath(QStringLiteral("no/such/place")));
    EXPECT_FALSE(pictures.add("1"));
    EXPECT_EQ(queue.waitingCount(), 0U);
}

} // namespace
} // namespace framora
