#include "screencapture/ReadySignal.h"

#include "screencapture/InheritedFile.h"

#include <cstdlib>
#include <unistd.h>

namespace framora {

void announceReady() {
    constexpr const char* kVariable = "FRAMORA_READY_FD";
    const int file = inheritedFile(kVariable);
    if (file < 0)
        return;
    // Also for code in a module: the number may soon belong to another file.
    unsetenv(kVariable);
    const char ready = 1;
    // A program that is gone has no use for it.
    [[maybe_unused]] const ssize_t written = write(file, &ready, 1);
    close(file);
}

} // namespace framora
