#include "desktop/editor/EditorDesktop.h"

#include <QDir>

namespace framora {
namespace {

class EditorOnTheDesktop : public EditorDesktop {};

/// A difference of more than rounding.
bool differ(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()) > 12;
}

TEST_F(EditorOnTheDesktop, OpensAtItsSizeInTheMiddleWithTheFocus) {
    open();
    const DesktopWindow shown = *window();
    EXPECT_EQ(shown.geometry.size(), QSize(1296, 810));
    EXPECT_LE((shown.geometry.center() - QRect({0, 0}, display().size()).center()).manhattanLength(), 2);
    EXPECT_EQ(shown.frame.size(), shown.geometry.size()) << "no title bar but its own";
    // 400 x 300 fits at 100 %: the red square in the picture's middle is in the middle of the room.
    const QPoint middle = shown.geometry.topLeft() + QPoint(344 + (1296 - 344) / 2, 52 + (810 - 52) / 2);
    EXPECT_EQ(display().pixelAt(middle), QColor(220, 40, 60));
    EXPECT_EQ(display().pixelAt(middle + QPoint(120, 0)), QColor(240, 240, 240));
}

TEST_F(EditorOnTheDesktop, ADragMovesTheScreenshotAndNeverTheWindow) {
    open();
    const QRect before = window()->geometry;
    const QPoint middle = place("canvas").center();
    display().drag(middle, middle + QPoint(60, -40));
    ASSERT_TRUE(waitForField(QStringLiteral("screenshotOffset"), QStringLiteral("60 -40")))
        << field(QStringLiteral("screenshotOffset")).toStdString();
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] { return display().pixelAt(middle + QPoint(60, -40)) == QColor(220, 40, 60); }));
    EXPECT_EQ(display().pixelAt(middle + QPoint(-30, 40)), QColor(240, 240, 240));
    EXPECT_EQ(window()->geometry, before);
    display().drag(middle + QPoint(60, -40), middle);
    EXPECT_TRUE(waitForField(QStringLiteral("screenshotOffset"), QStringLiteral("0 0")));
}

TEST_F(EditorOnTheDesktop, TheHeaderMovesTheWindowAndADoubleClickFillsTheScreen) {
    open();
    const QRect before = window()->geometry;
    const QPoint header = before.topLeft() + QPoint(700, 8);
    dragWindow(header, header + QPoint(30, 25));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return window()->geometry.topLeft() != before.topLeft(); }));
    // The window manager follows the pointer in steps: the click has to wait for the last of them.
    QRect last;
    int unchanged = 0;
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        const QRect now = window()->geometry;
        unchanged = now == last ? unchanged + 1 : 0;
        last = now;
        return unchanged >= 10;
    }));
    EXPECT_EQ(last.size(), before.size());
    display().doubleClick(window()->geometry.topLeft() + QPoint(700, 10));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return window()->geometry.width() >= 1430; }));
    click("window.maximize");
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return window()->geometry.size() == before.size(); }));
}

TEST_F(EditorOnTheDesktop, ItsEdgesResizeItDownToItsMinimum) {
    open();
    const QRect before = window()->geometry;
    dragWindow(before.bottomRight() - QPoint(2, 2), before.topLeft() + QPoint(300, 200));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return window()->geometry.size() == QSize(800, 600); }))
        << window()->geometry.width() << " x " << window()->geometry.height();
    // Everything of the toolbar still has its place, from left to right.
    int right = 0;
    for (const char* name : {"window.close", "sidebar.toggle", "zoom.in", "zoom.out", "reset.disposition",
                             "share", "ZoomFitItem", "ZoomActualItem", "ResetItem", "SaveItem", "CopyItem"}) {
        const QRect area = place(QLatin1String(name));
        EXPECT_GE(area.left(), right) << name;
        right = area.right();
    }
    EXPECT_LE(right, window()->geometry.right());
}

TEST_F(EditorOnTheDesktop, TheAppearanceTabDressesTheScreenshot) {
    open();
    click("tabs.0");
    const QImage plain = finalPicture();
    click("mockupStyle.border");
    ASSERT_TRUE(waitForField(QStringLiteral("mockupStyle"), QStringLiteral("border")));
    clickSlider("mockupBorderSize", 1.0);
    ASSERT_TRUE(waitForField(QStringLiteral("mockupBorderSize"), QStringLiteral("10")));
    EXPECT_EQ(finalPicture().size(), plain.size() + QSize(120, 120));
    display().doubleClick(sliderPoint("mockupBorderSize", 0.7));
    ASSERT_TRUE(waitForField(QStringLiteral("mockupBorderSize"), QStringLiteral("3")))
        << "back to its default";

    click("borderStyle.sharp");
    ASSERT_TRUE(waitForField(QStringLiteral("borderRadius"), QStringLiteral("0")));
    click("borderStyle.round");
    ASSERT_TRUE(waitForField(QStringLiteral("borderRadius"), QStringLiteral("40")));
    clickSlider("borderRadius", 0.0);
    ASSERT_TRUE(waitForField(QStringLiteral("borderRadius"), QStringLiteral("0")));
    EXPECT_EQ(field(QStringLiteral("borderStyle")), QStringLiteral("round")) << "the slider refines it";

    for (const char* degrees : {"90", "180", "270", "360"}) {
        click("rotation.right");
        ASSERT_TRUE(waitForField(QStringLiteral("rotation"), QLatin1String(degrees)));
    }
    click("rotation.reset");
    ASSERT_TRUE(waitForField(QStringLiteral("rotation"), QStringLiteral("0")));
    click("rotation.left");
    ASSERT_TRUE(waitForField(QStringLiteral("rotation"), QStringLiteral("-90")));
    EXPECT_EQ(finalPicture().size(), (plain.size() + QSize(36, 36)).transposed());

    clickSlider("rotationX", 1.0);
    ASSERT_TRUE(waitForField(QStringLiteral("rotationX"), QStringLiteral("90")));
    click("rotationX.reset");
    ASSERT_TRUE(waitForField(QStringLiteral("rotationX"), QStringLiteral("0")));
    clickSlider("scale", 0.0);
    EXPECT_TRUE(waitForField(QStringLiteral("scale"), QStringLiteral("0.1")));
}

TEST_F(EditorOnTheDesktop, TheBackgroundTabPaintsWhatIsBehind) {
    open();
    QPoint corner = place("canvas").center() + QPoint(260, -210);
    const auto shows = [&](const QColor& color) {
        return VirtualDesktop::waitFor([&] { return !differ(display().pixelAt(corner), color); }, 5000);
    };
    click("backgroundType.color");
    EXPECT_TRUE(shows(Qt::white));
    click("magicPreset.2");
    EXPECT_TRUE(shows(QColor(0x66, 0x7e, 0xea)));
    EXPECT_EQ(field(QStringLiteral("magicPresetIndex")), QStringLiteral("2"));

    // The own colour starts as white; its first field is the one in the corner at the bottom: black.
    click("customColor.well");
    const QRect colors = place("colorPanel.field");
    display().click(colors.bottomLeft() + QPoint(0, -1));
    EXPECT_TRUE(shows(Qt::black));
    EXPECT_EQ(field(QStringLiteral("magicPresetIndex")), QStringLiteral("-1"));
    click("colorPanel.hex");
    // The window manager holds a click back until it has looked at it, but lets keys through.
    ASSERT_TRUE(waitForFocus(QStringLiteral("colorPanel.hex")));
    display().key({"Control_L", "a"});
    display().type(QStringLiteral("12a594"));
    display().key({"Return"});
    EXPECT_TRUE(shows(QColor(0x12, 0xa5, 0x94)));
    click("colorPanel.close");

    // Where the colour panel would have covered it.
    corner = place("canvas").center() + QPoint(-260, -210);

    click("backgroundType.gradient");
    click("gradientPreset.2");
    ASSERT_TRUE(waitForField(QStringLiteral("gradientPresetIndex"), QStringLiteral("2")));
    EXPECT_TRUE(shows(QColor(0x07, 0x0f, 0x0b))) << "its first colour, at the top left";
    click("useThreeColors");
    ASSERT_TRUE(waitForField(QStringLiteral("gradientConfig.useThreeColors"), QStringLiteral("true")));
    place("gradientConfig.color3.well");
    click("gradientStyle.radial");
    ASSERT_TRUE(waitForField(QStringLiteral("gradientStyle"), QStringLiteral("radial")));
    EXPECT_TRUE(
        VirtualDesktop::waitFor([&] { return differ(display().pixelAt(corner), QColor(0x07, 0x0f, 0x0b)); }));
    click("randomize");
    ASSERT_TRUE(
        VirtualDesktop::waitFor([&] { return lineCount(QStringLiteral("set gradientColor1")) >= 2; }));
    // A circle has no direction.
    click("gradientStyle.angular");
    ASSERT_TRUE(waitForField(QStringLiteral("gradientStyle"), QStringLiteral("angular")));
    clickSlider("gradientConfig.angle", 1.0);
    ASSERT_TRUE(waitForField(QStringLiteral("gradientConfig.angle"), QStringLiteral("360")));
    clickSlider("gradientConfig.saturation", 0.0);
    ASSERT_TRUE(waitForField(QStringLiteral("gradientConfig.saturation"), QStringLiteral("0")));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        const QColor grey = display().pixelAt(corner);
        return std::abs(grey.red() - grey.green()) <= 2 && std::abs(grey.green() - grey.blue()) <= 2;
    }));

    click("backgroundType.transparent");
    EXPECT_TRUE(waitForField(QStringLiteral("backgroundType"), QStringLiteral("transparent")));
    EXPECT_EQ(finalPicture().pixelColor(0, 0).alpha(), 0);
}

TEST_F(EditorOnTheDesktop, ImportsABackgroundThroughTheFileDialog) {
    open();
    QImage sea(60, 60, QImage::Format_RGB32);
    sea.fill(QColor(20, 80, 160));
    const QString path = scratch("sea.png");
    ASSERT_TRUE(sea.save(path));
    click("import.image");
    const auto dialog = [&] {
        return display().windowTitled(QStringLiteral("Select an image for background"));
    };
    answerFileDialog(dialog, path);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return lineCount(QStringLiteral("background")) >= 2; }))
        << transcript().toStdString();
    const QPoint corner = place("canvas").center() + QPoint(-260, -210);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().pixelAt(corner) == QColor(20, 80, 160); }));
    const QPoint thumbnail = place("wallpaper.0").center();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().pixelAt(thumbnail) == QColor(20, 80, 160); }));
    click("wallpaper.1");
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().pixelAt(corner) != QColor(20, 80, 160); }));
}

TEST_F(EditorOnTheDesktop, TheLayoutTabSetsRoomAndSize) {
    open();
    click("tabs.2");
    clickSlider("padding", 0.0);
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("0")));
    EXPECT_EQ(finalPicture().size(), QSize(800, 600));
    display().doubleClick(sliderPoint("padding", 0.5));
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("80")));
    clickSlider("imageScale", 0.0);
    ASSERT_TRUE(waitForField(QStringLiteral("imageScale"), QStringLiteral("10")));
    clickSlider("imageScale", 1.0);
    ASSERT_TRUE(waitForField(QStringLiteral("imageScale"), QStringLiteral("200")));
    click("socialPreset.4");
    ASSERT_TRUE(waitForField(QStringLiteral("socialPresetIndex"), QStringLiteral("4")));
    click("social.clear");
    ASSERT_TRUE(waitForField(QStringLiteral("socialPresetIndex"), QStringLiteral("-1")));
}

TEST_F(EditorOnTheDesktop, CopyOffersTheRenderedPictureClosesAndSaysSo) {
    open();
    click("backgroundType.gradient");
    ASSERT_TRUE(waitForField(QStringLiteral("backgroundType"), QStringLiteral("gradient")));
    const QImage expected = finalPicture();
    click("CopyItem");
    EXPECT_TRUE(waitForNoWindow());
    const QImage copied = desktop.clipboardImage();
    EXPECT_EQ(copied.size(), QSize(1120, 920));
    EXPECT_EQ(pixels(copied), expected);
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] { return display().windowTitled(QStringLiteral("Framora toast")).has_value(); }));
    EXPECT_EQ(lineCount(QStringLiteral("closed")), 1);
}

TEST_F(EditorOnTheDesktop, SaveWritesAPngOfTheFramesSize) {
    open();
    click("tabs.0");
    click("mockupStyle.border");
    ASSERT_TRUE(waitForField(QStringLiteral("mockupStyle"), QStringLiteral("border")));
    const QString path = scratch("saved.png");
    display().key({"Control_L", "s"});
    const auto dialog = [&]() -> std::optional<DesktopWindow> {
        for (const DesktopWindow& each : display().windows())
            if (!each.overrideRedirect && each.id != window()->id && each.geometry.width() > 200)
                return each;
        return {};
    };
    answerFileDialog(dialog, path);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return !QImage(path).isNull(); }));
    const QImage saved(path);
    EXPECT_EQ(saved.size(), QSize(2 * (400 + 160 + 18), 2 * (300 + 160 + 18)));
    EXPECT_EQ(pixels(saved), finalPicture());
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] { return display().windowTitled(QStringLiteral("Framora toast")).has_value(); }));
    EXPECT_TRUE(window()) << "the editor stays";
}

TEST_F(EditorOnTheDesktop, TheKeyboardZoomsAndCloses) {
    open();
    display().key({"Control_L", "minus"});
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return field(QStringLiteral("zoom")).startsWith(u"83.33"); }));
    display().key({"Control_L", "1"});
    EXPECT_TRUE(waitForField(QStringLiteral("zoom"), QStringLiteral("100")));
    display().key({"Control_L", "equal"});
    EXPECT_TRUE(waitForField(QStringLiteral("zoom"), QStringLiteral("120")));
    display().key({"Control_L", "0"});
    EXPECT_TRUE(waitForField(QStringLiteral("zoom"), QStringLiteral("100")));
    display().key({"Escape"});
    EXPECT_TRUE(waitForNoWindow());
    EXPECT_EQ(lineCount(QStringLiteral("closed")), 1);
}

TEST_F(EditorOnTheDesktop, ClosesOnceByItsButtonAndByTheWindowManager) {
    open();
    click("window.close");
    EXPECT_TRUE(waitForNoWindow());
    EXPECT_EQ(lineCount(QStringLiteral("closed")), 1);
    ask(QStringLiteral("open ") + picturePath, QStringLiteral("opened"));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return window().has_value(); }));
    display().requestClose(window()->id);
    EXPECT_TRUE(waitForNoWindow());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return lineCount(QStringLiteral("closed")) == 2; }));
}

} // namespace
} // namespace framora
