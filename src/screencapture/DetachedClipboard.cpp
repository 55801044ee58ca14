#include "screencapture/DetachedClipboard.h"

#include "screencapture/EndSignals.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <malloc.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace framora {

namespace {

constexpr int kOwnPatience = 5000; // ms

/// Away from the terminal, the folder and every file of the process that started the tool.
int leaveTheParent(int report) {
    setsid();
    if (chdir("/") != 0)
        return -1;
    constexpr int kReport = 3;
    if (report != kReport && dup2(report, kReport) < 0)
        return -1;
    const int nothing = open("/dev/null", O_RDWR);
    if (nothing < 0)
        return -1;
    for (int standard = 0; standard < kReport; ++standard)
        dup2(nothing, standard);
    // The tool's connection among them, which would go on being the one open capture.
    closefrom(kReport + 1);
    obeyEndSignals();
    signal(SIGPIPE, SIG_IGN);
    signal(SIGHUP, SIG_IGN); // The terminal may go.
    return kReport;
}

[[noreturn]] void serve(std::vector<uint8_t> png, const ClipboardOwnerMaker& make,
                        const std::function<void()>& letGo, int pipeEnd) {
    const int report = leaveTheParent(pipeEnd);
    if (report < 0)
        _exit(1);
    if (letGo)
        letGo();
    malloc_trim(0);
    const auto owner = make(std::move(png));
    if (!owner || !owner->own())
        _exit(1);
    const char owned = 1;
    // Also where the tool was killed and nobody hears it: the picture is on the clipboard.
    [[maybe_unused]] const ssize_t told = write(report, &owned, 1);
    close(report);
    owner->run();
    _exit(0);
}

bool readOne(int pipeEnd) {
    pollfd waiting{pipeEnd, POLLIN, 0};
    int ready = 0;
    do
        ready = poll(&waiting, 1, kOwnPatience);
    while (ready < 0 && errno == EINTR);
    char owned = 0;
    return ready > 0 && read(pipeEnd, &owned, 1) == 1;
}

} // namespace

bool leaveOnClipboard(std::vector<uint8_t> png, const ClipboardOwnerMaker& make,
                      const std::function<void()>& letGo) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        serve(std::move(png), make, letGo, ends[1]);
    }
    close(ends[1]);
    const bool owned = child > 0 && readOne(ends[0]);
    close(ends[0]);
    if (!owned && child > 0) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
    return owned;
}

} // namespace framora
