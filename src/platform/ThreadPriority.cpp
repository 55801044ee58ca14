#include "platform/ThreadPriority.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace framora {

void lowerThreadPriority() {
    // On Linux both belong to the thread, told by its number, and are inherited.
    const auto thread = static_cast<id_t>(syscall(SYS_gettid));
    setpriority(PRIO_PROCESS, thread, 19);
    constexpr int whoIsAThread = 1;
    constexpr int bestEffort = 2 << 13;
    constexpr int lastLevel = 7;
    syscall(SYS_ioprio_set, whoIsAThread, int(thread), bestEffort | lastLevel);
}

} // namespace framora
