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

} // namespace
} // namespace framora
