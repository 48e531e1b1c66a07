// SPDX-License-Identifier: MIT
// Virtual time, seen by hosts and by scripts. The checks that run inside a host are in
// time_probe.c; the host with a picture is fb_host.c.
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

namespace {

using namespace ux::sim::test;

using words = std::vector<std::string>;

constexpr std::chrono::seconds k_quick{10}; // generous: the machine may be busy

words command(const words &options, const words &host) {
    words line = {UX_SIM, "--headless", "--virtual-time", "--size", "64x32"};
    line.insert(line.end(), options.begin(), options.end());
    line.push_back("--");
    line.insert(line.end(), host.begin(), host.end());
    return line;
}

class inside_a_host : public ::testing::TestWithParam<const char *> {};

TEST_P(inside_a_host, holds_without_a_script_and_with_one) {
    program free_run(command({}, {TIME_PROBE, GetParam()}));
    EXPECT_EQ(free_run.wait(), 0);
    EXPECT_EQ(free_run.err(), "");
    program played(command({"--script", "-"}, {TIME_PROBE, GetParam()}), {},
                   "wait exit within 3600000\n");
    const std::string check = GetParam();
    if (check != "sleeps" && check != "children_live_in_real_time") { // longer than a script waits
        EXPECT_EQ(played.wait(), 0);
        EXPECT_EQ(played.err(), "");
    }
}

INSTANTIATE_TEST_SUITE_P(virtual_time, inside_a_host,
                         ::testing::Values("clocks", "sleeps", "timed_waits", "timed_locks",
                                           "two_threads", "reading_waits_for_another_thread",
                                           "named_pipes_wait_for_their_other_end",
                                           "receiving_waits_for_a_message", "locks_are_waited_for",
                                           "conditions_pass_the_turn", "busy_waits_end",
                                           "cancelled_threads_end", "many_threads_come_and_go",
                                           "main_thread_may_leave", "signals_end_waits",
                                           "children_live_in_real_time"),
                         [](const auto &one) { return std::string(one.param); });

class virtual_time : public ::testing::Test {
  protected:
    void play(const std::string &script, const words &host = {FB_HOST}, const words &options = {}) {
        words all = {"--script", "-", "--shots", m_shots.path()};
        all.insert(all.end(), options.begin(), options.end());
        program sim(command(all, host), m_environment, script);
        m_status = sim.wait();
        m_out = sim.out();
        m_err = sim.err();
    }

    rgb_picture shot(const std::string &name) const { return read_png(m_shots / name); }

    temp_folder m_runtime;
    temp_folder m_shots;
    variables m_environment = {{"XDG_RUNTIME_DIR", m_runtime.path()}};
    std::optional<int> m_status;
    std::string m_out;
    std::string m_err;
};

TEST_F(virtual_time, an_hour_of_a_main_loop_plays_in_seconds) {
    const auto begun = std::chrono::steady_clock::now();
    play("key ok\nwait 3600000\nshot hour.png\n");
    EXPECT_EQ(m_status, 0) << m_err;
    EXPECT_LT(std::chrono::steady_clock::now() - begun, k_quick);
    EXPECT_EQ(shot("hour.png").at(0, 0), 0x0017ffu);
}

TEST_F(virtual_time, a_day_s_sleep_takes_no_time) {
    const auto begun = std::chrono::steady_clock::now();
    program sim(command({}, {"sleep", "86400"}), m_environment);
    EXPECT_EQ(sim.wait(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, k_quick);
}

TEST_F(virtual_time, begins_at_the_given_date_in_utc) {
    for (const auto &[option, shown] :
         {std::pair("2031-02-28", "2031-02-28 00:00:00 UTC\n"),
          std::pair("1999-12-31T23:59", "1999-12-31 23:59:00 UTC\n"),
          std::pair("2024-02-29T01:02:03", "2024-02-29 01:02:03 UTC\n")}) {
        program sim(command({"--date", option}, {"date", "+%F %T %Z"}), m_environment);
        EXPECT_EQ(sim.wait(), 0);
        EXPECT_EQ(sim.out(), shown);
    }
}

TEST_F(virtual_time, a_script_s_steps_happen_at_their_moments) {
    // The picture of --blink changes with every pass: after n passes its box is 0x000000 + n.
    play("wait 995\nshot a.png\nwait 10\nshot b.png\nwait until 60000\nshot c.png\n",
         {FB_HOST, "--blink"});
    EXPECT_EQ(m_status, 0) << m_err;
    EXPECT_EQ(shot("a.png").at(0, 31), 99u);
    EXPECT_EQ(shot("b.png").at(0, 31), 100u);
    EXPECT_EQ(shot("c.png").at(0, 31), 6000u);
}

TEST_F(virtual_time, keys_and_touches_arrive) {
    play("wait still 40\nkey 40\nkey 41\ntouch 40 20\nwait still 60\nshot a.png\n");
    EXPECT_EQ(m_status, 0) << m_err;
    EXPECT_EQ(shot("a.png").at(0, 0), 0x0028ffu);
    EXPECT_EQ(shot("a.png").at(4, 0), 0x0029ffu);
    EXPECT_EQ(shot("a.png").at(40, 20), 0xffffffu);
}

TEST_F(virtual_time, an_empty_script_ends_the_run_at_once) {
    play("# nothing\n");
    EXPECT_EQ(m_status, 0) << m_err;
    play("", {TIME_PROBE, "spin"}, {"--timeout", "1"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: the run took longer than 1 s at the end of the script\n");
}

TEST_F(virtual_time, ten_thousand_keys_take_seconds) {
    std::string script;
    for (int key = 0; key < 10000; ++key) {
        script += "key " + std::to_string(key % 200) + "\n";
    }
    const auto begun = std::chrono::steady_clock::now();
    play(script + "wait still 60\nshot last.png\n");
    EXPECT_EQ(m_status, 0) << m_err;
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 3 * k_quick);
    // Sixteen boxes in a row of the screen, eight rows: the keys 0 to 127.
    EXPECT_EQ(shot("last.png").at(0, 0), 0x0000ffu);
    EXPECT_EQ(shot("last.png").at(60, 28), 0x007fffu);
}

TEST_F(virtual_time, a_late_start_is_waited_for) {
    play("key ok\nwait still 60\nshot late.png\n", {FB_HOST, "--start-late"});
    EXPECT_EQ(m_status, 0) << m_err;
    EXPECT_EQ(shot("late.png").at(0, 0), 0x0017ffu);
}

TEST_F(virtual_time, a_picture_that_never_rests_fails_the_wait) {
    play("wait still 500 within 800000\n", {FB_HOST, "--blink"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: (standard input):1: the picture was not still within 800000 ms "
                     "(wait still 500 within 800000)\n");
}

TEST_F(virtual_time, a_deaf_host_fails_its_key_after_ten_simulated_seconds) {
    play("key ok\n", {FB_HOST, "--deaf"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: (standard input):1: the host did not take the message within 10000 "
                     "ms (key ok)\n");
}

TEST_F(virtual_time, a_host_that_spins_is_told_apart_and_ended) {
    play("wait 10\n", {TIME_PROBE, "spin"}, {"--stall", "1"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err.find("ux-sim: virtual time stood still for 1 s: thread "), 0u) << m_err;
    EXPECT_NE(m_err.find(" of the host runs without ever sleeping or waiting\n"), std::string::npos)
        << m_err;
    EXPECT_EQ(m_runtime.names(), words{});
}

TEST_F(virtual_time, a_host_that_hangs_elsewhere_is_told_apart_and_ended) {
    play("wait 10\n", {TIME_PROBE, "hang"}, {"--stall", "1"});
    EXPECT_EQ(m_status, 1);
    EXPECT_NE(m_err.find(" of the host hangs in a call that virtual time does not know\n"),
              std::string::npos)
        << m_err;
    EXPECT_EQ(m_runtime.names(), words{});
}

TEST_F(virtual_time, a_killed_host_is_reported) {
    play("wait 10000\n", {TIME_PROBE, "killed"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: the host was ended by signal 9 (Killed) while line 1 (wait 10000) "
                     "was waiting\n");
    EXPECT_EQ(m_runtime.names(), words{});
}

TEST_F(virtual_time, a_killed_simulator_takes_the_host_along) {
    program sim(command({"--script", "-"}, {TIME_PROBE, "spin"}), m_environment, "wait 10\n");
    ASSERT_TRUE(eventually([&] {
        return sim.children().size() == 1 &&
               read_file("/proc/" + std::to_string(sim.children()[0]) + "/comm") == "time-probe\n";
    }));
    const pid_t host = sim.children().at(0);
    sim.signal(SIGKILL);
    EXPECT_EQ(sim.wait(), 128 + SIGKILL);
    EXPECT_TRUE(eventually([&] { return !is_alive(host); }));
}

TEST_F(virtual_time, the_limit_of_the_whole_run_is_real_time) {
    play("wait 10\n", {TIME_PROBE, "spin"}, {"--timeout", "1"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: the run took longer than 1 s at line 1 (wait 10)\n");
}

TEST_F(virtual_time, a_signal_ends_the_run_in_the_middle) {
    program sim(command({"--script", "-"}, {TIME_PROBE, "spin"}), m_environment, "wait 10\n");
    ASSERT_TRUE(eventually([&] { return !sim.children().empty(); }));
    sim.signal(SIGINT);
    EXPECT_EQ(sim.wait(), 128 + SIGINT);
    EXPECT_EQ(m_runtime.names(), words{});
}

TEST_F(virtual_time, a_host_started_by_another_program_keeps_the_clock) {
    play("wait exit within 3600000\n", {"env", "A=b", "sh", "-c", "exec sleep 1800"});
    EXPECT_EQ(m_status, 0) << m_err;
}

TEST_F(virtual_time, twenty_runs_on_a_busy_machine_give_the_same_shots) {
    const std::string script = "wait 123\nshot a.png\nkey 31\ntouch 30 10\nkey 32\nshot b.png\n"
                               "wait 1007\nkey 33\nwait 11\nshot c.png\nwait 60000\nshot d.png\n";
    std::vector<std::unique_ptr<temp_folder>> folders;
    std::vector<std::unique_ptr<program>> runs;
    for (int run = 0; run < 20; ++run) { // all at once
        folders.push_back(std::make_unique<temp_folder>());
        runs.push_back(std::make_unique<program>(
            command({"--script", "-", "--shots", folders.back()->path()}, {FB_HOST, "--blink"}),
            m_environment, script));
    }
    for (int run = 0; run < 20; ++run) {
        EXPECT_EQ(runs[run]->wait(), 0) << runs[run]->err();
        for (const char *name : {"a.png", "b.png", "c.png", "d.png"}) {
            const std::string first = read_file(*folders[0] / name);
            EXPECT_FALSE(first.empty());
            EXPECT_EQ(read_file(*folders[run] / name), first) << run << name;
        }
    }
}

} // namespace
