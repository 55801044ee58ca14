#include "screencapture/PictureHandover.h"

#include "screencapture/InheritedFile.h"

#include <cerrno>
#include <unistd.h>

namespace framora {

bool handToProgram(std::span<const uint8_t> png) {
    const int file = inheritedFile("FRAMORA_PICTURE_FD");
    if (file < 0)
        return false;
    while (!png.empty()) {
        const ssize_t count = write(file, png.data(), png.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            // Nothing rather than half a picture.
            [[maybe_unused]] const int emptied = ftruncate(file, 0);
            return false;
        }
        png = png.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace framora
