#include "desktop/support/VirtualDesktop.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace framora {
namespace {

const QByteArray kPng = QByteArray("\x89PNG\r\n\x1a\n") + QByteArray(300000, 'x');

/// A Wayland session of a compositor without data-control, layer surfaces and copies of its outputs, beside
/// an X server.
class ClipboardChoiceTest : public testing::Test {
protected:
    ClipboardChoiceTest() {
        compositor =
            &desktop.start(QStringLiteral("weston"),
                           {QStringLiteral("--backend=headless-backend.so"), QStringLiteral("--no-config"),
                            QStringLiteral("--socket=plain"), QStringLiteral("--idle-time=0")});
        EXPECT_TRUE(VirtualDesktop::waitFor([this] {
            return QFile::exists(desktop.runtimePath() + QStringLiteral("/plain")) ||
                   !compositor->isRunning();
        }));
        EXPECT_TRUE(compositor->isRunning()) << compositor->output().toStdString();
        desktop.setEnvironmentVariable(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("plain"));
    }

    /// Runs the keeper with the picture on its standard input; its exit code.
    int keep(int pictureFile = -1) {
        if (pictureFile >= 0)
            desktop.setEnvironmentVariable(QStringLiteral("FRAMORA_PICTURE_FD"),
                                           QString::number(pictureFile));
        ChildProcess::Options options;
        options.inheritedDescriptor = pictureFile;
        const QString path = desktop.scratchPath() + QStringLiteral("/picture");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(kPng) == kPng.size());
        file.close();
        ChildProcess& keeper = desktop.start(
            QStringLiteral("sh"),
            {QStringLiteral("-c"), QStringLiteral("exec '" FRAMORA_CLIPBOARD "' < '%1'").arg(path)}, options);
        return keeper.waitForExit() ? keeper.exitCode() : -1;
    }

    VirtualDesktop desktop;
    ChildProcess* compositor = nullptr;
};

TEST_F(ClipboardChoiceTest, whereTheCompositorHasNoWordForItTheXServersClipboardIsTaken) {
    EXPECT_EQ(keep(), 0);
    EXPECT_EQ(desktop.clipboard(), kPng);
}

TEST_F(ClipboardChoiceTest, whereThereIsNoClipboardTheProgramGetsThePicture) {
    desktop.setEnvironmentVariable(QStringLiteral("DISPLAY"), QString());
    EXPECT_EQ(keep(), 1);
    const int file = memfd_create("picture", 0);
    EXPECT_EQ(keep(file), 0);
    QFile picture;
    ASSERT_TRUE(picture.open(file, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle));
    EXPECT_TRUE(picture.seek(0));
    EXPECT_EQ(picture.readAll(), kPng);
}

TEST_F(ClipboardChoiceTest, aSessionWithoutAnyRouteIsToldAtOnceAndTheXServerIsLeftAlone) {
    for (const char* mode : {"-i", "-w"}) {
        ChildProcess& tool = desktop.start(QStringLiteral(FRAMORA_SCREENCAPTURE), {QLatin1String(mode)});
        EXPECT_TRUE(tool.waitForExit(1000));
        EXPECT_EQ(tool.exitCode(), 3);
        EXPECT_EQ(tool.output().count('\n'), 1);
    }
}

} // namespace
} // namespace framora
