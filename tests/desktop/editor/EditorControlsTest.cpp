// Every control of the sidebar by the pointer alone: its field, and its effect in the picture.

#include "desktop/editor/EditorDesktop.h"

#include <vector>

namespace framora {
namespace {

/// Something that the user does, and what comes of it.
struct Step {
    enum class Shows {
        inBoth,    ///< The preview and the final picture change.
        inPreview, ///< Only the preview does: the choice is about the canvas, not the file.
        nowhere    ///< Nothing does: the same picture is described otherwise.
    };
    QString control; ///< A name to click on, or with a fraction a slider.
    QString field;   ///< Empty where something opens.
    QString value;   ///< Afterwards, empty where chance decides; or the name of what opens.
    double fraction = -1;
    Shows shows = Shows::inBoth;
};

QString named(const char* name, int number) {
    return QStringLiteral("%1.%2").arg(QLatin1String(name)).arg(number);
}

class EveryControl : public EditorDesktop {
protected:
    void clickInView(const QString& name) {
        bring(name);
        click(name);
    }
    /// Turns the wheel over the sidebar until the control can be reached.
    void bring(const QString& name) {
        for (int i = 0; i < 40; ++i) {
            const QRect area = place(name);
            const QRect room = place(QStringLiteral("sidebar.scroll"));
            const bool below = area.bottom() > room.bottom() - 4;
            const bool above = area.top() < room.top() + 4;
            if (!below && !above)
                return;
            display().click({room.left() + 6, room.center().y()},
                            below ? DesktopDisplay::Button::wheelDown : DesktopDisplay::Button::wheelUp);
            letPass();
        }
        FAIL() << name.toStdString() << " does not come into view";
    }
    /// A pixel of a slider is a hundredth of its range.
    bool waitForNear(const QString& name, double value) {
        return VirtualDesktop::waitFor([&] {
            return !field(name).isEmpty() &&
                   std::abs(field(name).toDouble() - value) <= std::max(1.5, 0.02 * std::abs(value));
        });
    }
    void take(const std::vector<Step>& steps) {
        QImage final = finalPicture();
        QImage preview = frame();
        for (const Step& step : steps) {
            SCOPED_TRACE(
                QStringLiteral("%1 -> %2 = %3").arg(step.control, step.field, step.value).toStdString());
            const int changes = lineCount(QStringLiteral("set %1 ").arg(step.field));
            if (step.fraction >= 0)
                clickSlider(step.control, step.fraction);
            else
                clickInView(step.control);
            bool happened = false;
            if (step.field.isEmpty())
                happened = !place(step.value).isEmpty();
            else if (step.value.isEmpty())
                happened = VirtualDesktop::waitFor(
                    [&] { return lineCount(QStringLiteral("set %1 ").arg(step.field)) > changes; });
            else
                happened = step.fraction >= 0 ? waitForNear(step.field, step.value.toDouble())
                                              : waitForField(step.field, step.value);
            ASSERT_TRUE(happened) << field(step.field).toStdString();
            const QImage nextFinal = finalPicture();
            EXPECT_EQ(nextFinal != final, step.shows == Step::Shows::inBoth) << "in the final picture";
            if (step.shows != Step::Shows::nowhere) {
                EXPECT_TRUE(VirtualDesktop::waitFor([&] { return frame() != preview; })) << "in the preview";
            }
            final = nextFinal;
            preview = frame();
        }
    }
};

TEST_F(EveryControl, OfTheAppearanceTab) {
    open({QStringLiteral("--still")});
    click("tabs.0");
    take({
        {"mockupStyle.glassEffect", "mockupStyle", "glassEffect"},
        {"mockupStyle.border", "mockupStyle", "border"},
        {"mockupBorderSize", "mockupBorderSize", "10", 1.0},
        {"mockupBorderSize.reset", "mockupBorderSize", "3"},
        {"borderColor.well", "", "colorPanel.field", -1, Step::Shows::nowhere},
        {"colorPanel.swatch.4", "borderColor", "#e5484d"},
        {"borderStyle.sharp", "borderRadius", "0"},
        {"borderStyle.round", "borderRadius", "40"},
        {"borderStyle.curved", "borderRadius", "20"},
        {"borderRadius", "borderRadius", "10", 0.25},
        {"borderRadius.reset", "borderRadius", "20"},
        {"scale", "scale", "0.1", 0.0},
        {"scale.reset", "scale", "1"},
        {"rotation.left", "rotation", "-90"},
        {"rotation.reset", "rotation", "0"},
        {"rotation.right", "rotation", "90"},
        {"rotation.right", "rotation", "180"},
        {"rotation.right", "rotation", "270"},
        // Four presses stand for a whole turn, which looks like none.
        {"rotation.right", "rotation", "360"},
        {"rotation.reset", "rotation", "0", -1, Step::Shows::nowhere},
        {"rotationX", "rotationX", "45", 0.75},
        {"rotationX.reset", "rotationX", "0"},
        {"rotationY", "rotationY", "-45", 0.25},
        {"rotationY.reset", "rotationY", "0"},
        {"mockupStyle.defaultStyle", "mockupStyle", "defaultStyle"},
    });
}

TEST_F(EveryControl, OfTheColorBackground) {
    open({QStringLiteral("--still")});
    std::vector<Step> steps{{"backgroundType.color", "backgroundType", "color"}};
    // White is the colour already.
    steps.push_back({named("magicPreset", 0), "magicPresetIndex", "0", -1, Step::Shows::nowhere});
    for (int i = 1; i < 5; ++i)
        steps.push_back({named("magicPreset", i), "magicPresetIndex", QString::number(i)});
    steps.push_back({"gradientConfig.brightness", "gradientConfig.brightness", "200", 1.0});
    steps.push_back({"gradientConfig.brightness.reset", "gradientConfig.brightness", "100"});
    steps.push_back({"backgroundType.transparent", "backgroundType", "transparent"});
    take(steps);
}

TEST_F(EveryControl, OfTheGradientBackground) {
    open({QStringLiteral("--still")});
    std::vector<Step> steps{
        {"backgroundType.gradient", "backgroundType", "gradient"},
        {"gradientStyle.radial", "gradientStyle", "radial"},
        {"gradientStyle.angular", "gradientStyle", "angular"},
        {"gradientConfig.angle", "gradientConfig.angle", "270", 0.75},
        {"gradientConfig.angle.reset", "gradientConfig.angle", "135"},
        {"gradientStyle.linear", "gradientStyle", "linear"},
        {"gradientConfig.color1.well", "", "colorPanel.field", -1, Step::Shows::nowhere},
        {"colorPanel.swatch.6", "gradientColor1", "#ffc53d"},
        {"gradientConfig.color2.well", "", "colorPanel.field", -1, Step::Shows::nowhere},
        {"colorPanel.swatch.10", "gradientColor2", "#3d6df2"},
        // The third colour of the first named gradient is its second one.
        {"useThreeColors", "gradientConfig.useThreeColors", "true"},
        {"gradientConfig.color3.well", "", "colorPanel.field", -1, Step::Shows::nowhere},
        {"colorPanel.swatch.13", "gradientColor3", "#e93d82"},
        {"useThreeColors", "gradientConfig.useThreeColors", "false"},
        {"randomize", "gradientColor1", ""},
        {"gradientConfig.blurAmount", "gradientConfig.blurAmount", "50", 1.0},
        {"gradientConfig.blurAmount.reset", "gradientConfig.blurAmount", "0"},
        // Grain is the preview's alone.
        {"gradientConfig.noiseAmount", "gradientConfig.noiseAmount", "100", 1.0, Step::Shows::inPreview},
        {"gradientConfig.noiseAmount.reset", "gradientConfig.noiseAmount", "0", -1, Step::Shows::inPreview},
        {"gradientConfig.saturation", "gradientConfig.saturation", "0", 0.0},
        {"gradientConfig.saturation.reset", "gradientConfig.saturation", "100"},
        {"gradientConfig.brightness", "gradientConfig.brightness", "50", 0.25},
        {"gradientConfig.brightness.reset", "gradientConfig.brightness", "100"}};
    for (int i = 0; i < 5; ++i)
        steps.push_back({named("gradientPreset", i), "gradientPresetIndex", QString::number(i)});
    take(steps);
}

TEST_F(EveryControl, OfTheLayoutTab) {
    open({QStringLiteral("--still")});
    click("tabs.2");
    std::vector<Step> steps{
        {"padding", "padding", "100", 0.5},
        {"padding.reset", "padding", "80"},
        {"imageScale", "imageScale", "10", 0.0},
        {"imageScale.reset", "imageScale", "100"},
    };
    for (int i = 0; i < 18; ++i)
        steps.push_back({named("socialPreset", i), "socialPresetIndex", QString::number(i)});
    steps.push_back({"social.clear", "socialPresetIndex", "-1"});
    take(steps);
}

TEST_F(EveryControl, BringsTheScreenshotBackToTheMiddle) {
    open({QStringLiteral("--still")});
    click("tabs.2");
    const QPoint middle = place("canvas").center();
    display().drag(middle, middle + QPoint(50, 30));
    ASSERT_TRUE(waitForField("screenshotOffset", "50 30"));
    const QImage before = finalPicture();
    click("position.center");
    ASSERT_TRUE(waitForField("screenshotOffset", "0 0"));
    EXPECT_NE(finalPicture(), before);
}

TEST_F(EveryControl, IsOneStepOfUndoHoweverFarItIsDragged) {
    open({QStringLiteral("--still")});
    click("tabs.2");
    display().drag(sliderPoint("padding", 0.4), sliderPoint("padding", 1.0), 20);
    ASSERT_TRUE(waitForField("padding", "200"));
    EXPECT_GT(lineCount("set padding "), 3) << "it follows the pointer";
    display().drag(sliderPoint("imageScale", 0.47), sliderPoint("imageScale", -0.1), 20);
    ASSERT_TRUE(waitForField("imageScale", "10"));
    display().key({"Control_L", "z"});
    ASSERT_TRUE(waitForField("imageScale", "100"));
    display().key({"Control_L", "z"});
    ASSERT_TRUE(waitForField("padding", "80"));
    EXPECT_EQ(field("imageScale"), QStringLiteral("100"));
}

TEST_F(EveryControl, OfASliderHoldsItsHandleWhereItIsGrabbed) {
    open({QStringLiteral("--still")});
    click("tabs.2");
    const QPoint handle = sliderPoint("padding", 0.4);
    // At the rim of the handle: nothing moves before the pointer does, and a double click never moves it.
    display().click(handle + QPoint(5, 0));
    letPass();
    EXPECT_EQ(lineCount("set padding "), 0);
    display().drag(handle + QPoint(5, 0), sliderPoint("padding", 0.9) + QPoint(5, 0));
    ASSERT_TRUE(waitForField("padding", "180"));
    display().doubleClick(sliderPoint("padding", 0.9));
    ASSERT_TRUE(waitForField("padding", "80")) << field("padding").toStdString();
}

TEST_F(EveryControl, LetsTheWheelScrollPastSlidersUnmoved) {
    open({QStringLiteral("--still")});
    click("tabs.2");
    const int before = place("padding.slider").top();
    display().moveTo(place("padding.slider").center());
    display().click(place("padding.slider").center(), DesktopDisplay::Button::wheelDown);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return place("padding.slider").top() < before; }));
    EXPECT_EQ(lineCount("set padding "), 0);
    EXPECT_EQ(lineCount("set imageScale "), 0);
}

/// What is typed into a slider's number, and the field's value then.
struct Typing {
    QString slider;
    QString typed;
    QString value;
};

TEST_F(EveryControl, TakesATypedNumber) {
    open({QStringLiteral("--still")});
    const std::vector<Typing> table{{"padding", "120", "120"},     {"padding", "999", "200"},
                                    {"padding", "12,5", "12.5"},   {"padding", "-4", "0"},
                                    {"imageScale", "50%", "50"},   {"imageScale", "5", "10"},
                                    {"imageScale", "99.9", "99.9"}};
    click("tabs.2");
    for (const Typing& each : table) {
        SCOPED_TRACE((each.slider + u' ' + each.typed).toStdString());
        click(each.slider + QStringLiteral(".text"));
        ASSERT_TRUE(waitForFocus(each.slider + QStringLiteral(".field")));
        // All of the old number is selected.
        display().type(each.typed);
        display().key({"Return"});
        ASSERT_TRUE(waitForField(each.slider, each.value)) << field(each.slider).toStdString();
        EXPECT_TRUE(waitForFocus(each.slider + QStringLiteral(".slider")))
            << "the arrow keys go on from there";
    }
    const int written = lineCount("set padding ");
    for (const char* garbage : {"abc", "", "1.2.3", "5x"}) {
        SCOPED_TRACE(garbage);
        click("padding.text");
        ASSERT_TRUE(waitForFocus("padding.field"));
        display().key({"BackSpace"});
        display().type(QLatin1String(garbage));
        display().key({"Return"});
        ASSERT_TRUE(waitForFocus("padding.slider"));
    }
    click("padding.text");
    ASSERT_TRUE(waitForFocus("padding.field"));
    display().type("33");
    display().key({"Escape"});
    ASSERT_TRUE(waitForFocus("padding.slider"));
    EXPECT_EQ(lineCount("set padding "), written) << "neither garbage nor what was given up is written";
    EXPECT_TRUE(window()) << "Escape only left the number";

    // A number that was only looked at keeps the digits that it does not show.
    click("imageScale.text");
    ASSERT_TRUE(waitForFocus("imageScale.field"));
    display().key({"Return"});
    ASSERT_TRUE(waitForFocus("imageScale.slider"));
    EXPECT_EQ(field("imageScale"), QStringLiteral("99.9"));

    // A click elsewhere takes what stands there, as Tab does.
    click("padding.text");
    ASSERT_TRUE(waitForFocus("padding.field"));
    display().type("44");
    display().click(place("sidebar.scroll").bottomLeft() + QPoint(8, -60));
    ASSERT_TRUE(waitForField("padding", "44"));
    click("tabs.0");
    click("mockupStyle.border");
    ASSERT_TRUE(waitForField("mockupStyle", "border"));
    click("mockupBorderSize.text");
    ASSERT_TRUE(waitForFocus("mockupBorderSize.field"));
    display().type("4.3");
    display().key({"Tab"});
    ASSERT_TRUE(waitForField("mockupBorderSize", "4.5")) << "the nearest half";
    EXPECT_FALSE(focus().startsWith(u"mockupBorderSize.field"));
}

} // namespace
} // namespace framora
