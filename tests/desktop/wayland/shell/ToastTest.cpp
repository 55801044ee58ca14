#include "desktop/wayland/shell/OnSway.h"
#include "feedback/ToastManager.h"
#include "platform/wayland/WaylandToastPanels.h"
#include "support/FixedAppearance.h"
#include "support/FixedScreens.h"

#include <QPainter>
#include <QTest>
#include <ctime>
#include <gtest/gtest.h>
#include <optional>

namespace framora {
namespace {

const QColor ground(30, 140, 90);

/// A card whose every pixel is known, with a margin around it that belongs to the toast.
class PatternContent final : public ToastContent {
public:
    static constexpr QSizeF cardSize{300, 80};
    static constexpr double margin = 20;

    QRectF bounds(QSizeF panel) const override {
        return cardRect(panel).adjusted(-margin, -margin, margin, margin);
    }
    QRectF cardRect(QSizeF panel) const override {
        return {QPointF(std::round((panel.width() - cardSize.width()) / 2), panel.height() - 160), cardSize};
    }
    double cardCornerRadius() const override { return 18; }
    QColor cardColor() const override { return Qt::white; }
    QImage paint(QSizeF, double pixelRatio) const override { return picture(pixelRatio); }
    ToastSummary summary() const override { return {}; }
    bool setHovered(bool) override { return false; }
    void press(QPointF) override {}

    static QImage picture(double pixelRatio) {
        const QSizeF size = cardSize + QSizeF(2 * margin, 2 * margin);
        return PaintedSurface::pattern((size * pixelRatio).toSize());
    }
};

class WaylandToastTest : public testing::Test {
protected:
    explicit WaylandToastTest(const SwayOptions& options = OnSway::ofScale(1)) : sway(options) {
        sway.paintGround(0, ground);
        panels.emplace(sway.connection, sway.outputs, sway.queue,
                       [this](const QString& token) { tokens.append(token); });
        manager.emplace(ToastServices{sway.queue, *panels, sway.screens, appearance,
                                      [this](const QImage& image) { edited.push_back(image.size()); }});
    }

    void showPlain() {
        manager->show(QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"), true);
    }
    void showInteractive() {
        QImage picture(800, 500, QImage::Format_RGB32);
        picture.fill(QColor(220, 90, 60));
        manager->showInteractive(QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"), picture);
    }

    /// Pixels that the toast changed.
    QRect changedArea(int output = 0) {
        const QImage seen = sway.desktop.screenshot(output);
        QRect area;
        for (int y = 0; y < seen.height(); ++y)
            for (int x = 0; x < seen.width(); ++x)
                if (seen.pixelColor(x, y) != ground)
                    area |= QRect(x, y, 1, 1);
        return area;
    }
    /// The card's own near-white pixels.
    QRect cardArea(int output = 0) {
        const QImage seen = sway.desktop.screenshot(output);
        QRect area;
        for (int y = 0; y < seen.height(); ++y)
            for (int x = 0; x < seen.width(); ++x)
                if (seen.pixelColor(x, y).lightness() > 248)
                    area |= QRect(x, y, 1, 1);
        return area;
    }
    bool waitUntilFullyShown(int output = 0) {
        return DesktopSession::waitFor([&] { return cardArea(output).height() >= 40; });
    }
    bool waitUntilGone() {
        return DesktopSession::waitFor([&] { return !manager->isShowing() && changedArea().isNull(); });
    }
    std::unique_ptr<PaintedSurface> windowOverEverything() {
        PaintedSurface::Options options;
        options.size = sway.outputs.all().front()->logicalSize();
        options.picture = QImage(options.size, QImage::Format_RGB32);
        options.picture.fill(ground);
        options.title = QStringLiteral("beneath");
        auto window = std::make_unique<PaintedSurface>(sway.desktop.waylandDisplay(), options);
        EXPECT_TRUE(DesktopSession::waitFor(
            [&] { return sway.desktop.window(QStringLiteral("beneath")).has_value(); }));
        sway.desktop.place(*sway.desktop.window(QStringLiteral("beneath")), QRect(QPoint(), options.size));
        return window;
    }

    OnSway sway;
    FixedAppearance appearance;
    std::optional<WaylandToastPanels> panels;
    std::optional<ToastManager> manager;
    std::vector<QSize> edited;
    QStringList tokens;
};

class WaylandToastScaleTest : public WaylandToastTest, public testing::WithParamInterface<double> {
protected:
    WaylandToastScaleTest() : WaylandToastTest(OnSway::ofScale(GetParam(), {1290, 810})) {}
};

INSTANTIATE_TEST_SUITE_P(, WaylandToastScaleTest, testing::Values(1.0, 1.25, 1.5, 2.0), [](const auto& run) {
    return "scale" + std::to_string(int(std::lround(run.param * 100)));
});

TEST_P(WaylandToastScaleTest, itsPixelsAreTheScreensPixels) {
    const double ratio = GetParam();
    auto panel = panels->makePanel(sway.screens.screens().front(), true, std::make_unique<PatternContent>());
    panel->setAlpha(1);
    panel->orderFront();
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !changedArea().isNull(); }));
    const QImage seen = sway.desktop.settledScreenshot();
    const QSizeF panelSize = QSizeF(1290, 810) / ratio;
    const QImage expected = PatternContent::picture(ratio);
    // To the nearest pixel where X11 has it too.
    const QPoint origin = (PatternContent().bounds(panelSize).topLeft() * ratio).toPoint();
    int different = 0;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            different += seen.copy(QRect(origin + QPoint(dx, dy), expected.size())) !=
                         expected.convertToFormat(seen.format());
    EXPECT_EQ(different, 8) << "exactly one place has exactly these pixels";
}

TEST_P(WaylandToastScaleTest, itStandsAtTheBottomsMiddle) {
    const double ratio = GetParam();
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    const QRect card = cardArea();
    EXPECT_NEAR(card.center().x(), 1290 / 2.0, 2 * ratio);
    EXPECT_NEAR(810 - card.bottom(), 80 * ratio, 2 * ratio);
}

TEST_F(WaylandToastTest, itComesAndGoesByItself) {
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    EXPECT_TRUE(waitUntilGone());
}

TEST_F(WaylandToastTest, itFades) {
    showPlain();
    std::vector<int> lightness;
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        // In the card's upper half, above its words.
        const int now = sway.desktop.screenshot().pixelColor(640, 800 - 80 - 50).lightness();
        if (lightness.empty() || lightness.back() != now)
            lightness.push_back(now);
        return now > 248;
    }));
    EXPECT_TRUE(std::is_sorted(lightness.begin(), lightness.end()));
    EXPECT_GT(lightness.size(), 2u) << "no picture between nothing and all";
}

TEST_F(WaylandToastTest, onceItStandsNothingRuns) {
    manager.emplace(ToastServices{sway.queue, *panels, sway.screens, appearance, {}});
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    QTest::qWait(250);
    EXPECT_TRUE(sway.isQuietFor(500));
    EXPECT_TRUE(manager->isShowing());
}

TEST_F(WaylandToastTest, itStandsAboveAFullScreenWindowWhichKeepsTheFocus) {
    const auto window = windowOverEverything();
    sway.desktop.command(QStringLiteral("[title=beneath] fullscreen enable"));
    ASSERT_TRUE(
        DesktopSession::waitFor([&] { return sway.desktop.window(QStringLiteral("beneath"))->fullScreen; }));
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    EXPECT_TRUE(sway.desktop.window(QStringLiteral("beneath"))->focused);
}

TEST_F(WaylandToastTest, everyClickOnAPlainToastReachesWhatLiesBeneath) {
    const auto window = windowOverEverything();
    showPlain();
    ASSERT_TRUE(waitUntilFullyShown());
    sway.desktop.input().click(cardArea().center());
    EXPECT_TRUE(DesktopSession::waitFor([&] { return window->clicks().size() == 1; }));
    EXPECT_TRUE(manager->isShowing());
}

TEST_F(WaylandToastTest, anInteractiveToastTakesClicksOnItsCardOnly) {
    const auto window = windowOverEverything();
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    const QRect card = cardArea();
    std::size_t expected = 0;
    // Beside the card, in its shadow, and just outside its rounded corner.
    for (const QPoint point : {QPoint(100, 100), QPoint(card.left() - 10, card.center().y()), card.topLeft(),
                               QPoint(card.center().x(), card.bottom() + 8)}) {
        sway.desktop.input().click(point);
        ++expected;
        EXPECT_TRUE(DesktopSession::waitFor([&] { return window->clicks().size() == expected; }, 2000))
            << point.x() << ' ' << point.y();
    }
    EXPECT_TRUE(edited.empty());
    sway.desktop.input().click(card.center(), VirtualInput::Button::right);
    QTest::qWait(50);
    EXPECT_TRUE(edited.empty());
    sway.desktop.input().click(card.center());
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !edited.empty(); }));
    EXPECT_EQ(window->clicks().size(), expected);
    EXPECT_EQ(edited, std::vector<QSize>{QSize(800, 500)});
    ASSERT_EQ(tokens.size(), 1) << "what lets the editor come to the front";
    EXPECT_FALSE(tokens.front().isEmpty());
    EXPECT_TRUE(waitUntilGone());
}

TEST_F(WaylandToastTest, withdrawnItIsOffTheScreenUntilItIsRestored) {
    panels->withdraw(); // Nothing is there, and what comes later is not concerned.
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    panels->withdraw();
    EXPECT_TRUE(changedArea().isNull()) << "gone from the next picture of the screen on";
    panels->restore();
    EXPECT_TRUE(waitUntilFullyShown());
    EXPECT_TRUE(waitUntilGone());
}

TEST_F(WaylandToastTest, oneWhoseTimeEndsWhileItIsWithdrawnDoesNotComeBack) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    panels->withdraw();
    manager->dismiss();
    panels->restore();
    EXPECT_FALSE(DesktopSession::waitFor([&] { return !changedArea().isNull(); }, 200));
    EXPECT_TRUE(waitUntilGone());
}

TEST_F(WaylandToastTest, itFollowsTheScaleOfItsOutput) {
    sway.outputs.onTold([this](const WaylandOutput& output) { panels->outputChanged(output); });
    auto panel = panels->makePanel(sway.screens.screens().front(), true, std::make_unique<PatternContent>());
    panel->setAlpha(1);
    panel->orderFront();
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !changedArea().isNull(); }));
    const QSizeF pixels = sway.outputs.all().front()->pixelSize();
    sway.desktop.command(QStringLiteral("output HEADLESS-1 scale 2"));
    const QImage expected = PatternContent::picture(2);
    const QPoint origin = (PatternContent().bounds(pixels / 2).topLeft() * 2).toPoint();
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        const QImage seen = sway.desktop.screenshot(0);
        return seen.copy(QRect(origin, expected.size())) == expected.convertToFormat(seen.format());
    }));
    sway.outputs.onTold(nullptr);
}

TEST_F(WaylandToastTest, aToastThatReplacesAWithdrawnOneIsShownAtOnce) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    panels->withdraw();
    showPlain();
    EXPECT_TRUE(waitUntilFullyShown());
    panels->restore();
    EXPECT_TRUE(waitUntilGone());
}

TEST_F(WaylandToastTest, hoveringShowsTheEditActionAndAHand) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    QTest::qWait(250);
    const QImage resting = sway.desktop.settledScreenshot();
    const QRect card = cardArea();
    const auto tinted = [&] {
        const QImage now = sway.desktop.screenshot();
        int count = 0;
        for (int y = card.top(); y < card.bottom(); ++y)
            for (int x = card.left(); x < card.right(); ++x)
                count += now.pixelColor(x, y) == appearance.accent;
        return count;
    };
    const int before = tinted();
    const QPoint place(card.right() - 40, card.center().y());
    sway.desktop.input().moveTo(place);
    EXPECT_TRUE(DesktopSession::waitFor([&] { return tinted() > before + 300; }));
    // The desktop's own pointer is unseen here: what shows at the place is ours.
    const QImage hovered = sway.desktop.screenshot();
    int changed = 0;
    for (int y = -20; y < 20; ++y)
        for (int x = -16; x < 16; ++x)
            changed += hovered.pixelColor(place + QPoint(x, y)) !=
                       hovered.pixelColor(QPoint(card.right() - 40, card.top() + 6));
    EXPECT_GT(changed, 60);
    sway.desktop.input().moveTo({20, 20});
    EXPECT_TRUE(
        DesktopSession::waitFor([&] { return sway.desktop.screenshot().copy(card) == resting.copy(card); }));
}

class WaylandToastOnTwoOutputsTest : public WaylandToastTest {
protected:
    WaylandToastOnTwoOutputsTest() : WaylandToastTest(twoOutputs()) { sway.paintGround(1, ground); }

    static SwayOptions twoOutputs() {
        SwayOptions options = OnSway::ofScale(1);
        options.outputs.push_back(SwayOutput{{1600, 1000}, 2, {1280, 0}});
        return options;
    }
};

TEST_F(WaylandToastOnTwoOutputsTest, anotherScreensToastStandsThere) {
    FixedScreens second({sway.screens.screens().back()});
    sway.desktop.command(QStringLiteral("focus output HEADLESS-1"));
    manager.emplace(ToastServices{sway.queue, *panels, second, appearance, {}});
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown(1));
    EXPECT_TRUE(changedArea(0).isNull());
}

TEST_F(WaylandToastOnTwoOutputsTest, aScreenThatHasGoneGivesWayToAnother) {
    FixedScreens gone({Screen{QRect(9000, 0, 1920, 1080), 1, QStringLiteral("HEADLESS-7")}});
    sway.desktop.command(QStringLiteral("focus output HEADLESS-1"));
    manager.emplace(ToastServices{sway.queue, *panels, gone, appearance, {}});
    showPlain();
    EXPECT_TRUE(waitUntilFullyShown(0));
    EXPECT_NEAR(cardArea(0).center().x(), 640, 2) << "laid out for the screen that it is on";
}

TEST_F(WaylandToastOnTwoOutputsTest, theFirstScreensToastStandsWhereTheUserWorksAtThatOutputsScale) {
    sway.desktop.command(QStringLiteral("focus output HEADLESS-2"));
    auto panel = panels->makePanel(sway.screens.screens().front(), true, std::make_unique<PatternContent>());
    panel->setAlpha(1);
    panel->orderFront();
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !changedArea(1).isNull(); }));
    EXPECT_TRUE(changedArea(0).isNull());
    const QImage seen = sway.desktop.settledScreenshot(1);
    const QImage expected = PatternContent::picture(2);
    const QPoint origin = (PatternContent().bounds(QSizeF(800, 500)).topLeft() * 2).toPoint();
    EXPECT_EQ(seen.copy(QRect(origin, expected.size())), expected.convertToFormat(seen.format()));
}

TEST_F(WaylandToastTest, toastsLeaveNoDescriptorAndNoMemoryBehind) {
    showPlain();
    QTest::qWait(20);
    showInteractive();
    QTest::qWait(20);
    manager.emplace(ToastServices{sway.queue, *panels, sway.screens, appearance, {}});
    QTest::qWait(50);
    const auto own = QCoreApplication::applicationPid();
    const int descriptors = ChildProcess::openDescriptors(own);
    const qint64 memory = ChildProcess::residentKilobytes(own);
    for (int i = 0; i < 200; ++i) {
        if (i % 2)
            showInteractive();
        else
            showPlain();
        QTest::qWait(5);
    }
    manager->dismiss();
    ASSERT_TRUE(waitUntilGone());
    EXPECT_EQ(ChildProcess::openDescriptors(own), descriptors);
    EXPECT_LT(ChildProcess::residentKilobytes(own), memory + 6000);
}

TEST_F(WaylandToastTest, aCompositorThatDiesUnderAToastDoesNoHarm) {
    showInteractive();
    ASSERT_TRUE(waitUntilFullyShown());
    sway.endCompositor();
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !sway.connection.isValid(); }));
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !manager->isShowing(); }));
    showPlain();
    EXPECT_TRUE(manager->isShowing());
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !manager->isShowing(); })) << "it keeps its times";
}

} // namespace
} // namespace framora
