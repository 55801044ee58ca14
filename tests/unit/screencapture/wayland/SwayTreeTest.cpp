#include "screencapture/wayland/SwayTree.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

std::string box(int x, int y, int width, int height) {
    return "{\"x\":" + std::to_string(x) + ",\"y\":" + std::to_string(y) +
           ",\"width\":" + std::to_string(width) + ",\"height\":" + std::to_string(height) + "}";
}

struct Window {
    std::string rect;
    std::string title = box(0, 0, 0, 0);
    bool visible = true;
    int fullScreen = 0;
    const char* type = "con";
};

std::string text(const Window& w) {
    return std::string("{\"type\":\"") + w.type + "\",\"rect\":" + w.rect + ",\"deco_rect\":" + w.title +
           ",\"pid\":12,\"visible\":" + (w.visible ? "true" : "false") +
           ",\"fullscreen_mode\":" + std::to_string(w.fullScreen) + ",\"nodes\":[],\"floating_nodes\":[]}";
}

std::string list(const std::vector<Window>& windows) {
    std::string all;
    for (const Window& window : windows)
        all += (all.empty() ? "" : ",") + text(window);
    return "[" + all + "]";
}

std::string tree(const std::vector<Window>& tiled, const std::vector<Window>& floating,
                 const std::string& workspace = box(0, 0, 1000, 800)) {
    return "{\"type\":\"root\",\"rect\":" + box(0, 0, 1000, 800) +
           ",\"nodes\":[{\"type\":\"output\",\"rect\":" + box(0, 0, 1000, 800) +
           ",\"nodes\":[{\"type\":\"workspace\",\"fullscreen_mode\":1,\"rect\":" + workspace +
           ",\"nodes\":" + list(tiled) + ",\"floating_nodes\":" + list(floating) +
           "}],\"floating_nodes\":[]}],\"floating_nodes\":[]}";
}

std::vector<Rect> windowsOf(const std::string& json) {
    const auto stack = windowsOfSwayTree(json);
    EXPECT_TRUE(stack);
    return stack ? stack->windows() : std::vector<Rect>{};
}

TEST(SwayTreeTest, floatingWindowsStandAboveTiledOnesTheLastTopmost) {
    const auto stack = windowsOfSwayTree(tree({{box(0, 0, 500, 800)}, {box(500, 0, 500, 800)}},
                                              {{box(100, 100, 200, 200)}, {box(200, 200, 200, 200)}}));
    ASSERT_TRUE(stack);
    EXPECT_EQ(stack->windows(),
              (std::vector<Rect>{
                  {0, 0, 500, 800}, {500, 0, 500, 800}, {100, 100, 200, 200}, {200, 200, 200, 200}}));
    EXPECT_EQ(stack->at({250, 250}), 3);
    EXPECT_EQ(stack->at({150, 150}), 2);
    EXPECT_EQ(stack->at({600, 10}), 1);
    EXPECT_EQ(stack->at({-1, 10}), -1);
    int visible = 0;
    for (const Rect& part : stack->inView(2))
        visible += part.width * part.height;
    EXPECT_EQ(visible, 200 * 200 - 100 * 100);
}

TEST(SwayTreeTest, aTitleBarOfItsOwnBelongsToTheWindow) {
    // A bar is told from the corner of what the window stands in.
    EXPECT_EQ(windowsOf(tree({{box(10, 35, 980, 765), box(0, 0, 980, 25)}}, {}, box(10, 10, 980, 790))),
              (std::vector<Rect>{{10, 10, 980, 790}}));
}

TEST(SwayTreeTest, oneTabAmongOthersDoesNot) {
    EXPECT_EQ(windowsOf(tree({{box(0, 25, 1000, 775), box(0, 0, 500, 25)},
                              {box(0, 25, 1000, 775), box(500, 0, 500, 25), false}},
                             {})),
              (std::vector<Rect>{{0, 25, 1000, 775}}));
}

TEST(SwayTreeTest, hiddenWindowsAreNone) {
    EXPECT_TRUE(windowsOf(tree({{box(0, 0, 100, 100), box(0, 0, 0, 0), false}}, {})).empty());
}

TEST(SwayTreeTest, aFullScreenWindowCoversAllButItsOwnDialogs) {
    EXPECT_EQ(windowsOf(tree({{box(0, 0, 500, 800)}, {box(0, 0, 1000, 800), box(0, 0, 0, 0), true, 1}},
                             {{box(100, 100, 200, 200), box(0, 0, 0, 0), true, 0, "floating_con"}})),
              (std::vector<Rect>{{0, 0, 500, 800}, {0, 0, 1000, 800}, {100, 100, 200, 200}}));
}

TEST(SwayTreeTest, whatIsNoTreeIsNoAnswer) {
    for (const char* json : {"", "{", "[]", "null", "12", "{\"type\":\"workspace\"}", "{\"type\":12}",
                             "{\"success\":false}", "\xff\xfe"})
        EXPECT_FALSE(windowsOfSwayTree(json)) << json;
}

TEST(SwayTreeTest, windowsThatMakeNoSenseAreLeftOut) {
    for (const std::string& bad :
         {box(0, 0, -5, 10), box(0, 0, 0, 0), std::string("[]"), std::string("{\"x\":1}"),
          std::string("{\"x\":1e300,\"y\":0,\"width\":10,\"height\":10}"),
          std::string("{\"x\":\"1\",\"y\":0,\"width\":10,\"height\":10}"),
          std::string("{\"x\":0,\"y\":0,\"width\":9223372036854775807,\"height\":10}"),
          std::string("{\"x\":0,\"y\":0,\"width\":18446744073709551615,\"height\":10}")})
        EXPECT_EQ(windowsOf(tree({{bad}, {box(1, 2, 3, 4)}}, {})), (std::vector<Rect>{{1, 2, 3, 4}})) << bad;
    // Members of other kinds than sway's.
    EXPECT_TRUE(windowsOf(R"({"type":"root","nodes":{"a":1},"floating_nodes":[1,"x",null,[],{}]})").empty());
}

TEST(SwayTreeTest, nothingIsTooDeep) {
    std::string deep = "{\"type\":\"root\",\"nodes\":";
    constexpr int kDepth = 100000;
    for (int i = 0; i < kDepth; ++i)
        deep += "[{\"nodes\":";
    deep += list({{box(1, 2, 3, 4)}});
    for (int i = 0; i < kDepth; ++i)
        deep += "}]";
    EXPECT_TRUE(windowsOf(deep + "}").empty());
}

} // namespace
} // namespace framora
