#include "screencapture/EndSignals.h"

#include <csignal>
#include <initializer_list>

namespace framora {

namespace {

void setAll(void (*action)(int)) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        std::signal(number, action);
}

} // namespace

void ignoreEndSignals() {
    setAll(SIG_IGN);
}

void obeyEndSignals() {
    setAll(SIG_DFL);
}

} // namespace framora
