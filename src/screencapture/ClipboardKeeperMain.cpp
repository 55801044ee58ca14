// framora-clipboard: takes the PNG on its standard input to the session's clipboard and leaves a process
// behind that serves it there, as the capture tool does. Exit 0 when it is there, 1 when not.

#include "screencapture/wayland/SessionClipboard.h"

#include <array>
#include <cstdio>
#include <exception>

int main() {
    try {
        std::vector<uint8_t> png;
        std::array<uint8_t, 1 << 16> part;
        while (const std::size_t count = std::fread(part.data(), 1, part.size(), stdin))
            png.insert(png.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(count));
        return !png.empty() && !std::ferror(stdin) && framora::leaveOnSessionClipboard(std::move(png)) ? 0
                                                                                                       : 1;
    } catch (const std::exception&) {
        return 1; // No memory for it.
    }
}
