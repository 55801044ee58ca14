#include "platform/desktop/TerminationSignals.h"

#include <QCoreApplication>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace framora {

namespace {

int pipeEnds[2] = {-1, -1};

void wake(int) {
    const int interrupted = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
    errno = interrupted;
}

} // namespace

TerminationSignals::TerminationSignals() {
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = wake;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
}

} // namespace framora
