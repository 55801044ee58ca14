#include "desktop/wayland/capture/SwayCapture.h"

#include "screencapture/wayland/DataControlClipboard.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <future>
#include <thread>
#include <unistd.h>

namespace framora {
namespace {

/// A PNG file that no pipe holds at once.
QByteArray largePng() {
    QImage noise(1600, 1000, QImage::Format_RGB32);
    QRandomGenerator random(3);
    random.fillRange(reinterpret_cast<quint32*>(noise.bits()), noise.width() * noise.height());
    noise.setText(QStringLiteral("Title"), QStringLiteral("noise"));
    QByteArray png;
    QBuffer buffer(&png);
    noise.save(&buffer, "PNG");
    return png;
}

QStringList wlPaste() {
    return {QStringLiteral("20"), QStringLiteral("wl-paste"), QStringLiteral("--no-newline"),
            QStringLiteral("--type"), QStringLiteral("image/png")};
}

class SwayClipboardTest : public testing::Test {
protected:
    /// Serves as the left-behind process does, in a thread, until somebody else owns the clipboard.
    void serve(std::chrono::milliseconds patience) {
        qputenv("WAYLAND_DISPLAY", capture.desktop().waylandDisplay().toUtf8());
        server =
            std::make_unique<DataControlClipboard>(std::vector<uint8_t>(png.begin(), png.end()), patience);
        ASSERT_TRUE(server->own());
        ended = std::async(std::launch::async, [this] { server->run(); });
    }

    static constexpr int kFirstBytes = 1000;

    /// A reader that takes the first bytes, says so with a full stop, and the rest when it may go on.
    ChildProcess& startReaderThatWaits() {
        return capture.desktop().start(
            QStringLiteral("sh"),
            {QStringLiteral("-c"),
             QStringLiteral("wl-paste --no-newline --type image/png | { head -c %1; echo . >&2; while ! [ -e "
                            "'%2' ]; do sleep 0.05; done; cat; }")
                 .arg(kFirstBytes)
                 .arg(goPath())});
    }
    void letReadersGoOn() const {
        QFile file(goPath());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QString goPath() const { return scratch + QStringLiteral("/go"); }

    bool hasEnded() { return ended.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }

    SwayCapture capture{{SwayOutput{{640, 400}, 1}}};
    const QString scratch = capture.desktop().scratchPath();
    const QByteArray png = largePng();
    std::unique_ptr<DataControlClipboard> server;
    std::future<void> ended;
};

TEST_F(SwayClipboardTest, readersThatStallHoldUpNobody) {
    serve(std::chrono::seconds(30));
    // They read a little of it and then nothing.
    std::vector<ChildProcess*> stalled;
    for (int i = 0; i < 3; ++i)
        stalled.push_back(&startReaderThatWaits());
    for (ChildProcess* reader : stalled)
        ASSERT_TRUE(SwayDesktop::waitFor([&] { return reader->output().size() > kFirstBytes; }));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(capture.desktop().clipboard(), png);
    // Two that read at the same time.
    ChildProcess& one = capture.desktop().start(QStringLiteral("timeout"), wlPaste());
    EXPECT_EQ(capture.desktop().clipboard(), png);
    EXPECT_TRUE(one.waitForExit());
    EXPECT_EQ(one.output(), png);
    letReadersGoOn();
    for (ChildProcess* reader : stalled) {
        EXPECT_TRUE(reader->waitForExit());
        EXPECT_EQ(reader->output().size(), png.size() + 2);
    }
    capture.fillClipboard();
    EXPECT_TRUE(SwayDesktop::waitFor([this] { return hasEnded(); }));
}

TEST_F(SwayClipboardTest, aReaderThatStallsTooLongIsGivenUp) {
    serve(std::chrono::milliseconds(300));
    ChildProcess& stalled = capture.desktop().start(
        QStringLiteral("sh"),
        {QStringLiteral("-c"),
         QStringLiteral(
             "wl-paste --no-newline --type image/png | { head -c 100 >/dev/null; sleep 2; wc -c; }")});
    ASSERT_TRUE(SwayDesktop::waitFor([&] { return capture.desktop().clipboard() == png; }));
    EXPECT_TRUE(stalled.waitForExit());
    const int got = stalled.output().trimmed().toInt();
    EXPECT_GT(got, 0);
    EXPECT_LT(got, png.size() - 100);
    EXPECT_FALSE(hasEnded());
    capture.fillClipboard();
    EXPECT_TRUE(SwayDesktop::waitFor([this] { return hasEnded(); }));
}

TEST_F(SwayClipboardTest, whoAlreadyReadsGetsAllOfItAfterAnotherTookOver) {
    serve(std::chrono::seconds(30));
    ChildProcess& slow = startReaderThatWaits();
    ASSERT_TRUE(SwayDesktop::waitFor([&] { return slow.output().size() > kFirstBytes; }));
    capture.fillClipboard();
    EXPECT_FALSE(hasEnded());
    letReadersGoOn();
    EXPECT_TRUE(slow.waitForExit());
    EXPECT_EQ(slow.output().size(), png.size() + 2);
    EXPECT_TRUE(SwayDesktop::waitFor([this] { return hasEnded(); }));
}

TEST_F(SwayClipboardTest, thePictureIsServedAfterTheToolEndedUntilAnotherProgramCopies) {
    const QByteArray words("primary words");
    capture.desktop().start(
        QStringLiteral("wl-copy"),
        {QStringLiteral("--foreground"), QStringLiteral("--primary"), QString::fromUtf8(words)});
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.drag({10, 10}, {110, 60});
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    EXPECT_EQ(capture.toolProcesses(), 1);
    EXPECT_EQ(capture.desktop().clipboardTypes(), QStringList{QStringLiteral("image/png")});
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(
            samePicture(capture.desktop().clipboardImage(), capture.background().copy(10, 10, 100, 50)));
    EXPECT_EQ(capture.desktop().run(QStringLiteral("wl-paste"),
                                    {QStringLiteral("--primary"), QStringLiteral("--no-newline")}),
              words);
    const QByteArray other = capture.fillClipboard();
    EXPECT_TRUE(SwayDesktop::waitFor([this] { return capture.toolProcesses() == 0; }));
    EXPECT_EQ(capture.desktop().clipboard(), other);
}

TEST_F(SwayClipboardTest, manyCapturesLeaveOneProcess) {
    for (int i = 0; i < 6; ++i) {
        ChildProcess* tool = capture.open();
        ASSERT_TRUE(tool);
        capture.drag({10, 10}, {110.0 + i, 60});
        ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
        EXPECT_EQ(capture.desktop().clipboardImage().width(), 100 + i);
        EXPECT_TRUE(SwayDesktop::waitFor([this] { return capture.toolProcesses() == 1; }));
    }
}

TEST_F(SwayClipboardTest, theKeeperTakesWhatTheProgramCopied) {
    capture.desktop().run(QStringLiteral(FRAMORA_CLIPBOARD), {}, 10000, png);
    EXPECT_EQ(capture.desktop().clipboard(), png);
    capture.fillClipboard();
    EXPECT_TRUE(capture.desktop().leftovers().isEmpty());
}

} // namespace
} // namespace framora
