// Compositors that refuse, fall silent, take things back or die.

#include "desktop/support/ScriptedClipboard.h"
#include "desktop/support/ScriptedSeat.h"
#include "desktop/wayland/odd/OddCapture.h"

#include <csignal>
#include <fcntl.h>
#include <linux/input-event-codes.h>
#include <unistd.h>

namespace framora {
namespace {

TEST(OddCompositorTest, oneThatNeverAnswersEndsItSoonAndXIsNotTakenInstead) {
    OddCapture odd;
    odd.compositor.setEnvironmentVariable(QStringLiteral("DISPLAY"), QStringLiteral(":4242"));
    odd.compositor.freeze();
    odd.launch();
    EXPECT_TRUE(odd.endsWith(3, "does not answer", 5000));
    EXPECT_FALSE(odd.descriptors.isReady());
    odd.compositor.thaw();
}

TEST(OddCompositorTest, oneThatFallsSilentWhileItCopiesEndsIt) {
    CompositorScript script;
    OddCapture* capture = nullptr;
    script.outputs[0].copy.asked = [&] { capture->compositor.freeze(); };
    OddCapture odd(script);
    capture = &odd;
    odd.launch();
    EXPECT_TRUE(odd.endsWith(3, "", 9000));
    EXPECT_FALSE(odd.descriptors.isReady());
    odd.compositor.thaw();
}

TEST(OddCompositorTest, itEndsWithTheCompositorWheneverThatDies) {
    {
        OddCapture odd;
        ASSERT_TRUE(odd.open());
        odd.compositor.die();
        EXPECT_TRUE(odd.endsWith(3, "the compositor is gone", 5000));
    }
    {
        OddCapture odd;
        ASSERT_TRUE(odd.open());
        odd.compositor.pointTo({20, 20});
        odd.compositor.press(BTN_LEFT);
        odd.compositor.pointTo({60, 70});
        odd.compositor.die();
        EXPECT_TRUE(odd.endsWith(3, "the compositor is gone", 5000));
    }
    {
        CompositorScript script;
        OddCapture* capture = nullptr;
        script.outputs[0].copy.asked = [&] {
            capture->compositor.perform([](ScriptedPieces& pieces) {
                wl_client* client = nullptr;
                wl_list* const clients = wl_display_get_client_list(pieces.display);
                wl_client_for_each(client, clients) wl_client_post_no_memory(client);
            });
        };
        OddCapture odd(script);
        capture = &odd;
        odd.launch();
        EXPECT_TRUE(odd.endsWith(3, "the compositor is gone", 5000));
        EXPECT_FALSE(odd.descriptors.isReady());
    }
}

TEST(OddCompositorTest, toldToEndOnceTheUserHasChosenTheToolKeepsThePicture) {
    CompositorScript script;
    script.outputs[0].mode = {3840, 2160};
    OddCapture odd(script);
    // On a busy machine a tool may be done before it is told.
    bool isTold = false;
    for (int attempt = 0; attempt < 5 && !isTold; ++attempt) {
        ChildProcess* const tool = odd.open();
        ASSERT_TRUE(tool);
        odd.drag({0, 0}, {3840, 2160});
        // The overlay goes first, then the picture is encoded.
        ASSERT_TRUE(DesktopSession::waitFor([&] { return !odd.overlayOn(QStringLiteral("ONE")); }));
        isTold = tool->isRunning();
        if (isTold)
            ::kill(static_cast<pid_t>(tool->pid()), SIGTERM);
        EXPECT_TRUE(odd.endsWith(0));
        EXPECT_TRUE(samePixels(odd.clipboard(), odd.compositor.picture()));
    }
    EXPECT_TRUE(isTold);
}

TEST(OddCompositorTest, aSocketThatNobodyListensAtIsNoSession) {
    OddCapture odd;
    odd.compositor.die();
    odd.launch();
    EXPECT_TRUE(odd.endsWith(3, "", 5000));
}

TEST(OddLayersTest, oneThatClosesTheOverlayAtOnceCancels) {
    CompositorScript script;
    script.closeSurfaces = true;
    OddCapture odd(script);
    odd.launch();
    EXPECT_TRUE(odd.isCancelled());
    EXPECT_FALSE(odd.descriptors.isReady());
}

TEST(OddLayersTest, oneThatNeverGivesTheOverlayASizeIsNoRoute) {
    CompositorScript script;
    script.configure.reset();
    OddCapture odd(script);
    odd.launch();
    EXPECT_TRUE(odd.endsWith(3, "", 5000));
    EXPECT_FALSE(odd.descriptors.isReady());
}

TEST(OddLayersTest, noSizeMeansTheOutputs) {
    CompositorScript script;
    script.configure = QSize(0, 0);
    OddCapture odd(script);
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
}

TEST(OddLayersTest, sizesThatAreNotTheOutputsDoNoHarm) {
    for (const QSize size : {QSize(1, 1), QSize(320, 180), QSize(5000, 4000), QSize(-1, -1)}) {
        CompositorScript script;
        script.configure = size;
        OddCapture odd(script);
        if (odd.open()) {
            odd.compositor.pointTo({0, 0});
            odd.compositor.key(KEY_ESC);
            EXPECT_TRUE(odd.isCancelled()) << size.width();
        } else {
            EXPECT_TRUE(odd.endsWith(3)) << size.width();
        }
    }
}

TEST(OddSeatTest, devicesThatComeBackWorkAgain) {
    const auto replugged = [](OddCapture& odd) {
        ASSERT_TRUE(odd.open());
        odd.compositor.pointTo({30, 30});
        odd.compositor.setCapabilities(0);
        odd.compositor.setCapabilities(CompositorScript::Pointer | CompositorScript::Keyboard);
        // The tool has asked for the new ones.
        ASSERT_TRUE(DesktopSession::waitFor([&] {
            return odd.compositor.ask<bool>([](ScriptedPieces& pieces) { return pieces.seat->isHeard(); });
        }));
    };
    {
        OddCapture odd;
        replugged(odd);
        odd.compositor.key(KEY_ESC);
        EXPECT_TRUE(odd.isCancelled());
    }
    {
        OddCapture odd;
        replugged(odd);
        EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
    }
}

TEST(OddSeatTest, aDeviceThatComesLateWorks) {
    CompositorScript script;
    script.capabilities = CompositorScript::Pointer;
    OddCapture odd(script);
    ASSERT_TRUE(odd.open());
    odd.compositor.setCapabilities(CompositorScript::Pointer | CompositorScript::Keyboard);
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        return odd.compositor.ask<bool>([](ScriptedPieces& pieces) { return pieces.seat->isHeard(); });
    }));
    odd.compositor.key(KEY_ESC);
    EXPECT_TRUE(odd.isCancelled());
}

TEST(OddSeatTest, aSessionWithoutAnyDeviceGetsNoOverlayThatNobodyCouldLeave) {
    CompositorScript script;
    script.capabilities = 0;
    OddCapture odd(script);
    odd.launch();
    EXPECT_TRUE(odd.endsWith(3, "", 5000));
    EXPECT_FALSE(odd.descriptors.isReady());
    EXPECT_EQ(odd.compositor.copiesAsked(), 0);
}

TEST(OddSeatTest, aPointerThatComesBackInADragGoesOnWithIt) {
    OddCapture odd;
    ASSERT_TRUE(odd.open());
    odd.compositor.pointTo({10, 20});
    odd.compositor.press(BTN_LEFT);
    odd.compositor.pointTo({60, 60});
    odd.compositor.setCapabilities(CompositorScript::Keyboard);
    odd.compositor.setCapabilities(CompositorScript::Pointer | CompositorScript::Keyboard);
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        return odd.compositor.ask<bool>([](ScriptedPieces& pieces) { return pieces.seat->isHeard(); });
    }));
    odd.compositor.pointTo({110, 80});
    odd.compositor.press(BTN_LEFT);
    odd.compositor.release(BTN_LEFT);
    EXPECT_TRUE(odd.endsWith(0));
    EXPECT_TRUE(samePixels(odd.clipboard(), odd.compositor.picture().copy(10, 20, 100, 60)));
}

TEST(OddSeatTest, aPointerThatGoesInADragLeavesTheKeyboardToCancel) {
    OddCapture odd;
    ASSERT_TRUE(odd.open());
    odd.compositor.pointTo({30, 30});
    odd.compositor.press(BTN_LEFT);
    odd.compositor.pointTo({60, 60});
    odd.compositor.setCapabilities(CompositorScript::Keyboard);
    odd.compositor.key(KEY_ESC);
    EXPECT_TRUE(odd.isCancelled());
}

TEST(OddSeatTest, aKeymapThatIsNoneStillKnowsEscape) {
    for (const QByteArray& keymap : {QByteArray("x"), QByteArray(100000, '{'), QByteArray("xkb_keymap {")}) {
        CompositorScript script;
        script.keymap = keymap;
        OddCapture odd(script);
        ASSERT_TRUE(odd.open());
        odd.compositor.key(KEY_ESC);
        EXPECT_TRUE(odd.isCancelled());
    }
}

TEST(OddClipboardTest, withoutOneThePictureIsHandedToTheProgram) {
    enum Refusal { Missing, Finished, Cancelled };
    for (const Refusal refusal : {Missing, Finished, Cancelled}) {
        CompositorScript script;
        script.wlrDataControl = refusal == Missing ? 0 : 2;
        script.finishDevices = refusal == Finished;
        script.cancelSources = refusal == Cancelled;
        OddCapture odd(script);
        ASSERT_TRUE(odd.open());
        odd.drag({10, 20}, {110, 80});
        EXPECT_TRUE(odd.endsWith(0)) << refusal;
        EXPECT_TRUE(samePixels(QImage::fromData(odd.descriptors.handedPicture()),
                               odd.compositor.picture().copy(10, 20, 100, 60)))
            << refusal;
    }
}

TEST(OddClipboardTest, theNewerProtocolIsSpokenWhereBothAre) {
    CompositorScript script;
    script.extDataControl = 1;
    OddCapture odd(script);
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
}

TEST(OddClipboardTest, aReaderThatStallsKeepsNobodyElseFromReading) {
    OddCapture odd;
    ASSERT_TRUE(odd.open());
    const QImage all = odd.compositor.picture();
    EXPECT_TRUE(odd.takes(all.rect(), all)); // more than a pipe holds
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    odd.compositor.perform([&](ScriptedPieces& pieces) { pieces.clipboard->receive("image/png", ends[1]); });
    EXPECT_TRUE(samePixels(odd.clipboard(), all));
    EXPECT_TRUE(samePixels(odd.clipboard(), all));
    close(ends[0]);
}

TEST(OddClipboardTest, aTypeThatWasNeverOfferedIsAnsweredWithNothing) {
    OddCapture odd;
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
    for (const QByteArray& type : {QByteArray(), QByteArray("image/jpeg"), QByteArray(3000, 'x')}) {
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        odd.compositor.perform([&](ScriptedPieces& pieces) { pieces.clipboard->receive(type, ends[1]); });
        char byte = 0;
        EXPECT_EQ(read(ends[0], &byte, 1), 0);
        close(ends[0]);
    }
    EXPECT_TRUE(samePixels(odd.clipboard(), odd.compositor.picture().copy(10, 20, 100, 60)));
}

TEST(OddClipboardTest, theProcessThatServesItEndsWithTheCompositor) {
    OddCapture odd;
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
    odd.compositor.die();
    EXPECT_EQ(odd.compositor.leftovers(), QStringList());
}

} // namespace
} // namespace framora
