#include "screencapture/wayland/CaptureLock.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace framora {
namespace {

class CaptureLockTest : public testing::Test {
protected:
    CaptureLockTest() {
        qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
        qputenv("WAYLAND_DISPLAY", "wayland-7");
    }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files); }

    QTemporaryDir folder;
};

TEST_F(CaptureLockTest, oneAtATimeInASession) {
    auto first = std::make_unique<CaptureLock>();
    EXPECT_TRUE(first->claimed());
    EXPECT_FALSE(CaptureLock().claimed());
    // The same compositor by its whole path.
    qputenv("WAYLAND_DISPLAY", folder.filePath(QStringLiteral("wayland-7")).toUtf8());
    EXPECT_FALSE(CaptureLock().claimed());
    // Another one.
    qputenv("WAYLAND_DISPLAY", "wayland-8");
    EXPECT_TRUE(CaptureLock().claimed());
    qputenv("WAYLAND_DISPLAY", "wayland-7");
    first.reset();
    EXPECT_TRUE(CaptureLock().claimed());
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(CaptureLockTest, aFileThatSomebodyLeftIsNoCapture) {
    QFile left(folder.filePath(QStringLiteral("framora-screencapture-wayland-7.lock")));
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    EXPECT_TRUE(CaptureLock().claimed());
}

TEST_F(CaptureLockTest, whereThereIsNoFolderEveryCaptureMayOpen) {
    for (const char* path : {"", "relative", "/nowhere/at/all"}) {
        qputenv("XDG_RUNTIME_DIR", path);
        const CaptureLock one;
        EXPECT_TRUE(one.claimed() && CaptureLock().claimed());
    }
}

} // namespace
} // namespace framora
