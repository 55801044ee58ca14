#include "feedback/ToastManager.h"

#include "support/FixedAppearance.h"
#include "support/FixedScreens.h"
#include "support/ManualMainQueue.h"
#include "support/RecordingToastPanels.h"

#include "feedback/InteractiveToastView.h"
#include "feedback/ToastView.h"

#include <gmock/gmock.h>
#include <optional>

namespace framora {
namespace {

using testing::ElementsAre;

class ToastManagerTest : public testing::Test {
protected:
    void openEditor(const QImage& image) { panels.log.push_back("edit " + std::to_string(image.width())); }

    ManualMainQueue queue;
    RecordingToastPanels panels{queue};
    FixedScreens screens;
    FixedAppearance appearance;
    std::optional<ToastManager> manager{
        std::in_place,
        ToastServices{queue, panels, screens, appearance, [this](const QImage& i) { openEditor(i); }}};
    const QImage picture{320, 200, QImage::Format_RGB32};
};

TEST_F(ToastManagerTest, aPlainToastFadesInStaysAndFadesOut) {
    manager->show(QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"), true);
    EXPECT_THAT(panels.log,
                ElementsAre("1 make plain", "1 alpha 0", "1 front", "1 animate 1 in 0.2 ease-out"));
    panels.log.clear();
    queue.advance(1.79);
    EXPECT_THAT(panels.log, ElementsAre());
    EXPECT_EQ(panels.front()->alpha, 1);
    queue.advance(0.02);
    EXPECT_THAT(panels.log, ElementsAre("1 animate 0 in 0.3 ease-in"));
    EXPECT_TRUE(manager->isShowing());
    queue.advance(0.31);
    EXPECT_THAT(panels.log, ElementsAre("1 animate 0 in 0.3 ease-in", "1 close"));
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(queue.waitingCount(), 0u);
}

TEST_F(ToastManagerTest, anInteractiveToastStaysThreeSeconds) {
    manager->showInteractive(QStringLiteral("Copied"), QStringLiteral("macwindow"), picture);
    EXPECT_EQ(panels.log.front(), "1 make interactive");
    panels.log.clear();
    queue.advance(2.99);
    EXPECT_THAT(panels.log, ElementsAre());
    queue.advance(0.02);
    EXPECT_THAT(panels.log, ElementsAre("1 animate 0 in 0.3 ease-in"));
    queue.advance(0.3);
    EXPECT_TRUE(panels.open().empty());
}

TEST_F(ToastManagerTest, aPlainToastLetsClicksThroughAndAnInteractiveOneTakesThem) {
    manager->show(QStringLiteral("a"), QStringLiteral("photo"), true);
    EXPECT_TRUE(panels.front()->ignoresMouse);
    manager->showInteractive(QStringLiteral("b"), QStringLiteral("photo"), picture);
    EXPECT_FALSE(panels.front()->ignoresMouse);
}

TEST_F(ToastManagerTest, thePanelHasTheWholeFrameOfTheMainScreen) {
    const Screen main{QRect(1920, 300, 2560, 1440), 1.5};
    screens.list = {main, Screen{QRect(0, 0, 1920, 1080), 1}};
    manager->show(QStringLiteral("a"), QStringLiteral("photo"), true);
    EXPECT_EQ(panels.front()->screen, main);
}

TEST_F(ToastManagerTest, itStandsOnTheScreenThatTheUserIsAt) {
    screens.list = {Screen{QRect(0, 0, 800, 600), 1}, Screen{QRect(800, 0, 800, 600), 2}};
    screens.inUse = 1;
    manager->show(QStringLiteral("Copied"), QStringLiteral("photo"), true);
    EXPECT_EQ(panels.front()->screen, screens.list[1]);
}

TEST_F(ToastManagerTest, theSecondToastReplacesTheFirstAtOnce) {
    manager->show(QStringLiteral("first"), QStringLiteral("photo"), true);
    queue.advance(1.0);
    panels.log.clear();
    manager->show(QStringLiteral("second"), QStringLiteral("photo"), true);
    EXPECT_THAT(panels.log, ElementsAre("1 close", "2 make plain", "2 alpha 0", "2 front",
                                        "2 animate 1 in 0.2 ease-out"));
    EXPECT_EQ(panels.open().size(), 1u);
}

TEST_F(ToastManagerTest, theReplacedToastsTimerNeverClosesTheSecond) {
    manager->show(QStringLiteral("first"), QStringLiteral("photo"), true);
    queue.advance(1.0);
    manager->show(QStringLiteral("second"), QStringLiteral("photo"), true);
    panels.log.clear();
    queue.advance(1.7); // The first would have gone 0.9 seconds ago.
    EXPECT_THAT(panels.log, ElementsAre());
    queue.advance(0.11);
    EXPECT_THAT(panels.log, ElementsAre("2 animate 0 in 0.3 ease-in"));
}

TEST_F(ToastManagerTest, aToastThatFadesOutIsReplacedToo) {
    manager->show(QStringLiteral("first"), QStringLiteral("photo"), true);
    queue.advance(1.9);
    panels.log.clear();
    manager->showInteractive(QStringLiteral("second"), QStringLiteral("photo"), picture);
    EXPECT_EQ(panels.log.front(), "1 close");
    queue.advance(2.0); // The first one's fade would have ended here.
    EXPECT_EQ(panels.open().size(), 1u);
}

TEST_F(ToastManagerTest, dismissingTwiceOrWithoutAToastIsHarmless) {
    manager->dismiss();
    EXPECT_TRUE(panels.log.empty());
    manager->show(QStringLiteral("a"), QStringLiteral("photo"), true);
    manager->dismiss();
    manager->dismiss();
    queue.advance(0.31);
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(queue.waitingCount(), 0u);
    manager->dismiss();
}

TEST_F(ToastManagerTest, anEarlyDismissalCancelsTheTimer) {
    manager->show(QStringLiteral("a"), QStringLiteral("photo"), true);
    queue.advance(0.5);
    manager->dismiss();
    EXPECT_EQ(queue.waitingCount(), 1u) << "only the fade may wait";
}

TEST_F(ToastManagerTest, choosingEditDismissesAndThenOpensTheImage) {
    manager->showInteractive(QStringLiteral("a"), QStringLiteral("photo"), picture);
    queue.advance(1.0);
    panels.log.clear();
    panels.front()->content->press({0, 0});
    EXPECT_THAT(panels.log, ElementsAre("1 animate 0 in 0.3 ease-in", "edit 320"));
    queue.advance(0.31);
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(queue.waitingCount(), 0u);
}

TEST_F(ToastManagerTest, aToastEditsOnlyOnceHoweverOftenItIsClicked) {
    manager->showInteractive(QStringLiteral("a"), QStringLiteral("photo"), picture);
    panels.front()->content->press({0, 0});
    panels.front()->content->press({0, 0});
    EXPECT_EQ(std::count(panels.log.begin(), panels.log.end(), "edit 320"), 1);
}

TEST_F(ToastManagerTest, editStillOpensTheImageWhenTheManagerHasGone) {
    manager->showInteractive(QStringLiteral("a"), QStringLiteral("photo"), picture);
    auto& view = dynamic_cast<InteractiveToastView&>(*panels.front()->content);
    const auto edit = view.onEdit;
    manager.reset();
    panels.log.clear();
    edit();
    EXPECT_THAT(panels.log, ElementsAre("edit 320"));
}

TEST_F(ToastManagerTest, theEditorMayShowAToastOfTheSameManager) {
    manager.emplace(ToastServices{queue, panels, screens, appearance, [this](const QImage&) {
                                      manager->show(QStringLiteral("again"), QStringLiteral("photo"), true);
                                  }});
    manager->showInteractive(QStringLiteral("a"), QStringLiteral("photo"), picture);
    panels.front()->content->press({0, 0});
    ASSERT_EQ(panels.open().size(), 1u);
    EXPECT_TRUE(panels.front()->ignoresMouse);
}

TEST_F(ToastManagerTest, theImageIsDroppedWithTheToast) {
    bool dropped = false;
    QImage tracked = [&] {
        static std::vector<uchar> bytes(std::size_t(640 * 400 * 4));
        return QImage(
            bytes.data(), 640, 400, QImage::Format_RGB32,
            [](void* flag) { *static_cast<bool*>(flag) = true; }, &dropped);
    }();
    manager->showInteractive(QStringLiteral("a"), QStringLiteral("photo"), tracked);
    tracked = {};
    queue.advance(3.2);
    EXPECT_FALSE(dropped);
    queue.advance(0.2);
    EXPECT_TRUE(dropped);
}

TEST_F(ToastManagerTest, destroyingTheManagerClosesItsToastAndLeavesNoTimer) {
    manager->show(QStringLiteral("a"), QStringLiteral("photo"), true);
    manager.reset();
    EXPECT_TRUE(panels.open().empty());
    EXPECT_EQ(queue.waitingCount(), 0u);
    queue.advance(5);
}

TEST_F(ToastManagerTest, manyToastsLeaveNothingBehind) {
    for (int i = 0; i < 1000; ++i) {
        manager->showInteractive(QStringLiteral("a"), QStringLiteral("photo"), picture);
        queue.advance(i % 7 * 0.1);
    }
    queue.advance(4);
    EXPECT_TRUE(panels.open().empty());
    EXPECT_EQ(queue.waitingCount(), 0u);
}

TEST_F(ToastManagerTest, theViewGetsWhatTheCallerSaid) {
    manager->show(QStringLiteral("It failed"), QStringLiteral("xmark.circle.fill"), false);
    const auto& view = dynamic_cast<ToastView&>(*panels.front()->content);
    EXPECT_EQ(view.message, QStringLiteral("It failed"));
    EXPECT_EQ(view.icon, QStringLiteral("xmark.circle.fill"));
    EXPECT_FALSE(view.success);
}

using ToastManagerDeathTest = ToastManagerTest;

TEST_F(ToastManagerDeathTest, aToastWithoutAnyScreenStopsTheProcess) {
    screens.list.clear();
    EXPECT_DEATH(manager->show(QStringLiteral("a"), QStringLiteral("photo"), true), "screen");
}

} // namespace
} // namespace framora
