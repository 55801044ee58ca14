#include "AppFixture.h"

#include "platform/Localized.h"

namespace framora {
namespace {

class CaptureFlowTest : public AppTest {
protected:
    void run(const CaptureFlowRow& row) {
        runCaptureFlow(row, {pasteboard, captureTool, defaults, sounds, toasts});
    }
    void letTheUserTakeAPicture() {
        captureTool.whileOpen = [this] {
            pasteboard.image = picture();
            ++pasteboard.count;
        };
    }
    static std::string text(const char* key) { return localized(QString::fromLatin1(key)).toStdString(); }

    ToastManager toasts{services().toasts};
};

TEST_F(CaptureFlowTest, anAreaIsCapturedAnnouncedAndShown) {
    letTheUserTakeAPicture();
    run(CaptureFlowRow::area());
    EXPECT_EQ(log,
              (PlatformLog{"change count", "launch -i -c -x", "wait", "change count", "play Frog.aiff 0.5",
                           "read image", "picture toast '" + text("copied") + "' doc.on.clipboard.fill"}));
}

TEST_F(CaptureFlowTest, aWindowIsCapturedAnnouncedAndShown) {
    letTheUserTakeAPicture();
    run(CaptureFlowRow::window());
    EXPECT_EQ(log,
              (PlatformLog{"change count", "launch -w -c -x", "wait", "change count", "play Frog.aiff 0.5",
                           "read image", "picture toast '" + text("window.captured") + "' macwindow"}));
}

TEST_F(CaptureFlowTest, theTextsOfTheToastsAreInTheTable) {
    for (const char* key : {"copied", "window.captured", "error"})
        EXPECT_NE(text(key), key);
}

TEST_F(CaptureFlowTest, aToolThatCannotBeLaunchedIsAFailureWithoutSound) {
    captureTool.canLaunch = false;
    for (const auto* row : {&CaptureFlowRow::area(), &CaptureFlowRow::window()}) {
        run(*row);
        EXPECT_EQ(takeLog(),
                  (PlatformLog{"change count", "launch " + row->toolArguments.join(' ').toStdString(),
                               "toast '" + text("error") + "' xmark.circle.fill failure"}));
    }
}

TEST_F(CaptureFlowTest, aCancelledSelectionEndsSilently) {
    pasteboard.image = picture();
    run(CaptureFlowRow::area());
    EXPECT_EQ(log, (PlatformLog{"change count", "launch -i -c -x", "wait", "change count"}));
    EXPECT_FALSE(toasts.isShowing());
}

TEST_F(CaptureFlowTest, aPasteboardWithoutAPictureIsASuccessAllTheSame) {
    captureTool.whileOpen = [this] { ++pasteboard.count; };
    run(CaptureFlowRow::window());
    EXPECT_EQ(log,
              (PlatformLog{"change count", "launch -w -c -x", "wait", "change count", "play Frog.aiff 0.5",
                           "read image", "toast '" + text("window.captured") + "' macwindow success"}));
}

TEST_F(CaptureFlowTest, whateverAnotherProgramCopiedMeanwhileIsShown) {
    pasteboard.image = picture();
    captureTool.whileOpen = [this] { pasteboard.count += 3; };
    run(CaptureFlowRow::area());
    ASSERT_TRUE(toastPanels.front);
    EXPECT_TRUE(dynamic_cast<InteractiveToastView*>(toastPanels.front));
}

TEST_F(CaptureFlowTest, withSoundOffTheToastComesUnheard) {
    Settings settings;
    settings.soundEffectsEnabled = false;
    store(settings);
    letTheUserTakeAPicture();
    run(CaptureFlowRow::area());
    EXPECT_EQ(log, (PlatformLog{"change count", "launch -i -c -x", "wait", "change count", "read image",
                                "picture toast '" + text("copied") + "' doc.on.clipboard.fill"}));
}

TEST_F(CaptureFlowTest, theSoundIsTheOneStoredWhenTheToolHasExited) {
    letTheUserTakeAPicture();
    const auto take = captureTool.whileOpen;
    captureTool.whileOpen = [this, take] {
        take();
        Settings settings;
        settings.captureSound = CaptureSound::hero;
        settings.soundEffectsVolume = 0.25;
        store(settings);
    };
    run(CaptureFlowRow::area());
    EXPECT_EQ(log.at(4), "play Hero.aiff 0.25");
}

TEST_F(CaptureFlowTest, copyToClipboardIsNotConsulted) {
    Settings settings;
    settings.copyToClipboard = false;
    store(settings);
    letTheUserTakeAPicture();
    run(CaptureFlowRow::area());
    EXPECT_EQ(log.at(1), "launch -i -c -x");
    EXPECT_EQ(log.back(), "picture toast '" + text("copied") + "' doc.on.clipboard.fill");
}

TEST_F(CaptureFlowTest, theToastOpensTheEditorWithItsPicture) {
    letTheUserTakeAPicture();
    run(CaptureFlowRow::area());
    ASSERT_TRUE(toastPanels.front);
    const QSizeF panel(1920, 1080);
    toastPanels.front->press(toastPanels.front->cardRect(panel).center());
    EXPECT_EQ(log.back(), "edit");
    EXPECT_EQ(edited, picture());
}

TEST_F(CaptureFlowTest, runsStandAlone) {
    letTheUserTakeAPicture();
    run(CaptureFlowRow::area());
    captureTool.whileOpen = nullptr;
    takeLog();
    run(CaptureFlowRow::area());
    EXPECT_EQ(log, (PlatformLog{"change count", "launch -i -c -x", "wait", "change count"}));
}

} // namespace
} // namespace framora
