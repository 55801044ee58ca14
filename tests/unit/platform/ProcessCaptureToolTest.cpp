#include "platform/desktop/ProcessCaptureTool.h"

#include <gtest/gtest.h>
#include <vector>

namespace framora {
namespace {

class ProcessCaptureToolTest : public testing::Test {
protected:
    CommandGate gate;
    std::vector<bool> told;
    std::function<void(bool)> tell = [this](bool taken) { told.push_back(taken); };
};

TEST_F(ProcessCaptureToolTest, tellsWhenTheScreenIsTakenAndWhenItIsFree) {
    ProcessCaptureTool tool(gate, QStringLiteral("/bin/true"), tell);
    ASSERT_TRUE(tool.launch({}));
    EXPECT_EQ(told, std::vector<bool>{true});
    tool.waitUntilExit();
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

TEST_F(ProcessCaptureToolTest, aToolThatCannotBeLaunchedLeavesTheScreenFree) {
    ProcessCaptureTool tool(gate, QStringLiteral("/nowhere/framora-screencapture"), tell);
    EXPECT_FALSE(tool.launch({}));
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

} // namespace
} // namespace framora
