// The editor without a mouse.

#include "desktop/editor/EditorDesktop.h"

#include <vector>

namespace framora {
namespace {

class WithoutAMouse : public EditorDesktop {
protected:
    void SetUp() override {
        open({QStringLiteral("--still")});
        // Where a pointer rests must not matter.
        display().moveTo({2, 2});
    }
    /// The names that Tab reaches, from the present one on until it comes round.
    QStringList round() {
        QStringList names;
        for (int i = 0; i < 80; ++i) {
            const QString name = focus();
            if (names.contains(name))
                break;
            names.append(name);
            tab();
        }
        return names;
    }
    void press(std::initializer_list<const char*> keys) { display().key(keys); }
};

TEST_F(WithoutAMouse, TabReachesEveryControlInTheOrderOfTheEye) {
    struct Tab {
        const char* name;
        QStringList controls;
    };
    const std::vector<Tab> tabs{
        {"tabs.0",
         {"mockupStyle.border", "mockupBorderSize.slider", "borderColor.well", "borderStyle.curved",
          "borderRadius.slider", "scale.slider", "rotation.left", "rotation.right", "rotationX.slider",
          "rotationY.slider"}},
        {"tabs.1",
         {"backgroundType.gradient", "gradientStyle.linear", "gradientConfig.color1.well",
          "gradientConfig.color2.well", "useThreeColors", "gradientConfig.angle.slider", "gradientPreset.0",
          "randomize", "gradientConfig.blurAmount.slider", "gradientConfig.noiseAmount.slider",
          "gradientConfig.saturation.slider", "gradientConfig.brightness.slider"}},
        {"tabs.2", {"padding.slider", "imageScale.slider", "socialPreset.0"}}};
    tabTo("tabs.1");
    press({"Left"});
    ASSERT_TRUE(waitForFocus("tabs.0"));
    tabTo("mockupStyle.defaultStyle");
    press({"Left"});
    ASSERT_TRUE(waitForField("mockupStyle", "border")) << "the arrow keys go round";
    tabTo("tabs.0");
    for (const Tab& tab : tabs) {
        SCOPED_TRACE(tab.name);
        ASSERT_TRUE(waitForFocus(QLatin1String(tab.name)));
        const QStringList reached = round();
        EXPECT_EQ(reached.mid(1, tab.controls.size()).join(u' ').toStdString(),
                  tab.controls.join(u' ').toStdString());
        for (const char* everywhere : {"canvas", "zoom.in", "sidebar.toggle", "CopyItem", "SaveItem"})
            EXPECT_TRUE(reached.contains(QLatin1String(everywhere))) << everywhere;
        // Each stands within the sidebar's room when it has the keys.
        tabTo(QLatin1String(tab.name));
        const QRect room = place("sidebar.scroll");
        for (const QString& control : tab.controls) {
            press({"Tab"});
            ASSERT_TRUE(waitForFocus(control));
            EXPECT_TRUE(room.contains(place(control))) << control.toStdString();
        }
        // And back the same way.
        for (qsizetype i = tab.controls.size() - 1; i >= 0; --i) {
            ASSERT_TRUE(waitForFocus(tab.controls[i]));
            press({"Shift_L", "Tab"});
        }
        ASSERT_TRUE(waitForFocus(QLatin1String(tab.name)));
        press({"Right"});
        if (&tab == tabs.data()) {
            ASSERT_TRUE(waitForFocus("tabs.1"));
            tabTo("backgroundType.image");
            press({"Left"});
            ASSERT_TRUE(waitForField("backgroundType", "gradient"));
            tabTo("tabs.1");
        }
    }
}

TEST_F(WithoutAMouse, EverySliderStepsResetsAndTakesNumbers) {
    struct Slider {
        const char* name;
        QString low, high, initial, right, shiftLeft;
    };
    const auto check = [&](const Slider& slider) {
        SCOPED_TRACE(slider.name);
        const QString name = QLatin1String(slider.name);
        tabTo(name + QStringLiteral(".slider"));
        press({"Home"});
        EXPECT_TRUE(slider.initial == slider.low || waitForField(name, slider.low))
            << field(name).toStdString();
        press({"End"});
        EXPECT_TRUE(waitForField(name, slider.high)) << field(name).toStdString();
        press({"Delete"});
        EXPECT_TRUE(waitForField(name, slider.initial)) << field(name).toStdString();
        press({"Right"});
        EXPECT_TRUE(waitForField(name, slider.right)) << field(name).toStdString();
        press({"Left"});
        EXPECT_TRUE(waitForField(name, slider.initial)) << field(name).toStdString();
        press({"Up"});
        EXPECT_TRUE(waitForField(name, slider.right)) << field(name).toStdString();
        press({"Down"});
        EXPECT_TRUE(waitForField(name, slider.initial)) << field(name).toStdString();
        press({"Page_Up"});
        press({"Page_Down"});
        press({"Shift_L", "Right"});
        press({"Shift_L", "Left"});
        EXPECT_TRUE(waitForField(name, slider.initial)) << field(name).toStdString();
        press({"End"});
        EXPECT_TRUE(waitForField(name, slider.high)) << field(name).toStdString();
        press({"Shift_L", "Left"});
        EXPECT_TRUE(waitForField(name, slider.shiftLeft)) << field(name).toStdString();
        // A digit begins a number; the high end again, for one that is in every range.
        display().type(slider.high);
        EXPECT_TRUE(waitForFocus(name + QStringLiteral(".field")));
        press({"Return"});
        EXPECT_TRUE(waitForField(name, slider.high)) << field(name).toStdString();
        EXPECT_TRUE(waitForFocus(name + QStringLiteral(".slider")));
        press({"BackSpace"});
        EXPECT_TRUE(waitForField(name, slider.initial)) << field(name).toStdString();
    };
    tabTo("tabs.1");
    press({"Left"});
    tabTo("mockupStyle.defaultStyle");
    press({"End"});
    ASSERT_TRUE(waitForField("mockupStyle", "border"));
    for (const Slider& each :
         {Slider{"mockupBorderSize", "0", "10", "3", "3.5", "5"},
          Slider{"borderRadius", "0", "40", "20", "21", "30"},
          Slider{"scale", "0.1", "3", "1", "1.01", "2.9"}, Slider{"rotationX", "-90", "90", "0", "1", "80"},
          Slider{"rotationY", "-90", "90", "0", "1", "80"}})
        check(each);
    tabTo("tabs.0");
    press({"Right"});
    tabTo("backgroundType.image");
    press({"Left"});
    ASSERT_TRUE(waitForField("backgroundType", "gradient"));
    for (const Slider& each : {Slider{"gradientConfig.angle", "0", "360", "135", "136", "350"},
                               Slider{"gradientConfig.blurAmount", "0", "50", "0", "1", "40"},
                               Slider{"gradientConfig.noiseAmount", "0", "100", "0", "1", "90"},
                               Slider{"gradientConfig.saturation", "0", "200", "100", "101", "190"},
                               Slider{"gradientConfig.brightness", "0", "200", "100", "101", "190"}})
        check(each);
    tabTo("tabs.1");
    press({"Right"});
    for (const Slider& each : {Slider{"padding", "0", "200", "80", "81", "190"},
                               Slider{"imageScale", "10", "200", "100", "101", "190"}})
        check(each);
}

TEST_F(WithoutAMouse, ButtonsGroupsAndTheColourPanelAnswerToKeys) {
    tabTo("tabs.1");
    press({"Left"});
    tabTo("rotation.left");
    press({"space"});
    ASSERT_TRUE(waitForField("rotation", "-90"));
    press({"Return"});
    ASSERT_TRUE(waitForField("rotation", "-180"));
    tabTo("rotation.reset");
    press({"space"});
    ASSERT_TRUE(waitForField("rotation", "0"));

    tabTo("tabs.0");
    press({"Right"});
    tabTo("backgroundType.image");
    press({"Home"});
    ASSERT_TRUE(waitForField("backgroundType", "transparent"));
    press({"Right"});
    ASSERT_TRUE(waitForField("backgroundType", "color"));
    tabTo("magicPreset.0");
    press({"Right"});
    press({"Right"});
    ASSERT_TRUE(waitForFocus("magicPreset.2"));
    EXPECT_EQ(lineCount("set magicPresetIndex "), 0) << "going past chooses nothing";
    press({"space"});
    ASSERT_TRUE(waitForField("magicPresetIndex", "2"));

    // The panel takes the keys and gives them back.
    tabTo("customColor.well");
    press({"space"});
    ASSERT_TRUE(waitForFocus("colorPanel.field"));
    // It starts on white; down to black and half up again.
    press({"Shift_L", "Down"});
    ASSERT_TRUE(waitForField("customColor", "#e6e6e6"));
    press({"Right"});
    ASSERT_TRUE(waitForField("customColor", "#e6e3e3"));
    press({"Tab"});
    ASSERT_TRUE(waitForFocus("colorPanel.eyedropper.button"));
    press({"Tab"});
    ASSERT_TRUE(waitForFocus("colorPanel.hue"));
    press({"Shift_L", "Right"});
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return field("customColor") != QStringLiteral("#e6e3e3"); }));
    press({"Tab"});
    ASSERT_TRUE(waitForFocus("colorPanel.hex"));
    display().type("0f8");
    press({"Return"});
    ASSERT_TRUE(waitForField("customColor", "#00ff88"));
    press({"Tab"});
    press({"Tab"});
    ASSERT_TRUE(waitForFocus("colorPanel.s"));
    display().type("50");
    press({"Tab"});
    ASSERT_TRUE(waitForField("customColor", "#7fffc3")) << field("customColor").toStdString();
    ASSERT_TRUE(waitForFocus("colorPanel.b"));
    press({"Down"});
    ASSERT_TRUE(waitForField("customColor", "#7efcc2")) << field("customColor").toStdString();
    press({"Tab"});
    press({"Right"});
    press({"Down"});
    ASSERT_TRUE(waitForFocus("colorPanel.swatch.9"));
    press({"Return"});
    ASSERT_TRUE(waitForField("customColor", "#00a2c7"));
    press({"Escape"});
    ASSERT_TRUE(waitForFocus("customColor.well"));
    EXPECT_TRUE(window());

    tabTo("tabs.1");
    press({"Right"});
    tabTo("socialPreset.0");
    press({"End"});
    ASSERT_TRUE(waitForFocus("socialPreset.17"));
    EXPECT_TRUE(place("sidebar.scroll").contains(place("socialPreset.17"))) << "it came into view";
    press({"Up"});
    press({"Return"});
    ASSERT_TRUE(waitForField("socialPresetIndex", "16"));
    tabTo("social.clear");
    press({"space"});
    ASSERT_TRUE(waitForField("socialPresetIndex", "-1"));
}

TEST_F(WithoutAMouse, TheWallpapersAreAGridForTheArrowKeys) {
    tabTo("wallpaper.0");
    press({"Tab"});
    ASSERT_TRUE(waitForFocus("import.image")) << focus().toStdString();
    press({"Shift_L", "Tab"});
    ASSERT_TRUE(waitForFocus("wallpaper.0"));
    press({"Shift_L", "Tab"});
    ASSERT_TRUE(waitForFocus("backgroundType.image"));
}

} // namespace
} // namespace framora
