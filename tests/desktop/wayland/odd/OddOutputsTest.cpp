// Outputs that are described, copied, changed and removed in ways that real ones rarely are.

#include "desktop/wayland/odd/OddCapture.h"

#include <linux/input-event-codes.h>
#include <wayland-client-protocol.h>

namespace framora {
namespace {

using Ending = CopyAnswer::Ending;

/// Longer than every limit of the tool, shorter than two of them together.
constexpr int patience = 5000;

CompositorScript scriptOf(const CopyAnswer& copy) {
    CompositorScript script;
    script.outputs[0].copy = copy;
    return script;
}

ScriptedOutput another() {
    ScriptedOutput output;
    output.name = QStringLiteral("SECOND");
    output.mode = {200, 150};
    output.position = {320, 0};
    return output;
}

CompositorScript twoOutputs() {
    CompositorScript script;
    script.outputs.push_back(another());
    return script;
}

const QStringList both{QStringLiteral("ONE"), QStringLiteral("SECOND")};

TEST(OddOutputsTest, aCaptureWorksHereAtAll) {
    OddCapture odd;
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
}

TEST(OddOutputsTest, everyMissingGlobalEndsItAtOnceWithOneLine) {
    for (int CompositorScript::*version :
         {&CompositorScript::compositor, &CompositorScript::layerShell, &CompositorScript::screencopy,
          &CompositorScript::seat, &CompositorScript::output}) {
        CompositorScript script;
        script.*version = 0;
        OddCapture odd(script);
        odd.launch();
        EXPECT_TRUE(odd.endsWith(3, "", 5000));
        EXPECT_FALSE(odd.descriptors.isReady());
        EXPECT_EQ(odd.compositor.copiesAsked(), 0);
    }
}

TEST(OddOutputsTest, oldVersionsOfWhatIsNeededAreEnough) {
    for (const auto& [member, version] : {std::pair{&CompositorScript::layerShell, 1},
                                          {&CompositorScript::screencopy, 1},
                                          {&CompositorScript::compositor, 3},
                                          {&CompositorScript::seat, 1},
                                          {&CompositorScript::seat, 3},
                                          {&CompositorScript::output, 1},
                                          {&CompositorScript::output, 2},
                                          {&CompositorScript::xdgOutput, 0},
                                          {&CompositorScript::xdgOutput, 1},
                                          {&CompositorScript::viewporter, 0}}) {
        CompositorScript script;
        script.*member = version;
        OddCapture odd(script);
        ASSERT_TRUE(odd.open()) << version;
        EXPECT_TRUE(odd.takes({5, 6, 70, 80}, odd.compositor.picture().copy(5, 6, 70, 80)));
    }
}

TEST(OddOutputsTest, anOutputOfTwoPixelsAPointNeedsNoViewport) {
    CompositorScript script;
    script.viewporter = 0;
    script.outputs[0].scale = 2;
    OddCapture odd(script);
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({5, 10, 50, 30}, odd.compositor.picture().copy(10, 20, 100, 60)));
}

TEST(OddOutputsTest, aSessionWithoutAnOutputHasNothingToTake) {
    CompositorScript script;
    script.outputs.clear();
    OddCapture odd(script);
    odd.launch();
    EXPECT_TRUE(odd.endsWith(3, "no output", 5000));
}

TEST(OddOutputsTest, outputsOfNoSizeAreLeftOut) {
    CompositorScript script = twoOutputs();
    script.outputs[0].mode = {0, 0};
    OddCapture odd(script);
    ASSERT_TRUE(odd.open({QStringLiteral("SECOND")}));
    EXPECT_TRUE(odd.takes({1, 2, 50, 40}, odd.compositor.picture(QStringLiteral("SECOND")).copy(1, 2, 50, 40),
                          QStringLiteral("SECOND")));
}

TEST(OddOutputsTest, sizesThatMeanNothingEndItWithOneLine) {
    for (const QSize mode : {QSize(0, 0), QSize(-5, 10), QSize(1 << 30, 1 << 30), QSize(70000, 3)}) {
        CompositorScript script;
        script.outputs[0].mode = mode;
        OddCapture odd(script);
        odd.launch();
        EXPECT_TRUE(odd.endsWith(3, "", patience)) << mode.width();
        EXPECT_FALSE(odd.descriptors.isReady());
    }
}

TEST(OddOutputsTest, whatNoBufferCanHoldIsNoOutput) {
    for (const QSize mode : {QSize(30000, 30000), QSize(0, 0), QSize(-5, 10)}) {
        CompositorScript script;
        script.outputs[0].mode = mode;
        script.outputs[0].logicalSize = {320, 200};
        OddCapture odd(script);
        odd.launch();
        EXPECT_TRUE(odd.endsWith(3, "no output", 5000)) << mode.width();
        EXPECT_EQ(odd.compositor.copiesAsked(), 0);
    }
}

TEST(OddOutputsTest, scalesAndLogicalSizesThatMeanNothingDoNoHarm) {
    for (const auto& [scale, logical] : {std::pair{0, QSize()},
                                         {-3, QSize()},
                                         {1, QSize(0, 5)},
                                         {1, QSize(-1, -1)},
                                         {1, QSize(320000, 200000)},
                                         {1, QSize(1, 1)}}) {
        CompositorScript script;
        script.outputs[0].scale = scale;
        script.outputs[0].logicalSize = logical;
        script.configure = QSize(320, 200);
        OddCapture odd(script);
        ChildProcess* const tool = odd.open();
        if (!tool) {
            EXPECT_TRUE(odd.endsWith(3)) << scale << " " << logical.width();
            continue;
        }
        odd.compositor.key(KEY_ESC);
        EXPECT_TRUE(odd.isCancelled()) << scale << " " << logical.width();
    }
}

TEST(OddOutputsTest, everyTurnOfAPanelIsUndone) {
    for (int transform = 0; transform < 4; ++transform) {
        CompositorScript script;
        script.outputs[0].transform = transform;
        OddCapture odd(script);
        ASSERT_TRUE(odd.open());
        // The compositor turns its picture against the clock.
        const QImage upright = odd.compositor.picture().transformed(QTransform().rotate(90 * transform));
        EXPECT_TRUE(odd.takes({3, 4, 50, 60}, upright.copy(3, 4, 50, 60))) << transform;
    }
}

TEST(OddOutputsTest, aTransformThatDoesNotExistIsNoCrash) {
    for (const int transform : {8, 9, 1000, -1}) {
        CompositorScript script;
        script.outputs[0].transform = transform;
        OddCapture odd(script);
        if (odd.open())
            odd.compositor.key(KEY_ESC);
        EXPECT_TRUE(odd.givesUp()) << transform;
    }
}

TEST(OddCopiesTest, linesWithPaddingAndBottomUpPicturesAreReadRightly) {
    for (const bool bottomUp : {false, true})
        for (const std::uint32_t stride : {1280u, 1284u, 2048u}) {
            CopyAnswer copy;
            copy.bottomUp = bottomUp;
            copy.stride = stride;
            OddCapture odd(scriptOf(copy));
            ASSERT_TRUE(odd.open());
            EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)))
                << stride;
        }
}

TEST(OddCopiesTest, everyFormatWithAllBitsGivesTheSamePixels) {
    for (const std::uint32_t format : {WL_SHM_FORMAT_ARGB8888, WL_SHM_FORMAT_XBGR8888, WL_SHM_FORMAT_RGB888,
                                       WL_SHM_FORMAT_BGR888, WL_SHM_FORMAT_XRGB2101010}) {
        CopyAnswer copy;
        copy.formats = {format};
        OddCapture odd(scriptOf(copy));
        ASSERT_TRUE(odd.open()) << std::hex << format;
        EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)))
            << std::hex << format;
    }
}

TEST(OddCopiesTest, aFormatThatIsNotReadIsPassedOverForOneThatIs) {
    CopyAnswer copy;
    copy.formats = {WL_SHM_FORMAT_NV12, WL_SHM_FORMAT_XBGR8888};
    OddCapture odd(scriptOf(copy));
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
}

TEST(OddCopiesTest, whatCannotBeCopiedEndsItWithOneLineAndNothingShown) {
    std::vector<CopyAnswer> answers;
    answers.emplace_back().ending = Ending::Failed;
    answers.emplace_back().ending = Ending::Never;
    answers.emplace_back().formats = {WL_SHM_FORMAT_NV12};
    answers.emplace_back().formats = {};
    answers.emplace_back().size = QSize(0, 0);
    answers.emplace_back().size = QSize(319, 200);
    answers.emplace_back().size = QSize(1 << 20, 1 << 20);
    answers.emplace_back().size = QSize(32767, 32767);
    answers.emplace_back().stride = 1279;
    answers.emplace_back().stride = 0;
    answers.emplace_back().stride = 0xffffffff;
    for (std::size_t i = 0; i < answers.size(); ++i)
        for (const int version : {1, 3}) {
            CompositorScript script = scriptOf(answers[i]);
            script.screencopy = version;
            OddCapture odd(script);
            odd.launch();
            EXPECT_TRUE(odd.endsWith(3, "", patience)) << i;
            EXPECT_FALSE(odd.descriptors.isReady()) << i;
        }
}

TEST(OddCopiesTest, anOutputThatCannotBeCopiedDoesNotKeepTheOthersFromIt) {
    for (const Ending ending : {Ending::Failed, Ending::Never}) {
        CompositorScript script = twoOutputs();
        script.outputs[1].copy.ending = ending;
        OddCapture odd(script);
        ASSERT_TRUE(odd.open()) << int(ending);
        EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
    }
}

TEST(OddCopiesTest, anOutputThatGoesWhileItIsCopiedCancels) {
    for (const char* name : {"ONE", "SECOND"}) {
        CompositorScript script = twoOutputs();
        OddCapture* capture = nullptr;
        script.outputs[0].copy.asked = [&] { capture->compositor.removeOutput(QLatin1String(name)); };
        OddCapture odd(script);
        capture = &odd;
        odd.launch();
        EXPECT_TRUE(odd.isCancelled()) << name;
        EXPECT_FALSE(odd.descriptors.isReady());
    }
}

TEST(OddCopiesTest, theOnlyOutputThatGoesWhileItIsCopiedEndsIt) {
    CompositorScript script;
    OddCapture* capture = nullptr;
    script.outputs[0].copy.asked = [&] { capture->compositor.removeOutput(QStringLiteral("ONE")); };
    OddCapture odd(script);
    capture = &odd;
    odd.launch();
    EXPECT_TRUE(odd.givesUp());
}

TEST(OddCopiesTest, aModeThatChangesWhileItIsCopiedCancelsOrIsTaken) {
    CompositorScript script;
    OddCapture* capture = nullptr;
    script.outputs[0].copy.asked = [&] {
        capture->compositor.changeOutput(QStringLiteral("ONE"), [](ScriptedOutput& output) {
            output.mode = {300, 180};
            output.copy.asked = {};
        });
    };
    OddCapture odd(script);
    capture = &odd;
    odd.launch();
    EXPECT_TRUE(odd.givesUp());
    EXPECT_FALSE(odd.descriptors.isReady());
}

TEST(OddOutputsTest, everyChangeOfTheOutputsCancelsAnOpenCapture) {
    using Change = std::function<void(ScriptedCompositor&)>;
    const auto edited = [](const std::function<void(ScriptedOutput&)>& edit) -> Change {
        return [edit](ScriptedCompositor& compositor) {
            compositor.changeOutput(QStringLiteral("SECOND"), edit);
        };
    };
    const std::vector<Change> changes{
        [](ScriptedCompositor& c) { c.removeOutput(QStringLiteral("SECOND")); },
        [](ScriptedCompositor& c) { c.removeOutput(QStringLiteral("SECOND"), false); },
        [](ScriptedCompositor& c) { c.removeOutput(QStringLiteral("ONE")); },
        [](ScriptedCompositor& c) {
            c.perform([&](ScriptedPieces&) {
                c.removeOutput(QStringLiteral("SECOND"));
                c.addOutput(another());
            });
        },
        [](ScriptedCompositor& c) {
            ScriptedOutput third = another();
            third.name = QStringLiteral("THIRD");
            c.addOutput(third);
        },
        edited([](ScriptedOutput& o) {
            o.mode = {400, 300};
        }),
        edited([](ScriptedOutput& o) { o.scale = 2; }),
        edited([](ScriptedOutput& o) { o.transform = 1; }),
        edited([](ScriptedOutput& o) {
            o.position = {320, 100};
        }),
        [](ScriptedCompositor& c) { c.closeSurfaces(); },
        [](ScriptedCompositor& c) {
            c.configureSurfaces({100, 100});
        },
    };
    for (std::size_t i = 0; i < changes.size(); ++i)
        for (const bool dragging : {false, true}) {
            OddCapture odd(twoOutputs());
            ASSERT_TRUE(odd.open(both)) << i;
            if (dragging) {
                odd.compositor.pointTo({20, 20}, QStringLiteral("SECOND"));
                odd.compositor.press(BTN_LEFT);
                odd.compositor.pointTo({60, 70}, QStringLiteral("SECOND"));
            }
            changes[i](odd.compositor);
            EXPECT_TRUE(odd.isCancelled()) << i << dragging;
        }
}

TEST(OddOutputsTest, anOutputThatIsToldOfAgainUnchangedKeepsTheCapture) {
    OddCapture odd;
    ASSERT_TRUE(odd.open());
    odd.compositor.changeOutput(QStringLiteral("ONE"), [](ScriptedOutput&) {});
    odd.compositor.configureSurfaces({320, 200});
    EXPECT_TRUE(odd.takes({10, 20, 100, 60}, odd.compositor.picture().copy(10, 20, 100, 60)));
}

} // namespace
} // namespace framora
