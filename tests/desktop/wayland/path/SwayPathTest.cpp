#include "desktop/wayland/path/FramoraOnSway.h"

#include <QColorSpace>
#include <QFile>

namespace framora {
namespace {

/// Without what a file says about them.
QImage pixels(const QImage& image) {
    QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    plain.setColorSpace({});
    return plain;
}

class SwayPathTest : public testing::TestWithParam<double> {
protected:
    SwayPathTest() : path(FramoraOnSway::options(GetParam())) {}

    QString scratch(const char* name) {
        return path.desktop().scratchPath() + QLatin1Char('/') + QLatin1String(name);
    }

    FramoraOnSway path;
};

INSTANTIATE_TEST_SUITE_P(Scale, SwayPathTest, testing::Values(1, 2),
                         [](const auto& run) { return std::to_string(int(run.param)); });

TEST_P(SwayPathTest, leadsFromTheCommandToASavedAndACopiedPicture) {
    path.launch();
    path.openCapture();
    const QRect area(300, 200, 420, 260);
    path.selectArea(area);
    const QRect card = path.waitForToast();
    const QByteArray captured = path.desktop().clipboard();
    const QImage taken = QImage::fromData(captured, "PNG");
    EXPECT_TRUE(pixels(taken) == pixels(path.backgroundPixels(area)));

    // Beside the toast the desktop takes the click.
    path.input().click(card.topLeft() - QPoint(40, 10));
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return path.background().clicks().size() == 1; }));
    path.input().click(card.center());
    path.waitForEditor();
    EXPECT_EQ(path.background().clicks().size(), 1U) << "the toast takes its own";
    EXPECT_EQ(path.desktop().clipboard(), captured);

    const QImage saved = path.save(scratch("saved.png"));
    EXPECT_EQ(saved.size(), 2 * (area.size() + QSize(160, 160)));
    QFile source(scratch("source.png"));
    ASSERT_TRUE(source.open(QIODevice::WriteOnly));
    source.write(captured);
    source.close();
    path.desktop().run(FramoraOnSway::program(QStringLiteral("framora-render")),
                       {source.fileName(), QStringLiteral("-o"), scratch("rendered.png")}, 60000);
    EXPECT_TRUE(pixels(QImage(scratch("rendered.png"))) == pixels(saved));

    path.clickControl(QStringLiteral("Copy to Clipboard"));
    path.waitForNoEditor();
    QByteArray copied;
    ASSERT_TRUE(SwayDesktop::waitFor([&] {
        copied = path.desktop().clipboard();
        return !copied.isEmpty() && copied != captured;
    }));
    EXPECT_TRUE(pixels(QImage::fromData(copied, "PNG")) == pixels(saved));
    path.waitForNothingInFront();
    EXPECT_EQ(path.desktop().clipboard(), copied) << "after the editor was closed";
    path.quit();
    EXPECT_EQ(path.desktop().clipboard(), copied) << "after Framora has ended";
    EXPECT_TRUE(path.leavesNothing());
}

TEST_P(SwayPathTest, capturesTheWindowThatIsClicked) {
    const QRect place(200, 150, 360, 240);
    PaintedSurface window(path.desktop().waylandDisplay(),
                          {PaintedSurface::pattern(place.size() * GetParam(), 7),
                           place.size(),
                           QStringLiteral("a window"),
                           {}});
    path.desktop().place(path.desktop().window(QStringLiteral("a window")).value(), place);
    path.launch();
    path.openCapture(QStringLiteral("--capture-window"));
    path.input().click(place.center());
    path.waitForNoCapture();
    ASSERT_TRUE(SwayDesktop::waitFor([&] { return !path.desktop().clipboard().isEmpty(); }));
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(window.picture()));
    EXPECT_TRUE(window.clicks().empty()) << "the capture's click is not the window's";
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

class SwayFlowTest : public testing::Test {
protected:
    FramoraOnSway path{FramoraOnSway::options()};
};

TEST_F(SwayFlowTest, aCancelledCaptureLeavesTheClipboardAndShowsNothing) {
    path.desktop().setClipboard("words", QStringLiteral("text/plain"));
    path.launch();
    for (const char* option : {"--capture-area", "--capture-window"}) {
        path.openCapture(QLatin1String(option));
        path.input().key({"Escape"});
        path.waitForNoCapture();
        path.waitForNothingInFront();
        EXPECT_EQ(path.desktop().clipboard(QStringLiteral("text/plain")), "words");
    }
    path.quit();
    EXPECT_EQ(path.desktop().clipboard(QStringLiteral("text/plain")), "words");
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(SwayFlowTest, aCommandStartsFramoraWhenItDoesNotRun) {
    ChildProcess& framora = path.desktop().start(FramoraOnSway::program(QStringLiteral("framora")),
                                                 {QStringLiteral("--capture-area")});
    const QImage before = path.background().picture();
    ASSERT_TRUE(SwayDesktop::waitFor(
        [&] { return path.desktop().screenshot().pixel(1277, 797) != before.pixel(1277, 797); }));
    path.input().drag({100, 100}, {400, 300});
    ASSERT_TRUE(SwayDesktop::waitFor([&] { return !path.desktop().clipboard().isEmpty(); }));
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) ==
                pixels(path.backgroundPixels({100, 100, 300, 200})));
    EXPECT_TRUE(framora.isRunning()) << "it stays for the next";
    path.command(QStringLiteral("--quit"));
    EXPECT_TRUE(framora.waitForExit());
    EXPECT_EQ(framora.exitCode(), 0);
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(SwayFlowTest, theVeryFirstStartSaysWhatToBindSinceNothingElseShowsIt) {
    path.desktop().storeDefaults("{}");
    const auto preferences = [&] { return path.desktop().window(QStringLiteral("Preferences")); };
    path.launch();
    ASSERT_TRUE(SwayDesktop::waitFor([&] { return preferences() && preferences()->focused; }));
    path.desktop().close(*preferences());
    path.quit();
    path.launch();
    EXPECT_FALSE(SwayDesktop::waitFor([&] { return preferences().has_value(); }, 4000));
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(SwayFlowTest, theEditorTakesThePictureOfTheCaptureAlsoWhenAnotherProgramCopiesMeanwhile) {
    path.launch();
    const QRect area(100, 120, 300, 200);
    const QRect card = path.capture(area);
    path.desktop().setClipboard("words", QStringLiteral("text/plain"));
    path.input().click(card.center());
    const SwayWindow editor = path.waitForEditor();
    const QImage saved = path.save(path.desktop().scratchPath() + QStringLiteral("/saved.png"));
    EXPECT_EQ(saved.size(), 2 * (area.size() + QSize(160, 160)));
    EXPECT_EQ(path.desktop().clipboard(QStringLiteral("text/plain")), "words");
    path.desktop().close(editor);
    path.waitForNoEditor();
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(SwayFlowTest, twentyCapturesLeaveNothingBehind) {
    path.launch();
    int descriptors = 0;
    for (int round = 0; round < 20; ++round) {
        path.openCapture();
        path.selectArea({200, 100, 200 + round, 150});
        ASSERT_TRUE(SwayDesktop::waitFor([&] {
            return path.desktop().clipboardImage().size() == QSize(200 + round, 150);
        })) << round;
        if (round == 4)
            descriptors = path.framora().openDescriptors();
    }
    EXPECT_FALSE(path.waitForToast().isEmpty());
    path.waitForNothingInFront();
    // One kept from each capture would be fifteen more; the fifth may have been counted before its toast was
    // up.
    constexpr int slack = 5;
    EXPECT_TRUE(
        SwayDesktop::waitFor([&] { return path.framora().openDescriptors() <= descriptors + slack; }, 5000))
        << path.framora().openDescriptors() << " descriptors after twenty, " << descriptors << " after five";
    EXPECT_TRUE(path.framora().children().empty());
    // Only the last picture is still served.
    int keepers = 0;
    for (const qint64 pid : path.desktop().processes())
        keepers += ChildProcess::nameOf(pid).startsWith(QStringLiteral("framora-"));
    EXPECT_EQ(keepers, 1);
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

} // namespace
} // namespace framora
