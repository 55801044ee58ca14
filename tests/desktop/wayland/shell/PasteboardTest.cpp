#include "desktop/wayland/shell/OnSway.h"
#include "editor/render/PictureFile.h"
#include "platform/wayland/WaylandPasteboard.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <csignal>
#include <gtest/gtest.h>

namespace framora {
namespace {

QByteArray encoded(const QImage& image, const char* format = "PNG") {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
}

class WaylandPasteboardTest : public testing::Test {
protected:
    WaylandPasteboardTest() { makePasteboard(); }
    ~WaylandPasteboardTest() override {
        // Whoever serves the clipboard ends when somebody else has it.
        sway.desktop.setClipboard("end", QStringLiteral("text/plain"));
        EXPECT_EQ(sway.desktop.leftovers(), QStringList());
    }

    void makePasteboard() {
        pasteboard = std::make_unique<WaylandPasteboard>(
            sway.connection, WaylandClipboard::make(sway.connection),
            [](const QByteArray& file) { return loadPicture(file).image; });
    }

    OnSway sway{OnSway::ofScale(1)};
    std::unique_ptr<WaylandPasteboard> pasteboard;
    const QImage picture = PaintedSurface::pattern({300, 200});
};

TEST_F(WaylandPasteboardTest, countsEveryChangeOfOwner) {
    const auto before = pasteboard->changeCount();
    EXPECT_EQ(pasteboard->changeCount(), before);
    sway.desktop.setClipboard("one", QStringLiteral("text/plain"));
    const auto afterText = pasteboard->changeCount();
    EXPECT_GT(afterText, before);
    sway.desktop.setClipboard(encoded(picture), QStringLiteral("image/png"));
    EXPECT_GT(pasteboard->changeCount(), afterText);
}

TEST_F(WaylandPasteboardTest, countsWhatHappenedWhileTheMainThreadWaited) {
    const auto before = pasteboard->changeCount();
    const QByteArray png = encoded(picture);
    // Nothing in here serves the connection's events.
    QProcess copy;
    copy.start(QStringLiteral("wl-copy"), {QStringLiteral("--type"), QStringLiteral("image/png")});
    ASSERT_TRUE(copy.waitForStarted());
    copy.write(png);
    copy.closeWriteChannel();
    ASSERT_TRUE(copy.waitForFinished());
    QThread::msleep(100);
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(pasteboard->readImage().convertToFormat(QImage::Format_RGB32), picture);
}

TEST_F(WaylandPasteboardTest, theEmptiedClipboardBringsNothingNew) {
    sway.desktop.setClipboard(encoded(picture), QStringLiteral("image/png"));
    const auto before = pasteboard->changeCount();
    sway.desktop.run(QStringLiteral("wl-copy"), {QStringLiteral("--clear")});
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        pasteboard->changeCount();
        return pasteboard->readImage().isNull();
    }));
    EXPECT_EQ(pasteboard->changeCount(), before);
}

TEST_F(WaylandPasteboardTest, whatItWritesIsCountedAtOnceAndServedByItself) {
    const QByteArray png = encoded(picture);
    const auto before = pasteboard->changeCount();
    pasteboard->writePng(png);
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(pasteboard->readImage().convertToFormat(QImage::Format_RGB32), picture);
    EXPECT_EQ(sway.desktop.clipboard(), png);
    EXPECT_EQ(sway.desktop.clipboardTypes(), QStringList{"image/png"});
    // Nothing of the program is needed for it any more.
    pasteboard.reset();
    EXPECT_EQ(sway.desktop.clipboard(), png);
    makePasteboard();
}

TEST_F(WaylandPasteboardTest, anAdoptedPictureIsOnTheClipboardToo) {
    const auto before = pasteboard->changeCount();
    pasteboard->adoptPicture(encoded(picture));
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(sway.desktop.clipboard(), encoded(picture));
}

TEST_F(WaylandPasteboardTest, readsTheOtherKindsOfPicture) {
    for (const char* kind : {"bmp", "tiff", "webp"}) {
        sway.desktop.setClipboard(encoded(picture, kind), QStringLiteral("image/") + QLatin1String(kind));
        EXPECT_EQ(pasteboard->readImage().size(), picture.size()) << kind;
    }
}

TEST_F(WaylandPasteboardTest, givesNoPictureForTextAndGarbage) {
    sway.desktop.setClipboard("words", QStringLiteral("text/plain"));
    EXPECT_TRUE(pasteboard->readImage().isNull());
    sway.desktop.setClipboard("no picture", QStringLiteral("image/png"));
    EXPECT_TRUE(pasteboard->readImage().isNull());
}

TEST_F(WaylandPasteboardTest, readsTwentyMegabytes) {
    QImage noise(2600, 2600, QImage::Format_RGB32);
    std::uint32_t state = 1;
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x) {
            state = state * 1664525 + 1013904223;
            noise.setPixel(x, y, state >> 8);
        }
    const QByteArray png = encoded(noise);
    ASSERT_GT(png.size(), 15 << 20);
    sway.desktop.setClipboard(png, QStringLiteral("image/png"));
    EXPECT_EQ(pasteboard->readImage().size(), noise.size());
}

TEST_F(WaylandPasteboardTest, anOwnerThatDoesNotAnswerIsGivenUp) {
    ChildProcess& owner = sway.desktop.setClipboard(encoded(picture), QStringLiteral("image/png"));
    ::kill(pid_t(owner.pid()), SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(pasteboard->readImage().isNull());
    EXPECT_GT(timer.elapsed(), 4000);
    EXPECT_LT(timer.elapsed(), 9000);
    ::kill(pid_t(owner.pid()), SIGCONT);
    EXPECT_EQ(pasteboard->readImage().size(), picture.size());
}

TEST_F(WaylandPasteboardTest, manyReadingsLeaveNoFileOpen) {
    sway.desktop.setClipboard(encoded(picture), QStringLiteral("image/png"));
    pasteboard->readImage();
    const int before = ChildProcess::openDescriptors(QCoreApplication::applicationPid());
    for (int i = 0; i < 30; ++i) {
        pasteboard->readImage();
        pasteboard->writePng(encoded(picture));
    }
    EXPECT_EQ(ChildProcess::openDescriptors(QCoreApplication::applicationPid()), before);
}

} // namespace
} // namespace framora
