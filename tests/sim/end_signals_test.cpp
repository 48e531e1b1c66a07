// SPDX-License-Identifier: MIT
// Ending by a signal.
#include "tools/end_signals.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

constexpr unsigned k_limit_s = 10;

TEST(EndSignals, AreTakenWhoeverHadBlockedThemBefore) {
    const auto wait_for_it = [] {
        alarm(k_limit_s);
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGTERM);
        sigprocmask(SIG_BLOCK, &blocked, nullptr);
        const sigset_t mask = ux::sim::hold_end_signals();
        raise(SIGTERM);
        sigsuspend(&mask);
        std::_Exit(ux::sim::end_signal());
    };
    EXPECT_EXIT(wait_for_it(), testing::ExitedWithCode(SIGTERM), "");
}

} // namespace
