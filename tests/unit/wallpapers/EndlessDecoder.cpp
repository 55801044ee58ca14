#include <csignal>
#include <unistd.h>

// A decoder that keeps no bound and never ends by itself.
int main() {
    std::signal(SIGALRM, SIG_IGN);
    for (;;)
        pause();
}
