// The editor as a screen reader finds it.

#include "desktop/editor/EditorDesktop.h"
#include "desktop/support/AccessibleTree.h"

#include <map>
#include <vector>

namespace framora {
namespace {

class OnTheAccessibilityBus : public EditorDesktop {
protected:
    static DesktopOptions accessible() {
        DesktopOptions options = EditorDesktop::options();
        options.accessibility = true;
        return options;
    }
    OnTheAccessibilityBus() : EditorDesktop(accessible()) {}
    void SetUp() override {
        open({QStringLiteral("--still")});
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return !tree.nodes(application).empty(); }));
    }
    AccessibleNode node(const char* name, const char* role) {
        std::optional<AccessibleNode> found;
        VirtualDesktop::waitFor([&] {
            found = tree.find(application, QString::fromUtf8(name), QLatin1String(role));
            return found.has_value();
        });
        EXPECT_TRUE(found) << name << ", " << role << " is not among\n" << all();
        return found.value_or(AccessibleNode());
    }
    std::string all() {
        QStringList lines;
        for (const AccessibleNode& each : tree.nodes(application))
            if (each.showing)
                lines.append(QStringLiteral("%1: %2").arg(each.role, each.name));
        return lines.join(u'\n').toStdString();
    }
    void press(const char* name, const char* role) { EXPECT_TRUE(tree.press(node(name, role))) << name; }

    const QString application = QStringLiteral("editor_host");
    AccessibleTree tree{desktop.busAddress()};
};

/// What a control says of itself.
struct Said {
    const char* name;
    const char* role;
    double value = -1, low = 0, high = 0; ///< Of a slider.
};

TEST_F(OnTheAccessibilityBus, EveryControlSaysItsNameItsRoleAndItsValue) {
    const auto expect = [&](const std::vector<Said>& controls) {
        const std::vector<AccessibleNode> nodes = tree.nodes(application);
        for (const Said& said : controls) {
            const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const AccessibleNode& each) {
                return each.showing && each.name == QString::fromUtf8(said.name) &&
                       each.role == QLatin1String(said.role);
            });
            ASSERT_NE(found, nodes.end()) << said.name << ", " << said.role;
            if (QLatin1String(said.role) != u"slider")
                continue;
            EXPECT_EQ(tree.value(*found).value_or(-1), said.value) << said.name;
            EXPECT_EQ(tree.range(*found).value_or(std::pair(0.0, 0.0)), std::pair(said.low, said.high))
                << said.name;
        }
        // Whatever takes the keys has a name.
        for (const AccessibleNode& each : nodes) {
            const bool takesKeys =
                each.showing && each.focusable && each.role != u"frame" && each.role != u"application";
            EXPECT_FALSE(takesKeys && each.name.isEmpty())
                << each.role.toStdString() << ' ' << each.path.toStdString();
        }
    };
    press("Appearance", "page tab");
    press("Border", "radio button");
    ASSERT_TRUE(waitForField("mockupStyle", "border"));
    expect({{"Appearance", "page tab"},       {"Background", "page tab"},
            {"Layout", "page tab"},           {"Default", "radio button"},
            {"Glass", "radio button"},        {"Border", "radio button"},
            {"Size", "slider", 3, 0, 10},     {"Color", "push button"},
            {"Sharp", "radio button"},        {"Curved", "radio button"},
            {"Round", "radio button"},        {"Radius", "slider", 20, 0, 40},
            {"Scale", "slider", 1, 0.1, 3},   {"Rotate Left", "push button"},
            {"Rotate Right", "push button"},  {"Reset Rotation", "push button"},
            {"Tilt X", "slider", 0, -90, 90}, {"Tilt Y", "slider", 0, -90, 90},
            {"Reset Tilt X", "push button"},  {"Reset Tilt Y", "push button"}});
    EXPECT_TRUE(node("Border", "radio button").checked);
    EXPECT_FALSE(node("Glass", "radio button").checked);
    EXPECT_TRUE(node("Appearance", "page tab").checked);

    press("Rotate Left", "push button");
    ASSERT_TRUE(waitForField("rotation", "-90"));
    EXPECT_EQ(lineCount("set rotation "), 1) << "one press turns once";

    press("Background", "page tab");
    press("Color", "radio button");
    ASSERT_TRUE(waitForField("backgroundType", "color"));
    expect({{"Color 1", "radio button"}, {"Color 5", "radio button"}});
    press("Gradient", "radio button");
    ASSERT_TRUE(waitForField("backgroundType", "gradient"));
    expect({{"Transparent", "radio button"},
            {"Image", "radio button"},
            {"Linear", "radio button"},
            {"Radial", "radio button"},
            {"Angular", "radio button"},
            {"Color 1", "push button"},
            {"Color 2", "push button"},
            {"Use 3 colors", "push button"},
            {"Angle", "slider", 135, 0, 360},
            {"Randomize", "push button"},
            {"Cinder", "radio button"},
            {"Trench", "radio button"},
            {"Black Pine", "radio button"},
            {"Obsidian Sand", "radio button"},
            {"Midnight Surge", "radio button"},
            {"Blur", "slider", 0, 0, 50},
            {"Noise", "slider", 0, 0, 100},
            {"Saturation", "slider", 100, 0, 200},
            {"Brightness", "slider", 100, 0, 200}});
    press("Radial", "radio button");
    ASSERT_TRUE(waitForField("gradientStyle", "radial"));
    tree.setValue(node("Angle", "slider"), 10);
    press("Linear", "radio button");
    ASSERT_TRUE(waitForField("gradientStyle", "linear"));
    EXPECT_EQ(lineCount("set gradientConfig.angle"), 0) << "a circle has no direction";

    press("Layout", "page tab");
    expect({{"Padding", "slider", 80, 0, 200},
            {"Scale", "slider", 100, 10, 200},
            {"Center", "push button"},
            {"Twitter Tweet", "radio button"},
            {"Instagram Post", "radio button"},
            {"Pinterest Long", "radio button"}});
    press("Instagram Post", "radio button");
    ASSERT_TRUE(waitForField("socialPresetIndex", "4"));
    EXPECT_TRUE(node("Instagram Post", "radio button").checked);
    press("Clear", "push button");
    ASSERT_TRUE(waitForField("socialPresetIndex", "-1"));
}

TEST_F(OnTheAccessibilityBus, AScreenReaderMovesSlidersAndOpensThePanel) {
    press("Layout", "page tab");
    tree.setValue(node("Padding", "slider"), 42);
    ASSERT_TRUE(waitForField("padding", "42"));
    EXPECT_EQ(tree.value(node("Padding", "slider")), 42);
    press("Reset Padding", "push button");
    ASSERT_TRUE(waitForField("padding", "80"));
    EXPECT_EQ(tree.value(node("Padding", "slider")), 80) << "what was set from outside does not stick";

    press("Appearance", "page tab");
    press("Border", "radio button");
    ASSERT_TRUE(waitForField("mockupStyle", "border"));
    tree.setValue(node("Size", "slider"), 4.3);
    ASSERT_TRUE(waitForField("mockupBorderSize", "4.5")) << "in its steps";
    press("Color", "push button");
    const AccessibleNode hue = node("Hue", "slider");
    EXPECT_EQ(tree.range(hue), std::pair(0.0, 360.0));
    node("Hex", "text");
    node("Pick a color from the screen", "push button");
    press("#e5484d", "radio button");
    ASSERT_TRUE(waitForField("borderColor", "#e5484d"));
    press("Color", "push button"); // Closes the panel, and opens it again.
    press("Color", "push button");
    press("#1a1a1a", "radio button");
    ASSERT_TRUE(waitForField("borderColor", "#1a1a1a"));
    press("Recent #e5484d", "radio button");
    ASSERT_TRUE(waitForField("borderColor", "#e5484d"));
}

TEST_F(OnTheAccessibilityBus, TheFocusIsSaidAsItMoves) {
    const auto focused = [&](const char* name) {
        return VirtualDesktop::waitFor([&] {
            for (const AccessibleNode& each : tree.nodes(application))
                if (each.focused && each.name == QLatin1String(name))
                    return true;
            return false;
        });
    };
    tabTo("tabs.1");
    EXPECT_TRUE(focused("Background"));
    display().key({"Right"});
    EXPECT_TRUE(focused("Layout"));
    display().key({"Tab"});
    EXPECT_TRUE(focused("Padding"));
}

} // namespace
} // namespace framora
