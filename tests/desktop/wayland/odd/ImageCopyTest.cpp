// Compositors that copy their outputs by ext-image-copy-capture instead of screencopy.

#include "desktop/wayland/odd/OddCapture.h"

#include <wayland-client-protocol.h>

namespace framora {
namespace {

using Ending = CopyAnswer::Ending;

CompositorScript imageCopyOnly(const CopyAnswer& copy = {}) {
    CompositorScript script;
    script.screencopy = 0;
    script.imageCopy = 1;
    script.outputs[0].copy = copy;
    return script;
}

const QRect area(10, 20, 100, 60);

TEST(ImageCopyTest, aCaptureTakesTheOutputsPixels) {
    OddCapture odd(imageCopyOnly());
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.descriptors.isReady());
    EXPECT_TRUE(odd.takes(area, odd.compositor.picture().copy(area)));
    EXPECT_EQ(odd.compositor.copiesAsked(), 1);
}

TEST(ImageCopyTest, screencopyGoesFirstWhereBothAre) {
    CompositorScript script = imageCopyOnly();
    script.screencopy = 3;
    script.outputs[0].copy.bottomUp = true; // which image-copy-capture cannot say
    OddCapture odd(script);
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes(area, odd.compositor.picture().copy(area)));
}

TEST(ImageCopyTest, everyTurnOfAPanelIsUndone) {
    for (int transform = 0; transform < 4; ++transform) {
        CompositorScript script = imageCopyOnly();
        script.outputs[0].transform = transform;
        OddCapture odd(script);
        ASSERT_TRUE(odd.open());
        const QImage upright = odd.compositor.picture().transformed(QTransform().rotate(90 * transform));
        EXPECT_TRUE(odd.takes(area, upright.copy(area))) << transform;
    }
}

TEST(ImageCopyTest, anOutputOfTwoPixelsAPointIsTakenInItsPixels) {
    CompositorScript script = imageCopyOnly();
    script.outputs[0].scale = 2;
    OddCapture odd(script);
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes({5, 10, 50, 30}, odd.compositor.picture().copy(area)));
}

TEST(ImageCopyTest, everyFormatWithAllBitsGivesTheSamePixels) {
    for (const auto& formats : {std::vector<std::uint32_t>{WL_SHM_FORMAT_ARGB8888},
                                {WL_SHM_FORMAT_XBGR8888},
                                {WL_SHM_FORMAT_BGR888},
                                {WL_SHM_FORMAT_NV12, WL_SHM_FORMAT_RGB888}}) {
        CopyAnswer copy;
        copy.formats = formats;
        OddCapture odd(imageCopyOnly(copy));
        ASSERT_TRUE(odd.open()) << std::hex << formats[0];
        EXPECT_TRUE(odd.takes(area, odd.compositor.picture().copy(area))) << std::hex << formats[0];
    }
}

TEST(ImageCopyTest, constraintsThatChangeInTheMiddleAreFollowed) {
    CopyAnswer copy;
    copy.newConstraints = true;
    copy.size = QSize(64, 48);
    OddCapture odd(imageCopyOnly(copy));
    ASSERT_TRUE(odd.open());
    EXPECT_TRUE(odd.takes(area, odd.compositor.picture().copy(area)));
}

TEST(ImageCopyTest, whatCannotBeCopiedEndsItWithOneLineAndNothingShown) {
    std::vector<CopyAnswer> answers;
    answers.emplace_back().ending = Ending::Failed;
    answers.emplace_back().ending = Ending::Never;
    answers.emplace_back().formats = {WL_SHM_FORMAT_NV12};
    answers.emplace_back().formats = {};
    answers.emplace_back().size = QSize(0, 0);
    answers.emplace_back().size = QSize(319, 200);
    answers.emplace_back().size = QSize(1 << 20, 1 << 20);
    answers.emplace_back().size = QSize(32767, 32767);
    for (std::size_t i = 0; i < answers.size(); ++i) {
        OddCapture odd(imageCopyOnly(answers[i]));
        odd.launch();
        EXPECT_TRUE(odd.endsWith(3, "", 5000)) << i;
        EXPECT_FALSE(odd.descriptors.isReady()) << i;
    }
}

TEST(ImageCopyTest, anOutputThatCannotBeCopiedDoesNotKeepTheOthersFromIt) {
    for (const Ending ending : {Ending::Failed, Ending::Never}) {
        CompositorScript script = imageCopyOnly();
        ScriptedOutput dark;
        dark.name = QStringLiteral("DARK");
        dark.position = {320, 0};
        dark.copy.ending = ending;
        script.outputs.push_back(dark);
        OddCapture odd(script);
        ASSERT_TRUE(odd.open()) << int(ending);
        EXPECT_TRUE(odd.takes(area, odd.compositor.picture().copy(area)));
    }
}

TEST(ImageCopyTest, aSessionThatIsStoppedBecauseItsOutputGoesCancels) {
    CompositorScript script = imageCopyOnly();
    ScriptedOutput second;
    second.name = QStringLiteral("SECOND");
    second.position = {320, 0};
    OddCapture* capture = nullptr;
    second.copy.asked = [&] { capture->compositor.removeOutput(QStringLiteral("SECOND")); };
    script.outputs.push_back(second);
    OddCapture odd(script);
    capture = &odd;
    odd.launch();
    EXPECT_TRUE(odd.isCancelled());
    EXPECT_FALSE(odd.descriptors.isReady());
}

TEST(ImageCopyTest, itIsARouteThatAsksNobody) {
    for (const int version : {0, 1}) {
        CompositorScript script = imageCopyOnly();
        script.imageCopy = version;
        OddCapture odd(script);
        odd.launch(QStringLiteral("--check-route"));
        EXPECT_TRUE(odd.endsWith(version ? 0 : 3, "", 5000));
        EXPECT_EQ(odd.compositor.copiesAsked(), 0);
    }
}

} // namespace
} // namespace framora
