// SPDX-License-Identifier: MIT
// One flag for all of them.
#include "tools/end_signals.h"

#include <array>

namespace ux::sim {

namespace {

constexpr std::array<int, 3> k_ending = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t s_end_signal = 0;

void on_signal(int number) {
    s_end_signal = number;
}

} // namespace

sigset_t hold_end_signals() {
    sigset_t ending;
    sigset_t before;
    sigemptyset(&ending);
    struct sigaction action {};
    action.sa_handler = on_signal;
    for (const int number : k_ending) {
        sigaddset(&ending, number);
        sigaction(number, &action, nullptr);
    }
    sigprocmask(SIG_BLOCK, &ending, &before);
    for (const int number : k_ending) {
        sigdelset(&before, number); // whoever started the program may have blocked it
    }
    std::signal(SIGPIPE, SIG_IGN);
    return before;
}

int end_signal() {
    return s_end_signal;
}

} // namespace ux::sim
