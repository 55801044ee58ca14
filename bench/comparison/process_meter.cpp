// process_meter [--one-core] COMMAND ARGUMENT...: runs a command with its output thrown away and prints, on
// one line, its wall time in nanoseconds, the largest resident memory of it and its children in KiB, and its
// exit status. It is small, so that what it forks does not count its own memory.

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void keepToOneCore() {
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0)
        return;
    cpu_set_t one;
    CPU_ZERO(&one);
    for (int i = CPU_SETSIZE - 1; i >= 0; --i)
        if (CPU_ISSET(i, &allowed)) {
            CPU_SET(i, &one);
            break;
        }
    sched_setaffinity(0, sizeof one, &one);
}

[[noreturn]] void become(char** command) {
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    execvp(command[0], command);
    _exit(127);
}

} // namespace

int main(int argc, char** argv) {
    int first = 1;
    if (argc > 1 && std::strcmp(argv[1], "--one-core") == 0) {
        keepToOneCore();
        first = 2;
    }
    if (first >= argc) {
        std::fprintf(stderr, "usage: process_meter [--one-core] COMMAND ARGUMENT...\n");
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child < 0) {
        std::perror("process_meter");
        return 1;
    }
    if (child == 0)
        become(argv + first);
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    const auto elapsed = std::chrono::steady_clock::now() - start;
    // Its children count when it has waited for them.
    std::printf("%lld %ld %d\n",
                static_cast<long long>(std::chrono::duration_cast<std::chrono::nanoseconds>(elapsed).count()),
                usage.ru_maxrss, WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    return 0;
}
