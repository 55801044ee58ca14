#include "screencapture/InheritedFile.h"

#include <charconv>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace framora {

int inheritedFile(const char* variable) {
    const char* value = std::getenv(variable);
    if (!value)
        return -1;
    const std::string_view text = value;
    int file = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), file);
    if (error != std::errc{} || end != text.data() + text.size() || file <= STDERR_FILENO)
        return -1;
    return fcntl(file, F_GETFD) < 0 ? -1 : file;
}

} // namespace framora
