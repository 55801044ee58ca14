#include "desktop/editor/EditorDesktop.h"

#include "platform/x11/XcbReply.h"

#include <algorithm>
#include <tuple>
#include <xcb/xcb.h>

namespace framora {
namespace {

/// A border's colour panel over a desktop with colours at known places.
class Eyedropper : public EditorDesktop {
protected:
    explicit Eyedropper(QSize screen = {1440, 900}) : EditorDesktop(screen) {
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
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return loupe().has_value(); }, held));
    display().keyUp("Return");
    ASSERT_TRUE(waitForLoupe());
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return !loupe(); }, 200)) << "this one only began it";
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

TEST_F(Eyedropper, SaysThatAnotherProgramHasThePointer) {
    openPanel();
    tabTo(QStringLiteral("colorPanel.eyedropper.button"));
    const XcbReply<xcb_grab_pointer_reply_t> taken(xcb_grab_pointer_reply(
        display().connection(),
        xcb_grab_pointer(display().connection(), 0, display().root(), 0, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    ASSERT_TRUE(taken && taken->status == XCB_GRAB_STATUS_SUCCESS);
    display().key({"Return"});
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        const auto windows = display().windows();
        return std::ranges::any_of(windows, [&](const DesktopWindow& each) {
            return each.overrideRedirect && each.mapped && each.geometry.width() > 300;
        });
    })) << "a toast";
    EXPECT_FALSE(loupe());
}

/// Two monitors side by side, twice as many pixels as points.
class EyedropperOnTwoMonitors : public Eyedropper {
protected:
    EyedropperOnTwoMonitors() : Eyedropper({3200, 1600}) {
        for (const auto& [name, place, output] : {std::tuple{"left", "1600/400x1600/400+0+0", "screen"},
                                                  {"right", "1600/400x1600/400+1600+0", "none"}})
            desktop.run(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), QLatin1String(name),
                                                   QLatin1String(place), QLatin1String(output)});
        desktop.setEnvironmentVariable(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    }
    /// The control's middle in pixels.
    void clickScaled(const QString& name) {
        const QPoint origin = window()->geometry.topLeft();
        display().click(origin + ratio * (place(name).center() - origin));
    }
    std::optional<QRect> scaledLoupe() {
        for (const DesktopWindow& each : display().windows())
            if (each.overrideRedirect && each.geometry.size() == ratio * QSize(136, 164))
                return each.geometry;
        return {};
    }
    bool waitForLoupeIn(const QRect& monitor) {
        return VirtualDesktop::waitFor([&] {
            const auto shown = scaledLoupe();
            return shown && monitor.contains(*shown) && !shown->contains(display().pointerPosition()) &&
                   (shown->center() - display().pointerPosition()).manhattanLength() < ratio * 300;
        });
    }
    static std::string told(const std::optional<QRect>& rect) {
        return rect ? std::to_string(rect->x()) + ' ' + std::to_string(rect->y()) : "none";
    }

    static constexpr int ratio = 2;
    static constexpr QRect left{0, 0, 1600, 1600};
    static constexpr QRect right{1600, 0, 1600, 1600};
};

TEST_F(EyedropperOnTwoMonitors, TheLoupeKeepsToThePointerAndToItsMonitor) {
    open({QStringLiteral("--still")});
    for (const char* name : {"tabs.0", "mockupStyle.border", "borderColor.well"})
        clickScaled(QLatin1String(name));
    clickScaled(QStringLiteral("colorPanel.eyedropper.button"));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return scaledLoupe().has_value(); }));
    for (const auto& [place, monitor] : {std::pair{QPoint(100, 100), left},
                                         {QPoint(1590, 700), left},
                                         {QPoint(1610, 700), right},
                                         {QPoint(3190, 1590), right},
                                         {QPoint(1610, 1590), right}}) {
        display().moveTo(place);
        EXPECT_TRUE(waitForLoupeIn(monitor)) << place.x() << ' ' << told(scaledLoupe());
    }
    display().moveTo(single);
    // Its middle, eight points a pixel.
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        return scaledLoupe() &&
               display().pixelAt(scaledLoupe()->topLeft() + ratio * QPoint(68, 68)) == QColor(250, 128, 3);
    }));
    display().click(single);
    EXPECT_TRUE(waitForField("borderColor", "#fa8003")) << field("borderColor").toStdString();
}

} // namespace
} // namespace framora
