#include "screencapture/wayland/SwayTree.h"

#include <cstdint>
#include <nlohmann/json.hpp>

namespace framora {

namespace {

using nlohmann::json;

// Deeper than anybody nests containers.
constexpr int kDeepest = 100;
constexpr std::int64_t kFarthest = 1'000'000;

std::string_view textOf(const json& node, const char* member) {
    const auto found = node.find(member);
    return found != node.end() && found->is_string() ? std::string_view(found->get_ref<const std::string&>())
                                                     : std::string_view{};
}

bool trueIn(const json& node, const char* member) {
    const auto found = node.find(member);
    return found != node.end() && found->is_boolean() && found->get<bool>();
}

/// An empty box when the member is missing or makes no sense.
Rect boxOf(const json& node, const char* member) {
    const auto found = node.find(member);
    if (found == node.end() || !found->is_object())
        return {};
    Rect box;
    const std::pair<const char*, int*> sides[] = {
        {"x", &box.x}, {"y", &box.y}, {"width", &box.width}, {"height", &box.height}};
    for (const auto& [name, side] : sides) {
        const auto value = found->find(name);
        if (value == found->end() || !value->is_number_integer())
            return {};
        const auto number = value->get<std::int64_t>();
        if (number < -kFarthest || number > kFarthest)
            return {};
        *side = static_cast<int>(number);
    }
    return box.empty() ? Rect{} : box;
}

class Walk {
public:
    /// `parent` is the box of the container around the node.
    void visit(const json& node, const Rect& parent, int depth) {
        if (!node.is_object() || depth > kDeepest)
            return;
        const Rect box = boxOf(node, "rect");
        if (node.contains("pid") && trueIn(node, "visible"))
            found(node, box, parent);
        children(node, "nodes", box, depth);
        // Above what is tiled, the last one topmost.
        children(node, "floating_nodes", box, depth);
    }

    WindowStack stacked() const {
        WindowStack stack;
        for (const Rect& window : m_windows)
            stack.add(window);
        for (const Rect& window : m_fullScreen)
            stack.add(window);
        // Of a window that fills the screen, only its own dialogs are to be seen beside it.
        for (const Rect& window : m_overFullScreen)
            stack.add(window);
        return stack;
    }

private:
    void children(const json& node, const char* member, const Rect& box, int depth) {
        const auto list = node.find(member);
        if (list != node.end() && list->is_array())
            for (const json& child : *list)
                visit(child, box, depth + 1);
    }

    void found(const json& node, const Rect& box, const Rect& parent) {
        const auto mode = node.find("fullscreen_mode");
        if (mode != node.end() && mode->is_number_integer() && mode->get<std::int64_t>() != 0) {
            m_fullScreen.push_back(box);
            return;
        }
        Rect title = boxOf(node, "deco_rect").translated(parent.x, parent.y);
        const bool own = title.x == box.x && title.width == box.width && title.bottom() == box.y;
        const Rect window = own ? box.united(title) : box;
        if (textOf(node, "type") == "floating_con" && !m_fullScreen.empty())
            m_overFullScreen.push_back(window);
        else
            m_windows.push_back(window);
    }

    std::vector<Rect> m_windows;
    std::vector<Rect> m_fullScreen;
    std::vector<Rect> m_overFullScreen;
};

} // namespace

std::optional<WindowStack> windowsOfSwayTree(std::string_view text) {
    const json tree = json::parse(text, nullptr, false);
    if (!tree.is_object() || textOf(tree, "type") != "root")
        return std::nullopt;
    Walk walk;
    walk.visit(tree, {}, 0);
    return walk.stacked();
}

} // namespace framora
