#include "desktop/kwin/CapturePermission.h"
#include "desktop/screencapture/CaptureDesktop.h"
#include "desktop/support/CaptureDescriptors.h"
#include "desktop/support/KwinDesktop.h"
#include "desktop/support/PaintedSurface.h"

#include <QDir>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

namespace framora {
namespace {

const QString tool = QStringLiteral(FRAMORA_SCREENCAPTURE);
const QStringList area = {QStringLiteral("-i"), QStringLiteral("-c"), QStringLiteral("-x")};
const QStringList window = {QStringLiteral("-w"), QStringLiteral("-c"), QStringLiteral("-x")};

enum Exit { Done = 0, Cancelled = 1, Failed = 3 };

/// A Plasma session with a picture behind everything, in which the tool is used as a person would.
class KwinCapture {
public:
    explicit KwinCapture(const KwinOptions& options) : m_desktop(options) {
        QDir().mkpath(m_desktop.homePath() + QStringLiteral("/Pictures"));
    }

    KwinDesktop& desktop() { return m_desktop; }
    KwinInput& input() { return m_desktop.input(); }

    static bool waitFor(const std::function<bool()>& condition, int timeoutMs = 10000) {
        return DesktopSession::waitFor(condition, timeoutMs);
    }

    std::unique_ptr<PaintedSurface> paperTheWall(const QString& output, const QSize& pixels, double scale,
                                                 int seed = 1) {
        PaintedSurface::Options options;
        options.picture = PaintedSurface::pattern(pixels, seed);
        options.size = (QSizeF(pixels) / scale).toSize();
        options.output = output;
        return std::make_unique<PaintedSurface>(m_desktop.socketPath(), options);
    }

    /// Starts the tool and waits until it shows something.
    ChildProcess& open(const QStringList& arguments) {
        m_desktop.settledScreenshot();
        ChildProcess& child = m_descriptors.launch(m_desktop, tool, arguments);
        EXPECT_TRUE(waitFor([&] { return !child.isRunning() || m_descriptors.isReady(); }));
        EXPECT_TRUE(child.isRunning()) << child.output().toStdString();
        m_desktop.settledScreenshot();
        return child;
    }
    static int exitCodeOf(ChildProcess& child) {
        EXPECT_TRUE(waitFor([&] { return !child.isRunning(); }));
        return child.exitCode();
    }
    QByteArray clipboard() {
        return m_desktop.run(QStringLiteral("timeout"), {QStringLiteral("10"), QStringLiteral("wl-paste"),
                                                         QStringLiteral("-t"), QStringLiteral("image/png")});
    }
    /// Another program copies something: what served the picture goes. What is left of the capture then.
    QStringList leftovers() {
        m_desktop.start(QStringLiteral("wl-copy"), {QStringLiteral("--foreground"), QStringLiteral("text")});
        return m_desktop.leftovers();
    }
    QImage clipboardImage() { return QImage::fromData(clipboard(), "PNG"); }

private:
    KwinDesktop m_desktop;
    CaptureDescriptors m_descriptors;
};

TEST(KwinCaptureTest, TakesAnAreaByTheOverlayPixelForPixel) {
    KwinCapture kwin({.size = {900, 600}, .portal = false});
    const auto wall = kwin.paperTheWall(QStringLiteral("Virtual-0"), {900, 600}, 1);
    const QImage screen = kwin.desktop().settledScreenshot();
    ChildProcess& capture = kwin.open(area);
    kwin.input().drag({100, 120}, {300, 250});
    EXPECT_EQ(kwin.exitCodeOf(capture), Done) << capture.output().toStdString();
    EXPECT_TRUE(samePixels(kwin.clipboardImage(), screen.copy(100, 120, 200, 130)));
    EXPECT_EQ(kwin.leftovers(), QStringList());
}

TEST(KwinCaptureTest, TakesEveryDevicePixelOfAScaledOutput) {
    KwinCapture kwin({.size = {900, 600}, .scale = 1.5, .portal = false});
    const auto wall = kwin.paperTheWall(QStringLiteral("Virtual-0"), {1350, 900}, 1.5);
    const QImage screen = kwin.desktop().settledScreenshot();
    ASSERT_EQ(screen.size(), QSize(1350, 900));
    ChildProcess& capture = kwin.open(area);
    kwin.input().drag({100, 120}, {300, 250});
    EXPECT_EQ(kwin.exitCodeOf(capture), Done) << capture.output().toStdString();
    const QImage taken = kwin.clipboardImage();
    EXPECT_TRUE(samePixels(taken, screen.copy(150, 180, 300, 195)));
    EXPECT_EQ(taken.dotsPerMeterX(), 4252); // 72 dpi x 1.5
    EXPECT_EQ(kwin.leftovers(), QStringList());
}

TEST(KwinCaptureTest, TakesTheOverlayAlsoWhereTheSizeIsNoWholeNumberOfLogicalPixels) {
    // 1366 x 901 device pixels, which KWin gives as one more or less.
    KwinCapture kwin({.size = {911, 601}, .scale = 1.5, .portal = false});
    ChildProcess& capture = kwin.open(area);
    kwin.input().drag({100, 120}, {300, 250});
    EXPECT_EQ(kwin.exitCodeOf(capture), Done) << capture.output().toStdString();
    EXPECT_EQ(kwin.clipboardImage().size(), QSize(300, 195));
    EXPECT_EQ(kwin.leftovers(), QStringList());
}

TEST(KwinCaptureTest, TakesAnAreaOfTheSecondOutput) {
    KwinCapture kwin({.size = {800, 600}, .outputs = 2, .portal = false});
    const auto first = kwin.paperTheWall(QStringLiteral("Virtual-0"), {800, 600}, 1, 1);
    const auto second = kwin.paperTheWall(QStringLiteral("Virtual-1"), {800, 600}, 1, 2);
    const QImage screen = kwin.desktop().settledScreenshot();
    ASSERT_EQ(screen.size(), QSize(1600, 600));
    ChildProcess& capture = kwin.open(area);
    kwin.input().drag({900, 50}, {1100, 200});
    EXPECT_EQ(kwin.exitCodeOf(capture), Done) << capture.output().toStdString();
    EXPECT_TRUE(samePixels(kwin.clipboardImage(), screen.copy(900, 50, 200, 150)));
    EXPECT_EQ(kwin.leftovers(), QStringList());
}

TEST(KwinCaptureTest, LeavesTheClipboardWhenCancelled) {
    KwinCapture kwin({.size = {900, 600}, .portal = false});
    kwin.desktop().start(QStringLiteral("wl-copy"),
                         {QStringLiteral("--foreground"), QStringLiteral("before")});
    ChildProcess& capture = kwin.open(area);
    kwin.input().press({KEY_ESC});
    EXPECT_EQ(kwin.exitCodeOf(capture), Cancelled) << capture.output().toStdString();
    EXPECT_EQ(kwin.desktop().run(QStringLiteral("wl-paste"), {QStringLiteral("-n")}), "before");
    EXPECT_EQ(kwin.desktop().leftovers(), QStringList());
}

TEST(KwinCaptureTest, LetsTheUserPickAWindowInKwinsWay) {
    KwinCapture kwin({.size = {900, 600}, .portal = false});
    PaintedSurface::Options options;
    options.picture = PaintedSurface::pattern({400, 300}, 5);
    options.size = {400, 300};
    options.title = QStringLiteral("painted window");
    const PaintedSurface painted(kwin.desktop().socketPath(), options);
    const QImage screen = kwin.desktop().settledScreenshot();
    // Where KWin put it: its first row of pixels is like no other.
    QPoint place(-1, -1);
    for (int y = 0; y + 300 <= screen.height() && place.x() < 0; ++y)
        for (int x = 0; x + 400 <= screen.width() && place.x() < 0; ++x)
            if (samePixels(screen.copy(x, y, 400, 1), options.picture.copy(0, 0, 400, 1)))
                place = {x, y};
    ASSERT_GE(place.x(), 0);
    ChildProcess& capture = kwin.open(window);
    kwin.input().click(place + QPoint(200, 150));
    EXPECT_EQ(kwin.exitCodeOf(capture), Done) << capture.output().toStdString();
    EXPECT_TRUE(samePixels(kwin.clipboardImage(), options.picture));
    EXPECT_TRUE(painted.clicks().empty());
    EXPECT_EQ(kwin.leftovers(), QStringList());
}

TEST(KwinCaptureTest, PickingNoWindowCancels) {
    KwinCapture kwin({.size = {900, 600}, .portal = false});
    ChildProcess& capture = kwin.open(window);
    kwin.input().press({KEY_ESC});
    EXPECT_EQ(kwin.exitCodeOf(capture), Cancelled) << capture.output().toStdString();
    EXPECT_EQ(kwin.desktop().leftovers(), QStringList());
}

TEST(KwinCaptureTest, TheDesktopEntryIsWhatPermitsIt) {
    KwinCapture kwin({.size = {900, 600}, .portal = false, .everyoneMayCapture = false});
    const auto exitCode = [&] {
        ChildProcess& check = kwin.desktop().start(tool, {QStringLiteral("--check-route")});
        return kwin.exitCodeOf(check);
    };
    EXPECT_EQ(exitCode(), Failed);
    kwin.desktop().installDesktopEntry(QStringLiteral("org.framora.Framora.ScreenCapture.desktop"),
                                       permissionFor(tool));
    EXPECT_TRUE(KwinCapture::waitFor([&] { return exitCode() == Done; }));
    EXPECT_EQ(kwin.desktop().leftovers(), QStringList());
}

/// The buttons of the portal's dialog, in the middle of the screen.
constexpr QPointF pointerBox(192, 270);
constexpr QPointF saveButton(210, 480);
constexpr QPointF cancelButton(370, 480);
constexpr QPointF takeButton(690, 480);

TEST(KwinCaptureTest, TakesAPictureThroughKdesPortal) {
    KwinCapture kwin({.size = {900, 600}, .everyoneMayCapture = false});
    permitThisTest(kwin.desktop());
    const auto wall = kwin.paperTheWall(QStringLiteral("Virtual-0"), {900, 600}, 1);
    const QImage screen = kwin.desktop().settledScreenshot();
    ChildProcess& capture = kwin.open(area);
    ASSERT_TRUE(KwinCapture::waitFor([&] { return kwin.desktop().screenshot() != screen; }));
    const QImage dialog = kwin.desktop().settledScreenshot();
    kwin.input().click(pointerBox);
    kwin.desktop().settledScreenshot();
    kwin.input().click(takeButton);
    EXPECT_TRUE(KwinCapture::waitFor([&] { return kwin.desktop().screenshot() != dialog; }));
    kwin.desktop().settledScreenshot();
    kwin.input().click(saveButton);
    ASSERT_EQ(kwin.exitCodeOf(capture), Done) << capture.output().toStdString();
    const QImage taken = kwin.clipboardImage();
    ASSERT_EQ(taken.size(), screen.size());
    // The dialog takes itself as well.
    for (const QRect& besideIt : {QRect(0, 0, 900, 100), QRect(0, 500, 900, 100)})
        EXPECT_TRUE(samePixels(taken.copy(besideIt), screen.copy(besideIt)));
    EXPECT_EQ(taken.dotsPerMeterX(), 2835); // 72 dpi
    EXPECT_EQ(kwin.leftovers(), QStringList());
}

TEST(KwinCaptureTest, CancellingKdesDialogLeavesTheClipboard) {
    KwinCapture kwin({.size = {900, 600}, .everyoneMayCapture = false});
    permitThisTest(kwin.desktop());
    const QImage screen = kwin.desktop().settledScreenshot();
    kwin.desktop().start(QStringLiteral("wl-copy"),
                         {QStringLiteral("--foreground"), QStringLiteral("before")});
    ChildProcess& capture = kwin.open(window);
    ASSERT_TRUE(KwinCapture::waitFor([&] { return kwin.desktop().screenshot() != screen; }));
    kwin.desktop().settledScreenshot();
    kwin.input().click(cancelButton);
    EXPECT_EQ(kwin.exitCodeOf(capture), Cancelled) << capture.output().toStdString();
    EXPECT_EQ(kwin.desktop().run(QStringLiteral("wl-paste"), {QStringLiteral("-n")}), "before");
    EXPECT_EQ(kwin.desktop().leftovers(), QStringList());
}

TEST(KwinCaptureTest, FailsWithOneLineWithoutPermissionAndPortal) {
    KwinCapture kwin({.size = {900, 600}, .portal = false, .everyoneMayCapture = false});
    for (const QStringList& arguments : {area, window}) {
        ChildProcess& capture = kwin.desktop().start(tool, arguments);
        EXPECT_EQ(kwin.exitCodeOf(capture), Failed);
        EXPECT_EQ(capture.output().count('\n'), 1) << capture.output().toStdString();
    }
    EXPECT_EQ(kwin.desktop().leftovers(), QStringList());
}

} // namespace
} // namespace framora
