#include "desktop/support/KwinDesktop.h"
#include "desktop/support/PaintedSurface.h"
#include "desktop/wayland/capture/SwayCapture.h"

#include <cmath>
#include <linux/input-event-codes.h>

namespace framora {
namespace {

/// KWin has layer surfaces but copies its outputs by an interface of its own.
class KwinOverlayTest : public testing::TestWithParam<double> {
protected:
    static KwinOptions options() {
        KwinOptions options;
        options.size = {800, 600};
        options.scale = GetParam();
        options.portal = false;
        return options;
    }

    static QImage picture(const QImage& image) { return image.convertToFormat(QImage::Format_RGB32); }

    QImage settled() { return picture(desktop.settledScreenshot()); }

    ChildProcess& open() {
        const QImage before = settled();
        ChildProcess& tool = desktop.start(QStringLiteral(FRAMORA_SCREENCAPTURE), {QStringLiteral("-i")});
        EXPECT_TRUE(KwinDesktop::waitFor([&] { return picture(desktop.screenshot()) != before; }));
        return tool;
    }

    QRect pixels(int x, int y, int width, int height) const {
        const auto at = [](int logical) { return static_cast<int>(std::lround(logical * GetParam())); };
        return {at(x), at(y), at(width), at(height)};
    }

    KwinDesktop desktop{options()};
    PaintedSurface window{desktop.socketPath(),
                          {PaintedSurface::pattern(QSize(400, 300) * GetParam(), 3),
                           QSize(400, 300),
                           QStringLiteral("a window"),
                           {}}};
};

TEST_P(KwinOverlayTest, anAreaIsCopiedBitForBitAndTheScreenIsAsBefore) {
    const QImage before = settled();
    ChildProcess& tool = open();
    desktop.input().drag({300, 200}, {500, 400});
    ASSERT_TRUE(tool.waitForExit());
    ASSERT_EQ(tool.exitCode(), 0);
    const QImage taken = QImage::fromData(
        desktop.run(QStringLiteral("timeout"),
                    {QStringLiteral("20"), QStringLiteral("wl-paste"), QStringLiteral("--no-newline"),
                     QStringLiteral("--type"), QStringLiteral("image/png")}),
        "PNG");
    EXPECT_TRUE(samePicture(taken, before.copy(pixels(300, 200, 200, 200))));
    EXPECT_TRUE(samePicture(settled(), before));
}

TEST_P(KwinOverlayTest, nothingOfTheGuidesStaysWhenASelectionBegins) {
    ChildProcess& tool = open();
    const QImage bare = settled();
    desktop.input().movePointer({300, 200});
    const QImage guides = settled();
    const QRect below = pixels(200, 500, 200, 99);
    const QRect right = pixels(600, 100, 199, 200);
    EXPECT_FALSE(samePicture(guides.copy(below), bare.copy(below)));
    EXPECT_FALSE(samePicture(guides.copy(right), bare.copy(right)));
    desktop.input().button(BTN_LEFT, true);
    desktop.input().movePointer({420, 330});
    desktop.input().movePointer({500, 400});
    const QImage selected = settled();
    // The guides of the start may have stood there in the bare picture as well.
    for (const QRect& part : {below, right}) {
        const QImage shown = selected.copy(part);
        const QImage dark = bare.copy(part);
        int lighter = 0;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                lighter += qGray(shown.pixel(x, y)) > qGray(dark.pixel(x, y));
        EXPECT_EQ(lighter, 0);
    }
    desktop.input().button(BTN_LEFT, false);
    EXPECT_TRUE(tool.waitForExit());
    EXPECT_EQ(tool.exitCode(), 0);
}

TEST_P(KwinOverlayTest, escapeCancels) {
    const QImage before = settled();
    ChildProcess& tool = open();
    desktop.input().press({KEY_ESC});
    EXPECT_TRUE(tool.waitForExit());
    EXPECT_EQ(tool.exitCode(), 1);
    EXPECT_TRUE(samePicture(settled(), before));
    EXPECT_TRUE(desktop.leftovers().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(scales, KwinOverlayTest, testing::Values(1, 1.5, 2));

} // namespace
} // namespace framora
