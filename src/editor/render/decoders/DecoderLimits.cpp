#include "editor/render/decoders/DecoderLimits.h"

#include <algorithm>
#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace framora {
namespace {

void limit(__rlimit_resource resource, rlim_t most) {
    rlimit bound{};
    if (getrlimit(resource, &bound) != 0)
        return;
    bound.rlim_max = std::min(bound.rlim_max, most);
    bound.rlim_cur = std::min(bound.rlim_cur, most);
    setrlimit(resource, &bound);
}

} // namespace

void limitDecoder(unsigned seconds, unsigned mebibytes) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, rlim_t(1) << 30);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // their shadow is larger than any bound
    limit(RLIMIT_DATA, rlim_t(mebibytes) << 20);
#else
    static_cast<void>(mebibytes);
#endif
    std::signal(SIGALRM, SIG_DFL);
    sigset_t alarmSignal;
    sigemptyset(&alarmSignal);
    sigaddset(&alarmSignal, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &alarmSignal, nullptr);
    alarm(seconds);
}

int decoderThreads() {
    return int(std::clamp(std::thread::hardware_concurrency(), 1u, 4u));
}

} // namespace framora
