// SPDX-License-Identifier: MIT
// The rarer waits of hosts in virtual time. The checks themselves are in wait_probe.c and
// cxx_probe.cpp.
#include "tests/sim/process.h"

#include <gtest/gtest.h>

namespace {

using namespace ux::sim::test;

using words = std::vector<std::string>;

words command(const words &options, const words &host) {
    words line = {UX_SIM, "--headless", "--virtual-time", "--size", "64x32"};
    line.insert(line.end(), options.begin(), options.end());
    line.push_back("--");
    line.insert(line.end(), host.begin(), host.end());
    return line;
}

void expect_to_hold(const words &host) {
    program free_run(command({}, host));
    EXPECT_EQ(free_run.wait(), 0);
    EXPECT_EQ(free_run.err(), "");
    program played(command({"--script", "-"}, host), {}, "wait exit within 3600000\n");
    EXPECT_EQ(played.wait(), 0);
    EXPECT_EQ(played.err(), "");
}

class wait_probe : public ::testing::TestWithParam<const char *> {};

TEST_P(wait_probe, holds_without_a_script_and_with_one) {
    expect_to_hold({WAIT_PROBE, GetParam()});
}

INSTANTIATE_TEST_SUITE_P(
    virtual_time, wait_probe,
    ::testing::Values("constructors_live_by_the_clock", "wrong_timeouts_are_refused",
                      "extreme_timeouts_end_or_last", "timed_locks_and_joins",
                      "a_lock_goes_to_who_waits", "a_checked_mutex_tells_its_owner",
                      "cancellation_may_be_put_off",
                      "reading_goes_on_after_handlers_that_ask_for_it", "signals_can_be_fetched",
                      "masks_of_waits_let_pending_signals_through", "every_epoll_waits",
                      "receiving_from_another_thread", "servers_do_not_hold_the_clock",
                      "a_removed_queue_is_told_to_who_waits",
                      "pipes_in_other_folders_are_waited_for"),
    [](const auto &one) { return std::string(one.param); });

class cxx_probe : public ::testing::TestWithParam<const char *> {};

TEST_P(cxx_probe, holds_without_a_script_and_with_one) {
    expect_to_hold({CXX_PROBE, GetParam()});
}

INSTANTIATE_TEST_SUITE_P(virtual_time, cxx_probe,
                         ::testing::Values("conditions", "timed_mutexes", "futures", "atomics",
                                           "latches_and_barriers", "semaphores",
                                           "static_variables"),
                         [](const auto &one) { return std::string(one.param); });

TEST(virtual_waits, hosts_that_wait_for_a_signal_end_when_asked) {
    for (const char *check : {"pauses_until_asked_to_end", "waits_for_the_signal_to_end"}) {
        program sim(command({"--script", "-"}, {WAIT_PROBE, check}), {}, "wait 5000\nquit\n");
        EXPECT_EQ(sim.wait(), 0);
        EXPECT_EQ(sim.out(), "asked\n") << check;
        EXPECT_EQ(sim.err(), "") << check;
    }
}

TEST(virtual_waits, a_host_that_spins_is_ended_without_a_script_too) {
    program sim(command({"--stall", "1"}, {TIME_PROBE, "spin"}));
    EXPECT_EQ(sim.wait(), 1);
    EXPECT_EQ(sim.err().find("ux-sim: virtual time stood still for 1 s: thread "), 0u) << sim.err();
}

} // namespace
