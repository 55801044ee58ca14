#include "screencapture/Arguments.h"

#include <gtest/gtest.h>
#include <vector>

namespace framora {
namespace {

std::optional<CaptureMode> modeOf(const std::vector<const char*>& arguments) {
    const auto parsed = Arguments::parse(arguments);
    return parsed ? std::optional(parsed->mode) : std::nullopt;
}

TEST(ArgumentsTest, takesEachModeWithItsSwitches) {
    EXPECT_EQ(modeOf({"-i", "-c", "-x"}), CaptureMode::Area);
    EXPECT_EQ(modeOf({"-w", "-c", "-x"}), CaptureMode::Window);
    EXPECT_EQ(modeOf({"-x", "-i"}), CaptureMode::Area);
    EXPECT_EQ(modeOf({"-w"}), CaptureMode::Window);
}

TEST(ArgumentsTest, takesJoinedSwitches) {
    EXPECT_EQ(modeOf({"-icx"}), CaptureMode::Area);
    EXPECT_EQ(modeOf({"-cw", "-x"}), CaptureMode::Window);
}

TEST(ArgumentsTest, wantsExactlyOneMode) {
    EXPECT_EQ(modeOf({}), std::nullopt);
    EXPECT_EQ(modeOf({"-c", "-x"}), std::nullopt);
    EXPECT_EQ(modeOf({"-i", "-w"}), std::nullopt);
    EXPECT_EQ(modeOf({"-iw"}), std::nullopt);
}

TEST(ArgumentsTest, refusesWhatItDoesNotKnow) {
    EXPECT_EQ(modeOf({"-i", "-q"}), std::nullopt);
    EXPECT_EQ(modeOf({"-i", "file.png"}), std::nullopt);
    EXPECT_EQ(modeOf({"-i", "-"}), std::nullopt);
    EXPECT_EQ(modeOf({"-i", ""}), std::nullopt);
    EXPECT_EQ(modeOf({"--interactive"}), std::nullopt);
}

TEST(ArgumentsTest, takesTheWindowThatDialogsBelongTo) {
    const std::vector<const char*> wayland = {"-i", "--parent", "wayland:a b", "-c"};
    EXPECT_EQ(Arguments::parse(wayland)->parentWindow, "wayland:a b");
    const std::vector<const char*> x11 = {"--parent", "x11:1a2b", "-w"};
    EXPECT_EQ(Arguments::parse(x11)->parentWindow, "x11:1a2b");
    EXPECT_EQ(Arguments::parse(x11)->mode, CaptureMode::Window);
    EXPECT_EQ(modeOf({"-i", "--parent"}), std::nullopt);
    EXPECT_EQ(modeOf({"-i", "--parent", "1a2b"}), std::nullopt);
    EXPECT_EQ(modeOf({"--parent", "x11:1"}), std::nullopt);
    const std::string endless = "x11:" + std::string(600, '1');
    EXPECT_EQ(modeOf({"-i", "--parent", endless.c_str()}), std::nullopt);
}

TEST(ArgumentsTest, takesOneOtherTaskInsteadOfAMode) {
    const auto taskOf = [](const std::vector<const char*>& arguments) {
        const auto parsed = Arguments::parse(arguments);
        return parsed ? std::optional(parsed->task) : std::nullopt;
    };
    EXPECT_EQ(taskOf({"-i"}), Arguments::Task::Capture);
    EXPECT_EQ(taskOf({"--ask-permission"}), Arguments::Task::AskPermission);
    EXPECT_EQ(taskOf({"--ask-permission", "--parent", "x11:1"}), Arguments::Task::AskPermission);
    EXPECT_EQ(taskOf({"--check-route"}), Arguments::Task::CheckRoute);
    EXPECT_EQ(taskOf({"--check-route", "-i"}), std::nullopt);
    EXPECT_EQ(taskOf({"--check-route", "--ask-permission"}), std::nullopt);
}

} // namespace
} // namespace framora
