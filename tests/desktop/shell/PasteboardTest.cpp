#include "desktop/shell/ClipboardOwner.h"
#include "desktop/shell/ShellDesktop.h"

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <csignal>
#include <gtest/gtest.h>

namespace framora {
namespace {

QByteArray pngOf(QSize size, int dotsPerMetre = 0, bool noise = false) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(30, 160, 90));
    if (noise)
        for (int y = 0; y < size.height(); ++y)
            QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(image.scanLine(y)),
                                                  size.width());
    if (dotsPerMetre) {
        image.setDotsPerMeterX(dotsPerMetre);
        image.setDotsPerMeterY(dotsPerMetre);
    }
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG", noise ? 100 : -1);
    return png;
}

class PasteboardTest : public testing::Test {
protected:
    QString pngType = QStringLiteral("image/png");
    VirtualDesktop& desktop() { return shell.desktop(); }

    qint64 count() {
        return shell.ask(QStringLiteral("count"), QStringLiteral("count")).section(u' ', 1).toLongLong();
    }
    std::string read(int timeoutMs = 10000) {
        return shell.ask(QStringLiteral("read"), QStringLiteral("image"), timeoutMs).toStdString();
    }
    /// A picture whose owner does not answer; its process, or 0 where there is none.
    pid_t offerAndStop() {
        desktop().setClipboard(pngOf({64, 48}), pngType);
        for (const qint64 process : desktop().processes())
            if (const auto owner = static_cast<pid_t>(process);
                ChildProcess::nameOf(process) == QStringLiteral("xclip") && ::kill(owner, SIGSTOP) == 0)
                return owner;
        return 0;
    }

    ShellDesktop shell;
};

TEST_F(PasteboardTest, theCountGrowsWithEveryChangeOfOwnerAndOnlyThen) {
    const qint64 first = count();
    EXPECT_EQ(count(), first);
    desktop().setClipboard("one", QStringLiteral("text/plain"));
    const qint64 second = count();
    EXPECT_GT(second, first);
    desktop().clipboard(QStringLiteral("text/plain"));
    EXPECT_EQ(count(), second) << "reading changes nothing";
    desktop().setClipboard("two", QStringLiteral("text/plain"));
    EXPECT_GT(count(), second);
}

TEST_F(PasteboardTest, theCountHasMovedWhenWritingReturns) {
    // Another owner first: whoever takes the clipboard after it has to be later in the server's time.
    desktop().setClipboard("one", QStringLiteral("text/plain"));
    const QStringList words = shell.ask(QStringLiteral("write 40 30"), QStringLiteral("wrote")).split(u' ');
    ASSERT_EQ(words.size(), 3);
    EXPECT_GT(words[2].toLongLong(), words[1].toLongLong());
    EXPECT_EQ(desktop().clipboardImage().size(), QSize(40, 30));
}

TEST_F(PasteboardTest, takesTheClipboardFromOneWhoTookItAfterTheLastEventThatQtKnows) {
    // A picture is drawn before it is offered; meanwhile no event is taken.
    shell.ask(QStringLiteral("write 20 10"), QStringLiteral("wrote"));
    const QString go = desktop().scratchPath() + QStringLiteral("/go");
    shell.ask(QStringLiteral("busy-write %1 40 30").arg(go), QStringLiteral("busy"));
    desktop().setClipboard("one", QStringLiteral("text/plain"));
    QFile file(go);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const QStringList words = shell.next(QStringLiteral("wrote")).split(u' ');
    ASSERT_EQ(words.size(), 3);
    EXPECT_GT(words[2].toLongLong(), words[1].toLongLong());
    EXPECT_EQ(desktop().clipboardImage().size(), QSize(40, 30));
}

TEST_F(PasteboardTest, readsAnotherProgramsPictureWithItsPixelRatio) {
    desktop().setClipboard(pngOf({64, 48}), pngType);
    EXPECT_EQ(read(), "image 64 x 48 at 1");
    desktop().setClipboard(pngOf({64, 48}, 5669), pngType);
    EXPECT_EQ(read(), "image 64 x 48 at 2");
}

TEST_F(PasteboardTest, readsItsOwnPicture) {
    shell.ask(QStringLiteral("write 50 20"), QStringLiteral("wrote"));
    EXPECT_EQ(read(), "image 50 x 20 at 1");
}

TEST_F(PasteboardTest, readsTheNewOwnersPictureAlsoWhenTheEventLoopHasNotRunSince) {
    shell.ask(QStringLiteral("write 50 20"), QStringLiteral("wrote"));
    const QString go = desktop().scratchPath() + QStringLiteral("/go");
    shell.ask(QStringLiteral("busy-read ") + go, QStringLiteral("busy"));
    desktop().setClipboard(pngOf({64, 48}), pngType);
    QFile file(go);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_EQ(shell.next(QStringLiteral("image")).toStdString(), "image 64 x 48 at 1");
}

TEST_F(PasteboardTest, readsAnOwnerThatAnswersWithATimeOfItsOwn) {
    for (const xcb_timestamp_t time : {xcb_timestamp_t{XCB_CURRENT_TIME}, xcb_timestamp_t{12345}}) {
        const ClipboardOwner owner(desktop().displayName(), pngOf({64, 48}), time);
        EXPECT_EQ(read(), "image 64 x 48 at 1") << time;
    }
}

TEST_F(PasteboardTest, quittingLeavesTheClipboardToAnOwnerThatItHasNotHeardOf) {
    shell.ask(QStringLiteral("write 50 20"), QStringLiteral("wrote"));
    const QString go = desktop().scratchPath() + QStringLiteral("/go");
    shell.ask(QStringLiteral("busy-quit ") + go, QStringLiteral("busy"));
    desktop().setClipboard(pngOf({64, 48}), pngType);
    const auto owner = shell.display().selectionOwner("CLIPBOARD");
    QFile file(go);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    ASSERT_TRUE(shell.host().waitForExit());
    EXPECT_EQ(shell.display().selectionOwner("CLIPBOARD"), owner);
    EXPECT_EQ(desktop().clipboardImage().size(), QSize(64, 48));
}

TEST_F(PasteboardTest, whatItOfferedStaysWhenItQuits) {
    shell.ask(QStringLiteral("write 50 20"), QStringLiteral("wrote"));
    shell.tell(QStringLiteral("quit"));
    ASSERT_TRUE(shell.host().waitForExit());
    EXPECT_EQ(desktop().clipboardImage().size(), QSize(50, 20));
}

TEST_F(PasteboardTest, readsTwentyMegabytesThatComeInParts) {
    const QByteArray png = pngOf({2700, 2500}, 0, true);
    ASSERT_GT(png.size(), 20'000'000);
    desktop().setClipboard(png, pngType);
    EXPECT_EQ(read(30000), "image 2700 x 2500 at 1");
}

TEST_F(PasteboardTest, givesNoPictureForTextGarbageAndAnEmptyClipboard) {
    EXPECT_TRUE(QByteArray::fromStdString(read()).startsWith("image none"));
    desktop().setClipboard("words", QStringLiteral("text/plain"));
    EXPECT_TRUE(QByteArray::fromStdString(read()).startsWith("image none"));
    desktop().setClipboard(pngOf({64, 48}).left(60), pngType);
    EXPECT_TRUE(QByteArray::fromStdString(read()).startsWith("image none"));
}

TEST_F(PasteboardTest, anOwnerThatDoesNotAnswerIsGivenUp) {
    const pid_t owner = offerAndStop();
    ASSERT_NE(owner, 0);
    const std::string answer = read(20000);
    ::kill(owner, SIGCONT);
    EXPECT_TRUE(QByteArray::fromStdString(answer).startsWith("image none")) << answer;
}

TEST_F(PasteboardTest, anOwnerThatDiesWhileItIsAskedIsNotWaitedFor) {
    // It has been asked once the question stands in its queue, which it does not read.
    const pid_t owner = offerAndStop();
    ASSERT_NE(owner, 0);
    shell.tell(QStringLiteral("read"));
    EXPECT_TRUE(shell.next(QStringLiteral("image"), 300).isEmpty());
    ::kill(owner, SIGKILL);
    const QString answer = shell.next(QStringLiteral("image none in "));
    ASSERT_FALSE(answer.isEmpty());
    EXPECT_LT(answer.section(u' ', 3, 3).toInt(), 4000) << "far less than an owner's patience";
}

TEST_F(PasteboardTest, anOwnerThatDiesLeavesNothingToRead) {
    desktop().setClipboard(pngOf({64, 48}), pngType);
    for (const qint64 pid : desktop().processes())
        if (ChildProcess::nameOf(pid) == QStringLiteral("xclip"))
            ::kill(static_cast<pid_t>(pid), SIGKILL);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return !shell.display().selectionIsOwned("CLIPBOARD"); }));
    EXPECT_TRUE(QByteArray::fromStdString(read()).startsWith("image none"));
}

} // namespace
} // namespace framora
