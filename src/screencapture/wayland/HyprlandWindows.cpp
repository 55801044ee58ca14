#include "screencapture/wayland/HyprlandWindows.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <set>
#include <tuple>

namespace framora {

namespace {

using nlohmann::json;

constexpr std::size_t kMostBytes = std::size_t{16} << 20;
constexpr std::chrono::seconds kPatience{1};
constexpr std::int64_t kFarthest = 1'000'000;

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string socketPath() {
    const std::string instance = variable("HYPRLAND_INSTANCE_SIGNATURE");
    const std::string folder = variable("XDG_RUNTIME_DIR");
    if (instance.empty() || folder.empty())
        return {};
    return folder + "/hypr/" + instance + "/.socket.sock";
}

const json* member(const json& object, const char* name) {
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(name);
    return found == object.end() ? nullptr : &*found;
}

std::optional<std::int64_t> number(const json* value) {
    if (!value || !value->is_number_integer())
        return std::nullopt;
    return value->get<std::int64_t>();
}

bool isTrue(const json& object, const char* name) {
    const json* value = member(object, name);
    return value && value->is_boolean() && value->get<bool>();
}

/// Older versions say yes or no, newer ones how.
bool isFullScreen(const json& client) {
    return isTrue(client, "fullscreen") || number(member(client, "fullscreen")).value_or(0) != 0;
}

std::optional<std::int64_t> idOf(const json& object, const char* name) {
    const json* inner = member(object, name);
    return inner ? number(member(*inner, "id")) : std::nullopt;
}

std::optional<std::pair<int, int>> pairOf(const json& object, const char* name) {
    const json* list = member(object, name);
    if (!list || !list->is_array() || list->size() != 2)
        return std::nullopt;
    const auto first = number(&(*list)[0]);
    const auto second = number(&(*list)[1]);
    const auto sensible = [](const auto& n) { return n && *n >= -kFarthest && *n <= kFarthest; };
    if (!sensible(first) || !sensible(second))
        return std::nullopt;
    return std::pair(static_cast<int>(*first), static_cast<int>(*second));
}

struct Client {
    bool special = false;
    bool tiled = false;
    std::int64_t sinceFocus = 0; ///< 0 for the one that has it
    Rect box;
};

} // namespace

HyprlandWindows::HyprlandWindows()
    : m_clients(socketPath(), "j/clients"), m_monitors(socketPath(), "j/monitors") {}

std::optional<WindowStack> HyprlandWindows::windows() {
    if (!m_read) {
        m_read = true;
        const auto end = std::chrono::steady_clock::now() + kPatience;
        const std::string clients = m_clients.readToEnd(kMostBytes, end);
        m_windows = windowsOfHyprland(clients, m_monitors.readToEnd(kMostBytes, end));
    }
    return m_windows;
}

std::optional<WindowStack> windowsOfHyprland(std::string_view clientsText, std::string_view monitorsText) {
    const json clients = json::parse(clientsText, nullptr, false);
    const json monitors = json::parse(monitorsText, nullptr, false);
    if (!clients.is_array() || !monitors.is_array())
        return std::nullopt;
    std::set<std::int64_t> shown;
    std::set<std::int64_t> special;
    for (const json& monitor : monitors) {
        if (const auto id = idOf(monitor, "activeWorkspace"))
            shown.insert(*id);
        if (const auto id = idOf(monitor, "specialWorkspace"); id && *id != 0)
            special.insert(*id);
    }
    std::vector<Client> visible;
    for (const json& client : clients) {
        const auto workspace = idOf(client, "workspace");
        const auto at = pairOf(client, "at");
        const auto size = pairOf(client, "size");
        if (!workspace || !at || !size || !isTrue(client, "mapped") || isTrue(client, "hidden"))
            continue;
        const bool onSpecial = special.contains(*workspace);
        if (!onSpecial && !shown.contains(*workspace) && !isTrue(client, "pinned"))
            continue;
        visible.push_back({onSpecial,
                           !isTrue(client, "floating") && !isFullScreen(client),
                           number(member(client, "focusHistoryID")).value_or(INT64_MAX),
                           {at->first, at->second, size->first, size->second}});
    }
    std::stable_sort(visible.begin(), visible.end(), [](const Client& a, const Client& b) {
        return std::tuple(a.special, !a.tiled, b.sinceFocus) < std::tuple(b.special, !b.tiled, a.sinceFocus);
    });
    WindowStack stack;
    for (const Client& client : visible)
        stack.add(client.box);
    return stack;
}

} // namespace framora
