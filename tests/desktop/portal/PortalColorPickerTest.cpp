#include "platform/desktop/PortalColorPicker.h"

#include "desktop/portal/ScreenshotPortalDouble.h"
#include "desktop/support/VirtualDesktop.h"

#include <gtest/gtest.h>
#include <optional>

namespace framora {
namespace {

/// The real picker against a portal's double on a bus of their own.
class PortalColorPicking : public testing::Test {
public:
    PortalColorPicking() {
        DesktopOptions options;
        options.windowManager = WindowManager::none;
        desktop.emplace(options);
        picker.emplace([this](QWindow*) { return name; },
                       QDBusConnection::connectToBus(desktop->busAddress(), QStringLiteral("picking")));
    }
    ~PortalColorPicking() override {
        picker.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("picking"));
    }
    ScreenshotPortalDouble& startPortal() {
        portal.emplace(desktop->busAddress());
        return *portal;
    }
    bool isAvailable() {
        std::optional<bool> answer;
        picker->queryAvailable([&](bool available) { answer = available; });
        EXPECT_FALSE(answer) << "never inside the call";
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return answer.has_value(); }));
        return answer.value_or(false);
    }
    void pick() {
        picker->pick(
            nullptr,
            [this](std::optional<QColor> color) {
                ++answers;
                picked = color;
            },
            [this] { ++failures; });
    }
    bool waitForCall() {
        return VirtualDesktop::waitFor([&] { return !portal->calls.empty(); });
    }
    bool waitForAnswer() {
        return VirtualDesktop::waitFor([&] { return answers > 0; });
    }
    bool waitForFailure() {
        return VirtualDesktop::waitFor([&] { return failures > 0; });
    }

    std::optional<VirtualDesktop> desktop;
    std::optional<ScreenshotPortalDouble> portal;
    std::optional<PortalColorPicker> picker;
    PortalWindowName name = std::make_shared<const QString>(QStringLiteral("x11:1f"));
    std::optional<QColor> picked;
    int answers = 0;
    int failures = 0;
};

TEST_F(PortalColorPicking, IsThereWhereThePortalCanPick) {
    EXPECT_FALSE(isAvailable()) << "there is no portal";
    startPortal();
    EXPECT_TRUE(isAvailable());
    portal->version = 1;
    EXPECT_FALSE(isAvailable());
    portal->hasScreenshots = false;
    EXPECT_FALSE(isAvailable());
}

TEST_F(PortalColorPicking, TellsTheColourThatTheUserPointsAt) {
    startPortal();
    pick();
    ASSERT_TRUE(waitForCall());
    EXPECT_EQ(portal->calls[0].method, QStringLiteral("PickColor"));
    EXPECT_EQ(portal->calls[0].parentWindow, QStringLiteral("x11:1f"));
    EXPECT_EQ(answers, 0);
    portal->respond({ScreenshotPortalDouble::Code::done, {}, QColor(12, 200, 255)});
    ASSERT_TRUE(waitForAnswer());
    ASSERT_TRUE(picked);
    EXPECT_EQ(picked->rgb(), QColor(12, 200, 255).rgb());
}

TEST_F(PortalColorPicking, HearsAPortalThatChoosesItsOwnPaths) {
    startPortal().predictableHandles = false;
    pick();
    ASSERT_TRUE(waitForCall());
    // Such an answer is heard once the reply has named its path, as this question's answer comes behind it.
    EXPECT_TRUE(isAvailable());
    portal->respond({ScreenshotPortalDouble::Code::done, {}, QColor(1, 2, 3)});
    ASSERT_TRUE(waitForAnswer());
    ASSERT_TRUE(picked);
    EXPECT_EQ(picked->rgb(), QColor(1, 2, 3).rgb());
}

TEST_F(PortalColorPicking, TellsNothingWhereNothingWasPicked) {
    startPortal();
    // Some desktops say `other` of a plain Escape.
    for (const auto code : {ScreenshotPortalDouble::Code::cancelled, ScreenshotPortalDouble::Code::other}) {
        answers = 0;
        portal->immediate = {code, {}};
        pick();
        ASSERT_TRUE(waitForAnswer());
        EXPECT_FALSE(picked);
        EXPECT_EQ(failures, 0);
    }
}

TEST_F(PortalColorPicking, TellsThatThereIsNoColourInTheAnswer) {
    startPortal();
    portal->immediate = {ScreenshotPortalDouble::Code::done, QStringLiteral("file:///no-color")};
    pick();
    ASSERT_TRUE(waitForFailure());
    EXPECT_EQ(answers, 0);
}

TEST_F(PortalColorPicking, TellsThatThePortalIsGone) {
    pick();
    ASSERT_TRUE(waitForFailure()) << "there is no portal";
    failures = 0;
    startPortal();
    pick();
    ASSERT_TRUE(waitForCall());
    portal->vanish();
    ASSERT_TRUE(waitForFailure());
    EXPECT_EQ(answers, 0);
}

TEST_F(PortalColorPicking, AnswersNobodyOnceItIsCancelled) {
    startPortal();
    pick();
    ASSERT_TRUE(waitForCall());
    picker->cancel();
    portal->respond({ScreenshotPortalDouble::Code::done, {}, QColor(1, 2, 3)});
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return answers > 0; }, 200));
    EXPECT_TRUE(portal->calls[0].closed) << "the desktop's own picking ends as well";
}

TEST_F(PortalColorPicking, ClosesWhatIsCancelledBeforeThePortalHasReplied) {
    startPortal().predictableHandles = false;
    pick();
    picker->cancel();
    ASSERT_TRUE(waitForCall());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return portal->calls[0].closed; }));
    EXPECT_EQ(answers, 0);
}

TEST_F(PortalColorPicking, DismissedItClosesAndAnswersNothing) {
    startPortal();
    pick();
    ASSERT_TRUE(waitForCall());
    picker->dismiss();
    EXPECT_EQ(answers, 0) << "never inside the call";
    ASSERT_TRUE(waitForAnswer());
    EXPECT_FALSE(picked);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return portal->calls[0].closed; }));
}

TEST_F(PortalColorPicking, AnotherPickEndsTheOneUnderWay) {
    startPortal();
    pick();
    ASSERT_TRUE(waitForCall());
    pick();
    EXPECT_EQ(answers, 0) << "never inside the call";
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return portal->calls.size() == 2; }));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return portal->calls[0].closed; }));
    ASSERT_TRUE(waitForAnswer());
    EXPECT_FALSE(picked);
    portal->respond({ScreenshotPortalDouble::Code::done, {}, QColor(1, 2, 3)});
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return answers == 2; }));
    EXPECT_EQ(picked->rgb(), QColor(1, 2, 3).rgb());
    EXPECT_FALSE(portal->calls[1].closed);
}

TEST_F(PortalColorPicking, AnAnswerOnItsWayIsDroppedOnceItIsCancelled) {
    startPortal();
    pick();
    ASSERT_TRUE(waitForCall());
    picker->dismiss();
    picker->cancel();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return answers > 0; }, 200));
}

} // namespace
} // namespace framora
