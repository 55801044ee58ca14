#include "desktop/editor/EditorDesktop.h"

namespace framora {
namespace {

/// A border's colour panel over a desktop with colours at known places.
class Eyedropper : public EditorDesktop {
protected:
    Eyedropper() {
        QImage wallpaper(display().size(), QImage::Format_RGB32);
        wallpaper.fill(ground);
        wallpaper.setPixelColor(single, QColor(250, 128, 3));
        display().setWallpaper(wallpaper);
    }
    void openPanel() {
        open({QStringLiteral("--still")});
        click(QStringLiteral("tabs.0"));
        click(QStringLiteral("mockupStyle.border"));
        click(QStringLiteral("borderColor.well"));
        place(QStringLiteral("colorPanel.eyedropper"));
    }
    bool waitForLoupe(bool shown = true) {
        return VirtualDesktop::waitFor([&] { return loupe().has_value() == shown; });
    }
    std::optional<DesktopWindow> loupe() {
        for (const DesktopWindow& each : display().windows())
            if (each.overrideRedirect && each.geometry.size() == QSize(136, 164))
                return each;
        return {};
    }
    void start() {
        click(QStringLiteral("colorPanel.eyedropper.button"));
        ASSERT_TRUE(waitForLoupe());
    }

    const QColor ground{20, 90, 60};
    const QPoint single{25, 30};
};

TEST_F(Eyedropper, AClickTakesThePixelBelowIt) {
    openPanel();
    start();
    display().moveTo(single);
    display().click(single);
    EXPECT_TRUE(waitForField("borderColor", "#fa8003")) << field("borderColor").toStdString();
    EXPECT_TRUE(waitForLoupe(false));
    EXPECT_TRUE(window().has_value()) << "the click is nobody else's";
}

TEST_F(Eyedropper, TheLoupeShowsThePixelsAroundThePointer) {
    openPanel();
    start();
    display().moveTo(single);
    // Its middle, eight points a pixel.
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        return loupe() &&
               display().pixelAt(loupe()->geometry.topLeft() + QPoint(68, 68)) == QColor(250, 128, 3);
    }));
    EXPECT_EQ(display().pixelAt(loupe()->geometry.topLeft() + QPoint(28, 28)), ground);
    EXPECT_FALSE(loupe()->geometry.contains(single));
    EXPECT_TRUE(display().inputArea(loupe()->id).isEmpty());
    const QSize screen = display().size();
    display().moveTo({screen.width() - 2, screen.height() - 2});
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        return loupe() && loupe()->geometry.right() < screen.width() - 2 &&
               loupe()->geometry.bottom() < screen.height() - 2;
    }));
    EXPECT_TRUE(QRect(QPoint(), screen).contains(loupe()->geometry));
}

TEST_F(Eyedropper, EscapeAndOtherButtonsTakeNothing) {
    openPanel();
    start();
    display().moveTo(single);
    display().key({"Escape"});
    EXPECT_TRUE(waitForLoupe(false));
    EXPECT_TRUE(window().has_value()) << "the key is nobody else's";
    start();
    display().click(single, DesktopDisplay::Button::right);
    EXPECT_TRUE(waitForLoupe(false));
    EXPECT_EQ(field("borderColor"), QString());
    // Pointer and keys are everybody's again.
    click(QStringLiteral("colorPanel.swatch.4"));
    EXPECT_TRUE(waitForField("borderColor", "#e5484d"));
}

TEST_F(Eyedropper, TheKeysAloneAreEnough) {
    openPanel();
    tabTo(QStringLiteral("colorPanel.eyedropper.button"));
    display().moveTo(single - QPoint(1, 10));
    display().key({"Return"});
    ASSERT_TRUE(waitForLoupe());
    display().key({"Right"});
    display().key({"Shift_L", "Down"});
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().pointerPosition() == single; }));
    display().key({"Return"});
    EXPECT_TRUE(waitForField("borderColor", "#fa8003"));
    EXPECT_TRUE(waitForFocus(QStringLiteral("colorPanel.eyedropper.button")));
}

TEST_F(Eyedropper, AHeldKeyCountsOnceAndAtItsRelease) {
    // Longer than a key is held until it repeats.
    constexpr int held = 1000;
    openPanel();
    tabTo(QStringLiteral("colorPanel.eyedropper.button"));
    display().moveTo(single);
    display().keyDown("Return");
    ASSERT_TRUE(waitForLoupe());
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return !loupe(); }, held)) << "this one only began it";
    display().keyUp("Return");
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return !loupe(); }, 200));
    EXPECT_EQ(field("borderColor"), QString());
    display().keyDown("Return");
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return !loupe(); }, held));
    EXPECT_EQ(field("borderColor"), QString());
    display().keyUp("Return");
    EXPECT_TRUE(waitForField("borderColor", "#fa8003"));
    EXPECT_TRUE(waitForLoupe(false));
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return loupe().has_value(); }, 300));

    display().key({"Return"});
    ASSERT_TRUE(waitForLoupe());
    display().keyDown("Escape");
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return !loupe(); }, held));
    display().keyUp("Escape");
    EXPECT_TRUE(waitForLoupe(false));
    letPass();
    EXPECT_TRUE(waitForFocus(QStringLiteral("colorPanel.eyedropper.button"))) << "the panel is still there";
}

TEST_F(Eyedropper, ClosingTheEditorGivesPointerAndKeysBack) {
    openPanel();
    start();
    ask(QStringLiteral("close"), QStringLiteral("closed"));
    EXPECT_TRUE(waitForLoupe(false));
    ask(QStringLiteral("open ") + picturePath, QStringLiteral("first-frame"));
    letPass();
    click(QStringLiteral("tabs.0"));
    click(QStringLiteral("mockupStyle.glassEffect"));
    EXPECT_TRUE(waitForField("mockupStyle", "glassEffect"));
}

} // namespace
} // namespace framora
