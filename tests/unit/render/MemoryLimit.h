#pragma once

#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace framora {

/// Leaves this process so many bytes more than it has. For processes of a death test: there is no way back.
inline void limitMemoryTo(rlim_t more) {
    std::ifstream pages("/proc/self/statm");
    rlim_t used = 0;
    pages >> used;
    rlimit limit{};
    limit.rlim_cur = limit.rlim_max = used * rlim_t(sysconf(_SC_PAGESIZE)) + more;
    setrlimit(RLIMIT_AS, &limit);
}

} // namespace framora
