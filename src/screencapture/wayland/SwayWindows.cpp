#include "screencapture/wayland/SwayWindows.h"

#include "screencapture/wayland/SwayTree.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace framora {

namespace {

constexpr std::string_view kMagic = "i3-ipc";
constexpr uint32_t kTree = 4;
constexpr uint32_t kMostBytes = 32U << 20;
constexpr std::chrono::seconds kPatience{1};

/// In front of every message, in the machine's byte order: the magic word, then the length and the kind.
std::string headerOf(uint32_t length, uint32_t kind) {
    std::string header(kMagic);
    for (const uint32_t number : {length, kind}) {
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        header.append(bytes, sizeof bytes);
    }
    return header;
}

std::string socketPath() {
    const char* path = std::getenv("SWAYSOCK");
    return path ? path : "";
}

} // namespace

SwayWindows::SwayWindows() : m_question(socketPath(), headerOf(0, kTree)) {}

std::string SwayWindows::answer() const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    std::string header = headerOf(0, kTree);
    if (!m_question.asked() || !m_question.readExactly(header.data(), header.size(), end))
        return {};
    uint32_t length = 0;
    std::memcpy(&length, header.data() + kMagic.size(), sizeof length);
    if (header != headerOf(length, kTree) || length > kMostBytes)
        return {};
    std::string text(length, '\0');
    return m_question.readExactly(text.data(), length, end) ? text : std::string();
}

std::optional<WindowStack> SwayWindows::windows() {
    if (!m_read) {
        m_read = true;
        m_windows = windowsOfSwayTree(answer());
    }
    return m_windows;
}

} // namespace framora
