#include "screencapture/wayland/HyprlandWindows.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr const char* kMonitors =
    R"([{"id":0,"name":"DP-1","activeWorkspace":{"id":2,"name":"2"},"specialWorkspace":{"id":0,"name":""}},
        {"id":1,"name":"DP-2","activeWorkspace":{"id":5,"name":"5"},"specialWorkspace":{"id":-99,"name":"special"}}])";

std::string client(const std::string& box, int workspace, const std::string& more) {
    return R"({"mapped":true,"hidden":false,)" + box + R"(,"workspace":{"id":)" + std::to_string(workspace) +
           R"(,"name":""},)" + more + "}";
}

std::vector<Rect> windowsOf(const std::string& clients) {
    const auto stack = windowsOfHyprland(clients, kMonitors);
    EXPECT_TRUE(stack);
    return stack ? stack->windows() : std::vector<Rect>{};
}

TEST(HyprlandWindowsTest, shownWorkspacesTiledBelowFloatingTheLastFocusedTopmost) {
    EXPECT_EQ(
        windowsOf(
            "[" + client(R"("at":[10,10],"size":[50,50])", 2, R"("floating":true,"focusHistoryID":1)") + "," +
            client(R"("at":[20,20],"size":[50,50])", 2, R"("floating":true,"focusHistoryID":0)") + "," +
            client(R"("at":[0,0],"size":[800,600])", 2, R"("floating":false,"focusHistoryID":2)") + "," +
            client(R"("at":[5,5],"size":[9,9])", 3, R"("floating":true,"focusHistoryID":3)") + "," +
            client(R"("at":[6,6],"size":[9,9])", 3, R"("floating":true,"pinned":true)") + "," +
            client(R"("at":[900,0],"size":[70,70])", -99, R"("floating":false,"focusHistoryID":9)") + "]"),
        (std::vector<Rect>{
            {0, 0, 800, 600}, {6, 6, 9, 9}, {10, 10, 50, 50}, {20, 20, 50, 50}, {900, 0, 70, 70}}));
}

TEST(HyprlandWindowsTest, aFullScreenWindowStandsOverWhatIsTiledInBothVersionsWords) {
    for (const char* full : {"true", "2"})
        EXPECT_EQ(
            windowsOf("[" +
                      client(R"("at":[0,0],"size":[800,600])", 2,
                             std::string(R"("floating":false,"focusHistoryID":0,"fullscreen":)") + full) +
                      "," +
                      client(R"("at":[0,0],"size":[400,600])", 2, R"("floating":false,"focusHistoryID":1)") +
                      "]"),
            (std::vector<Rect>{{0, 0, 400, 600}, {0, 0, 800, 600}}));
}

TEST(HyprlandWindowsTest, hiddenUnmappedAndNonsensicalOnesAreLeftOut) {
    EXPECT_TRUE(windowsOf(R"([1,null,{},[],"x",
        {"mapped":true,"hidden":true,"at":[0,0],"size":[5,5],"workspace":{"id":2}},
        {"mapped":false,"hidden":false,"at":[0,0],"size":[5,5],"workspace":{"id":2}},
        {"mapped":true,"hidden":false,"at":[0],"size":[5,5],"workspace":{"id":2}},
        {"mapped":true,"hidden":false,"at":[0,0],"size":[5,-5],"workspace":{"id":2}},
        {"mapped":true,"hidden":false,"at":[0,1e300],"size":[5,5],"workspace":{"id":2}},
        {"mapped":true,"hidden":false,"at":[0,9223372036854775807],"size":[5,5],"workspace":{"id":2}},
        {"mapped":true,"hidden":false,"at":[0,0],"size":[5,5],"workspace":2}])")
                    .empty());
}

TEST(HyprlandWindowsTest, whatIsNoAnswerIsNone) {
    for (const char* text : {"", "{", "{}", "unknown request"}) {
        EXPECT_FALSE(windowsOfHyprland(text, kMonitors));
        EXPECT_FALSE(windowsOfHyprland("[]", text));
    }
}

} // namespace
} // namespace framora
