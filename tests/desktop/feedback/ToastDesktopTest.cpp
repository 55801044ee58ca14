#include "desktop/feedback/BeneathWindow.h"
#include "desktop/feedback/TimerQueue.h"
#include "desktop/support/VirtualDesktop.h"
#include "feedback/InteractiveToastView.h"
#include "feedback/ToastManager.h"
#include "platform/x11/X11ToastPanels.h"
#include "support/FixedAppearance.h"
#include "support/FixedScreens.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QTest>
#include <gtest/gtest.h>
#include <optional>

namespace framora {
namespace {

constexpr QSize screenSize(1280, 800);
constexpr QColor ground(30, 140, 90);

/// Toasts on a private X desktop, with or without a compositor, over a window that counts clicks.
class ToastDesktopTest : public testing::TestWithParam<bool> {
protected:
    ToastDesktopTest() {
        DesktopOptions options;
        options.size = screenSize;
        options.compositor = GetParam();
        desktop.emplace(options);
        qputenv("DISPLAY", desktop->displayName().toLocal8Bit());
        beneath.emplace(desktop->displayName(), QRect(QPoint(0, 0), screenSize), ground.rgb(), true);
        EXPECT_TRUE(VirtualDesktop::waitFor([&] {
            beneath->show();
            return display().activeWindow() == beneath->id();
        }));
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().pixelAt({640, 700}) == ground; }));
        panels.emplace(queue, screens);
        manager.emplace(ToastServices{queue, *panels, screens, appearance,
                                      [this](const QImage& image) { edited.push_back(image.size()); }});
    }

    DesktopDisplay& display() { return desktop->display(); }

    std::optional<DesktopWindow> toast() { return display().windowTitled(QStringLiteral("Framora toast")); }

    void showPlain() {
        manager->show(QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"), true);
    }

    static QImage picture() {
        QImage picture(800, 500, QImage::Format_RGB32);
        picture.fill(QColor(220, 90, 60));
        return picture;
    }

    void showInteractive() {
        manager->showInteractive(QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"),
                                 picture());
    }

    /// Pixels that the toast changed.
    QRect changedArea(const QImage& screenshot) {
        QRect area;
        for (int y = 0; y < screenshot.height(); ++y)
            for (int x = 0; x < screenshot.width(); ++x)
                if (screenshot.pixelColor(x, y) != ground)
                    area |= QRect(x, y, 1, 1);
        return area;
    }

    bool waitUntilFullyShown() {
        // The card's own colour, left of its middle.
        return VirtualDesktop::waitFor([&] {
            const QImage now = display().screenshot({440, 580, 400, 220});
            int card = 0;
            for (int y = 0; y < now.height(); ++y)
                for (int x = 0; x < now.width(); ++x)
                    card += now.pixelColor(x, y).lightness() > 248;
            return card > 2000;
        });
    }

    bool waitUntilGone() {
        return VirtualDesktop::waitFor([&] { return !manager->isShowing() && !toast(); });
    }

    /// The middle of the card that is shown.
    QPoint cardCenter() { return {640, 800 - 80 - 40}; }

    std::optional<VirtualDesktop> desktop;
    std::optional<BeneathWindow> beneath;
    TimerQueue queue;
    FixedScreens screens{{Screen{QRect(QPoint(0, 0), screenSize), 1}}};
    FixedAppearance appearance;
    std::optional<X11ToastPanels> panels;
    std::optional<ToastManager> manager;
    std::vector<QSize> edited;
};

INSTANTIATE_TEST_SUITE_P(, ToastDesktopTest, testing::Bool(),
                         [](const auto& run) { return run.param ? "composited" : "plain"; });

TEST_P(ToastDesktopTest, theWindowHasTheScreensWholeFrameAndStandsAboveAFullScreenWindow) {
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    const auto window = toast();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->geometry, QRect(QPoint(0, 0), screenSize));
    EXPECT_TRUE(window->overrideRedirect);
    EXPECT_EQ(display().windows().back().id, window->id);
    EXPECT_EQ(display().cardinals(window->id, "_NET_WM_DESKTOP"), std::vector<std::uint32_t>{0xffffffff});
}

TEST_P(ToastDesktopTest, withdrawnItIsOffTheScreenUntilItIsRestored) {
    panels->withdraw(); // Nothing is there, and what comes later is not concerned.
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    panels->withdraw();
    EXPECT_FALSE(toast()) << "gone when the call returns";
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return changedArea(display().screenshot()).isEmpty(); }));
    panels->restore();
    EXPECT_TRUE(waitUntilFullyShown());
    EXPECT_TRUE(waitUntilGone());
}

TEST_P(ToastDesktopTest, oneWhoseTimeEndsWhileItIsWithdrawnDoesNotComeBack) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    panels->withdraw();
    manager->dismiss();
    panels->restore();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return toast().has_value(); }, 200));
    EXPECT_TRUE(waitUntilGone());
}

TEST_P(ToastDesktopTest, itFollowsItsScreen) {
    const QRect left(0, 0, 640, 800);
    const QRect right(640, 0, 640, 800);
    screens.list = {{left, 1, QStringLiteral("left")}, {right, 1, QStringLiteral("right")}};
    const auto setMonitor = [&](const QString& name, const QString& place) {
        // The server tells of it.
        desktop->run(QStringLiteral("xrandr"),
                     {QStringLiteral("--setmonitor"), name, place, QStringLiteral("none")});
    };
    const auto isAt = [&](const QRect& place) {
        return VirtualDesktop::waitFor([&] {
            const auto now = toast();
            return now && now->geometry == place;
        });
    };
    // One that stays as long as the test needs it.
    const auto panel =
        panels->makePanel(screens.list[0], false,
                          std::make_unique<InteractiveToastView>(
                              QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"), [] {},
                              picture(), QStringLiteral("Edit"), ToastPalette::of(appearance)));
    panel->orderFront();
    panel->setAlpha(1);
    ASSERT_TRUE(isAt(left));
    const auto widthOfInput = [&] {
        const auto now = toast();
        return now ? display().inputArea(now->id).width() : 0;
    };
    const int narrow = widthOfInput();
    EXPECT_GT(narrow, 100);
    screens.list = {{QRect(0, 0, 1280, 700), 2, QStringLiteral("left")}, {right, 1, QStringLiteral("right")}};
    setMonitor(QStringLiteral("first"), QStringLiteral("640/170x800/210+640+0"));
    EXPECT_TRUE(isAt({0, 0, 1280, 700}));
    EXPECT_NEAR(widthOfInput(), 2 * narrow, 2) << "the card has twice as many pixels";
    screens.list = {{right, 1, QStringLiteral("right")}};
    setMonitor(QStringLiteral("second"), QStringLiteral("640/170x800/210+0+0"));
    EXPECT_TRUE(isAt(right)) << "its own screen has gone";
    // Qt comes to know a new screen, and with it its ratio, after the server has told of it.
    screens.list = {{left, 2, QStringLiteral("right")}};
    Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    EXPECT_TRUE(isAt(left));
}

TEST_P(ToastDesktopTest, aToastThatReplacesAWithdrawnOneIsShownAtOnce) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    panels->withdraw();
    showPlain();
    EXPECT_TRUE(waitUntilFullyShown());
    panels->restore();
    EXPECT_TRUE(waitUntilGone());
}

TEST_P(ToastDesktopTest, theFocusStaysWhereItWas) {
    const auto before = display().focusedWindow();
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    EXPECT_EQ(display().focusedWindow(), before);
    EXPECT_EQ(display().activeWindow(), beneath->id());
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    EXPECT_EQ(display().focusedWindow(), before);
    EXPECT_EQ(display().activeWindow(), beneath->id());
}

TEST_P(ToastDesktopTest, everyClickOnAPlainToastReachesWhatLiesBeneath) {
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    display().click(cardCenter());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return beneath->clicks() == 1; }));
    EXPECT_TRUE(manager->isShowing());
}

TEST_P(ToastDesktopTest, anInteractiveToastTakesClicksOnItsCardOnly) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    // Beside the card, in its shadow, and just outside its rounded corner.
    const QImage seen = display().screenshot();
    QRect card;
    for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x)
            if (seen.pixelColor(x, y).lightness() > 248)
                card |= QRect(x, y, 1, 1);
    const QPoint corner = card.topLeft();
    int expected = 0;
    for (const QPoint point : {QPoint(100, 100), QPoint(card.left() - 10, card.center().y()), corner,
                               QPoint(card.center().x(), card.bottom() + 8)}) {
        display().click(point);
        ++expected;
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return beneath->clicks() == expected; }, 2000))
            << point.x() << ' ' << point.y();
    }
    EXPECT_TRUE(edited.empty());
    display().click(card.center());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !edited.empty(); }));
    EXPECT_EQ(beneath->clicks(), expected);
    EXPECT_EQ(edited, std::vector<QSize>{QSize(800, 500)});
    EXPECT_TRUE(waitUntilGone());
}

TEST_P(ToastDesktopTest, nothingTurnsBlackBeforeDuringOrAfterAToast) {
    // A compositor that has just started may leave black what is mapped before its own first frame.
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    manager->dismiss();
    ASSERT_TRUE(waitUntilGone());
    showInteractive();
    QElapsedTimer time;
    time.start();
    QImage shown;
    // The light card and its shadow over a mid-green ground: nothing of that is ever nearly black.
    const auto darkest = [](const QImage& image) {
        int least = 255;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                least = std::min(least, image.pixelColor(x, y).value());
        return least;
    };
    bool sawCard = false;
    while (manager->isShowing() && time.elapsed() < 8000) {
        QTest::qWait(10);
        const QImage now = display().screenshot({300, 500, 680, 300});

        ASSERT_GT(darkest(now), 20) << "after " << time.elapsed() << " ms";
        sawCard = sawCard || now.pixelColor(340, 180).lightness() > 240;
    }
    EXPECT_TRUE(sawCard);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return changedArea(display().screenshot()).isNull(); }));
}

TEST_P(ToastDesktopTest, onlyTheCardAndItsShadowChangeTheScreen) {
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    const QRect changed = changedArea(display().screenshot());
    EXPECT_LT(changed.width(), GetParam() ? 400 : 300);
    EXPECT_LE(changed.height(), GetParam() ? 56 + 2 * 58 : 56);
}

TEST_P(ToastDesktopTest, aNewToastReplacesTheOldOneAtOnce) {
    for (int i = 0; i < 5; ++i) {
        showPlain();
        QTest::qWait(50);
        int toasts = 0;
        for (const auto& window : display().windows())
            toasts += window.title == QStringLiteral("Framora toast");
        EXPECT_EQ(toasts, 1);
    }
}

TEST_P(ToastDesktopTest, aToastStaysOnTopOfAWindowThatIsRaisedMeanwhile) {
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    BeneathWindow late(desktop->displayName(), QRect(300, 400, 700, 380), 0x4040c0);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().windows().size() >= 3; }));
    late.raise();
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] {
            const auto all = display().windows();
            return all.back().title == QStringLiteral("Framora toast") && all.size() >= 3;
        },
        1500));
}

TEST_P(ToastDesktopTest, hoveringShowsTheEditActionAndAHand) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    QImage resting;
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        QTest::qWait(60); // Several frames of the fade: two equal pictures are its end.
        const QImage before = std::exchange(resting, display().screenshot({440, 600, 400, 160}));
        return before == resting;
    }));
    display().moveTo(cardCenter());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        // The tint's blue of the round edit button.
        const QImage now = display().screenshot({440, 600, 400, 160});
        int tinted = 0;
        for (int y = 0; y < now.height(); ++y)
            for (int x = 0; x < now.width(); ++x)
                tinted += now.pixelColor(x, y) == appearance.accent;
        return tinted > 300;
    }));
    display().moveTo({20, 20});
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        return display().screenshot({440, 600, 400, 160}) == resting;
    }));
}

TEST_P(ToastDesktopTest, toastsLeaveNoWindowAndNoDescriptorBehind) {
    // The first of each kind opens its fonts, which stay.
    showPlain();
    QTest::qWait(20);
    showInteractive();
    QTest::qWait(20);
    manager.emplace(ToastServices{queue, *panels, screens, appearance});
    QTest::qWait(50);
    const int windows = display().windowCount();
    const int descriptors = ChildProcess::openDescriptors(QCoreApplication::applicationPid());
    const qint64 memory = ChildProcess::residentKilobytes(QCoreApplication::applicationPid());
    for (int i = 0; i < 200; ++i) {
        if (i % 2)
            showInteractive();
        else
            showPlain();
        QTest::qWait(5);
    }
    manager->dismiss();
    ASSERT_TRUE(waitUntilGone());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().windowCount() <= windows; }))
        << display().windowCount();
    EXPECT_EQ(ChildProcess::openDescriptors(QCoreApplication::applicationPid()), descriptors);
    // Two pictures of a toast, far below what two hundred would keep.
    EXPECT_LT(ChildProcess::residentKilobytes(QCoreApplication::applicationPid()), memory + 6000);
}

using LateCompositorTest = ToastDesktopTest;
INSTANTIATE_TEST_SUITE_P(, LateCompositorTest, testing::Values(false));

TEST_P(LateCompositorTest, aCompositorMayComeAndGoWhileAToastIsShown) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    const QRect shaped = changedArea(display().screenshot());
    EXPECT_LE(shaped.height(), 92);
    auto& compositor = desktop->startCompositor();
    // The next toast, at the latest, has its shadow; this one gets it while it stands.
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        if (!manager->isShowing())
            showInteractive();
        return changedArea(display().screenshot()).height() > 100;
    }));
    compositor.end();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        if (!manager->isShowing())
            showInteractive();
        const QRect now = changedArea(display().screenshot());
        return now.height() > 50 && now.height() <= 92;
    }));
}

TEST_P(ToastDesktopTest, aScreenThatVanishesUnderAToastDoesNoHarm) {
    screens.list = {Screen{QRect(5000, 3000, 1920, 1080), 2}};
    showInteractive();
    QTest::qWait(100);
    EXPECT_TRUE(manager->isShowing());
    manager->dismiss();
    EXPECT_TRUE(waitUntilGone());
}

TEST(ToastWithoutAServer, keepsItsTimesAndShowsNothing) {
    qputenv("DISPLAY", ":9999");
    TimerQueue queue;
    FixedScreens screens;
    X11ToastPanels panels(queue, screens);
    FixedAppearance appearance;
    ToastManager manager({queue, panels, screens, appearance});
    manager.show(QStringLiteral("Copied"), QStringLiteral("photo"), true);
    EXPECT_TRUE(manager.isShowing());
    manager.dismiss();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !manager.isShowing(); }));
}

} // namespace
} // namespace framora
