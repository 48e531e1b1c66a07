// SPDX-License-Identifier: MIT
// Whole runs: a host, a script, pictures, every way to end, and nothing left behind.
//
// The host is fb_host.c: 0x203040 all over; the n-th key k paints a 4x4 box at (4n, 0) in the
// colour 0x00kkff, a touch a white one where it touches.
#include "sim/input_queue.h"
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

namespace {

using namespace ux::sim::test;

using words = std::vector<std::string>;

words operator+(words one, const words &other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

// A run with a runtime folder of its own, so that leftovers show.
class run_test : public ::testing::Test {
  protected:
    words command(const words &options, const words &host = {FB_HOST}) const {
        return words{UX_SIM, "--headless", "--size", "64x32", "--shots", m_shots.path()} + options +
               words{"--"} + host;
    }

    // Runs to the end with `script` on standard input.
    void play(const std::string &script, const words &host = {FB_HOST}, const words &options = {}) {
        program sim(command(words{"--script", "-"} + options, host), m_environment, script);
        m_status = sim.wait();
        m_err = sim.err();
    }

    rgb_picture shot(const std::string &name) const { return read_png(m_shots / name); }

    // The queue of the run in progress, as its lock file tells.
    std::optional<int> queue_in_use() const {
        int id = -1;
        for (const std::string &name : m_runtime.names()) {
            std::string text = read_file(m_runtime / name + "/lock");
            if (std::sscanf(text.c_str(), "%d", &id) == 1) {
                return id;
            }
        }
        return std::nullopt;
    }

    static bool queue_exists(int id) {
        msqid_ds state{};
        return msgctl(id, IPC_STAT, &state) == 0;
    }

    void expect_nothing_left() const { EXPECT_EQ(m_runtime.names(), words{}); }

    temp_folder m_runtime;
    temp_folder m_shots;
    variables m_environment = {{"XDG_RUNTIME_DIR", m_runtime.path()}};
    std::optional<int> m_status;
    std::string m_err;
};

TEST_F(run_test, a_key_changes_pixels_and_shots_show_it) {
    play("wait still 40\nshot before.png\nkey ok\nkey 200\nkey digit5\nwait still 60\n"
         "shot after.png\n");
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(m_err, "");
    rgb_picture before = shot("before.png");
    EXPECT_EQ(before.width, 64);
    EXPECT_EQ(before.height, 32);
    EXPECT_EQ(before.at(0, 0), 0x203040u);
    EXPECT_EQ(before.at(63, 31), 0x203040u);
    rgb_picture after = shot("after.png");
    EXPECT_EQ(after.at(0, 0), 0x0017ffu);
    EXPECT_EQ(after.at(3, 3), 0x0017ffu);
    EXPECT_EQ(after.at(4, 0), 0x00c8ffu);
    EXPECT_EQ(after.at(8, 0), 0x0006ffu);
    EXPECT_EQ(after.at(12, 0), 0x203040u);
    EXPECT_EQ(after.at(0, 4), 0x203040u);
    EXPECT_EQ(m_shots.names(), (words{"after.png", "before.png"}));
    expect_nothing_left();
}

TEST_F(run_test, a_touch_arrives_at_its_pixel) {
    play("touch 40 20\nwait still 60\nshot touch.png");
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(shot("touch.png").at(40, 20), 0xffffffu);
    EXPECT_EQ(shot("touch.png").at(39, 20), 0x203040u);
    EXPECT_EQ(shot("touch.png").at(44, 20), 0x203040u);
}

TEST_F(run_test, rgb565_pixels_are_widened_in_shots) {
    play("key 31\nkey 255\nwait still 60\nshot narrow.png\n", {FB_HOST}, {"--format", "rgb565"});
    EXPECT_EQ(m_status, 0);
    // 31 = 00000 000000 11111; 255 = 00000 000111 11111; the ground 0x3040 = 00110 000010 00000
    EXPECT_EQ(shot("narrow.png").at(0, 0), 0x0000ffu);
    EXPECT_EQ(shot("narrow.png").at(4, 0), 0x001cffu);
    EXPECT_EQ(shot("narrow.png").at(8, 0), 0x310800u);
}

TEST_F(run_test, no_key_is_lost_however_many_follow_each_other) {
    std::string script;
    for (int key = 100; key < 140; ++key) {
        script += "key " + std::to_string(key) + "\n";
    }
    play(script + "wait still 60\nshot many.png\n");
    EXPECT_EQ(m_status, 0);
    rgb_picture many = shot("many.png");
    for (int n = 0; n < 40; ++n) { // sixteen boxes in a row of 64 pixels
        EXPECT_EQ(many.at(n % 16 * 4, n / 16 * 4), 0x0000ffu | (100u + n) << 8) << n;
    }
}

TEST_F(run_test, the_first_key_waits_for_a_host_that_starts_late) {
    play("key ok\nwait still 60\nshot late.png\n", {FB_HOST, "--start-late"});
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(shot("late.png").at(0, 0), 0x0017ffu);
}

TEST_F(run_test, a_blank_screen_of_a_starting_host_does_not_count_as_still) {
    play("wait still 40\nshot started.png\n", {FB_HOST, "--start-late"});
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(shot("started.png").at(0, 0), 0x203040u);
}

TEST_F(run_test, two_runs_at_once_do_not_disturb_each_other) {
    temp_folder other_shots;
    const std::string one = "wait still 40\nkey 40\nkey 41\nkey 42\nwait still 60\nshot a.png\n";
    const std::string two = "wait still 40\nkey 80\nkey 81\nkey 82\nwait still 60\nshot a.png\n";
    program first(command({"--script", "-"}), m_environment, one);
    program second(command({"--script", "-", "--shots", other_shots.path()}), m_environment, two);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.wait(), 0);
    rgb_picture left = shot("a.png");
    rgb_picture right = read_png(other_shots / "a.png");
    for (int n = 0; n < 3; ++n) {
        EXPECT_EQ(left.at(4 * n, 0), 0x0000ffu | (40u + n) << 8);
        EXPECT_EQ(right.at(4 * n, 0), 0x0000ffu | (80u + n) << 8);
    }
    EXPECT_EQ(left.at(12, 0), 0x203040u);
    EXPECT_EQ(right.at(12, 0), 0x203040u);
    expect_nothing_left();
}

TEST_F(run_test, wait_exit_is_content_with_status_0) {
    play("key ok\nwait exit\nshot last.png\n", {FB_HOST, "--exit-on", "23"});
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(shot("last.png").at(0, 0), 0x203040u);
    expect_nothing_left();
}

TEST_F(run_test, wait_exit_fails_for_another_status) {
    play("key ok\nwait exit\n", {FB_HOST, "--exit-on", "23", "--exit-status", "5"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: (standard input):2: the host ended with exit status 5 (wait exit)\n");
}

TEST_F(run_test, wait_exit_fails_when_the_host_stays) {
    play("wait exit within 50\n");
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: (standard input):1: the host did not end within 50 ms "
                     "(wait exit within 50)\n");
    expect_nothing_left();
}

TEST_F(run_test, a_crash_names_the_signal_and_the_line) {
    play("# crash\nkey ok\nwait still 5000\n", {FB_HOST, "--crash-on", "23"});
    EXPECT_EQ(m_status, 1);
    EXPECT_TRUE(m_err == "ux-sim: the host was ended by signal 11 (Segmentation fault) while line "
                         "3 (wait still 5000) was waiting\n" ||
                m_err == "ux-sim: the host was ended by signal 11 (Segmentation fault) while line "
                         "2 (key ok) was waiting\n")
        << m_err;
    expect_nothing_left();
}

TEST_F(run_test, an_early_end_is_a_failure_even_with_status_0) {
    play("wait 60000\n", {"true"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: the host ended with exit status 0 while line 1 (wait 60000) was "
                     "waiting\n");
}

TEST_F(run_test, a_picture_that_never_rests_fails_the_wait) {
    play("wait still 500 within 800\n", {FB_HOST, "--blink"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: (standard input):1: the picture was not still within 800 ms "
                     "(wait still 500 within 800)\n");
}

TEST_F(run_test, a_host_that_shows_nothing_fails_the_wait) {
    play("wait still 10 within 100\n", {"sleep", "60"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: (standard input):1: the host showed nothing and took no input within "
                     "100 ms (wait still 10 within 100)\n");
    expect_nothing_left();
}

TEST_F(run_test, the_whole_run_has_a_time_limit) {
    play("wait 60000\n", {FB_HOST}, {"--timeout", "1"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: the run took longer than 1 s at line 1 (wait 60000)\n");
    expect_nothing_left();
}

TEST_F(run_test, a_deaf_host_meets_the_time_limit_at_its_key) {
    play("key ok\n", {FB_HOST, "--deaf"}, {"--timeout", "1"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: the run took longer than 1 s at line 1 (key ok)\n");
}

TEST_F(run_test, a_host_that_ignores_the_request_to_end_is_killed) {
    play("wait still 40\nquit\n", {FB_HOST, "--stubborn"});
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(m_err, "ux-sim: the host did not end when asked to; killed\n");
    expect_nothing_left();
}

TEST_F(run_test, what_the_host_left_running_ends_with_the_run) {
    program sim(command({}, {FB_HOST, "--leave-child"}), m_environment);
    ASSERT_TRUE(eventually([&] { return sim.children().size() == 1; }));
    const std::string host = std::to_string(sim.children().at(0));
    int child = 0;
    ASSERT_TRUE(eventually([&] {
        std::string list = read_file("/proc/" + host + "/task/" + host + "/children");
        return std::sscanf(list.c_str(), "%d", &child) == 1;
    }));
    EXPECT_TRUE(is_alive(child));
    sim.signal(SIGTERM);
    EXPECT_EQ(sim.wait(), 128 + SIGTERM);
    EXPECT_TRUE(eventually([&] { return !is_alive(child); }));
    expect_nothing_left();
}

TEST_F(run_test, a_bad_script_stops_before_the_host_starts) {
    temp_folder folder;
    write_file(folder / "bad.script", "wait 1\nkey menu\n");
    program sim(command({"--script", folder / "bad.script"}, {"touch", folder / "started"}),
                m_environment);
    EXPECT_EQ(sim.wait(), 2);
    EXPECT_EQ(sim.err(), "ux-sim: " + folder / "bad.script" + ":2: no key is called 'menu'\n");
    EXPECT_EQ(folder.names(), words{"bad.script"});
}

TEST_F(run_test, bad_options_end_with_status_2) {
    program sim({UX_SIM, "--frobnicate", "true"}, m_environment);
    EXPECT_EQ(sim.wait(), 2);
    EXPECT_EQ(sim.err(), "ux-sim: unknown option or stray argument in '--frobnicate'; see ux-sim "
                         "--help\n");
}

TEST_F(run_test, a_missing_host_is_reported_as_shells_do) {
    program sim(command({}, {"/nowhere/host"}), m_environment);
    EXPECT_EQ(sim.wait(), 127);
    EXPECT_EQ(sim.err(), "ux-sim: cannot start /nowhere/host: No such file or directory\n");
    program folder(command({}, {"/tmp"}), m_environment);
    EXPECT_EQ(folder.wait(), 126);
    EXPECT_EQ(folder.err(), "ux-sim: cannot start /tmp: Permission denied\n");
    expect_nothing_left();
}

TEST_F(run_test, without_a_script_the_host_s_status_is_the_run_s) {
    program sim(command({}, {"sh", "-c", "echo out; echo err >&2; exit 9"}), m_environment);
    EXPECT_EQ(sim.wait(), 9);
    EXPECT_EQ(sim.out(), "out\n");
    EXPECT_EQ(sim.err(), "err\n");
    program killed(command({}, {"sh", "-c", "kill -ABRT $$"}), m_environment);
    EXPECT_EQ(killed.wait(), 128 + SIGABRT);
    EXPECT_EQ(killed.err(), "ux-sim: the host was ended by signal 6 (Aborted)\n");
}

TEST_F(run_test, the_shim_s_path_may_be_given_and_may_hold_blanks) {
    temp_folder folder;
    std::filesystem::create_directory(folder / "a b");
    std::filesystem::copy_file(UX_SIM_SHIM_FILE, folder / "a b/shim.so");
    m_environment.emplace_back("UX_SIM_SHIM", folder / "a b/shim.so");
    play("wait still 40\nshot blank.png\n");
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(shot("blank.png").at(0, 0), 0x203040u);
    expect_nothing_left();
    m_environment.back().second = "/nowhere/shim.so";
    play("quit\n");
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err,
              "ux-sim: cannot use UX_SIM_SHIM /nowhere/shim.so: No such file or directory\n");
}

TEST_F(run_test, an_installed_program_finds_its_shim) {
    temp_folder prefix;
    std::filesystem::create_directories(prefix / "bin");
    std::filesystem::create_directories(prefix / UX_SIM_LIBDIR "/ux");
    std::filesystem::copy_file(UX_SIM, prefix / "bin/ux-sim");
    std::filesystem::copy_file(UX_SIM_SHIM_FILE, prefix / UX_SIM_LIBDIR "/ux/libux-sim-shim.so");
    program sim({prefix / "bin/ux-sim", "--headless", "--script", "-", "--", FB_HOST},
                m_environment, "wait still 40\n");
    EXPECT_EQ(sim.wait(), 0);
    EXPECT_EQ(sim.err(), "");
}

TEST_F(run_test, a_shot_that_cannot_be_written_is_a_failure) {
    temp_folder folder;
    write_file(folder / "file", "");
    play("shot a.png\n", {FB_HOST}, {"--shots", folder / "file/below"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err,
              "ux-sim: cannot make the folder " + folder / "file/below" + ": Not a directory\n");
    std::filesystem::create_directory(folder / "taken.png");
    play("shot taken.png\n", {FB_HOST}, {"--shots", folder.path()});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: cannot write " + folder / "taken.png" + ": Is a directory\n");
    EXPECT_EQ(folder.names(), (words{"file", "taken.png"}));
}

TEST_F(run_test, verbose_tells_queue_path_folder_and_shots) {
    temp_folder queue;
    play("shot a.png\n", {FB_HOST}, {"--verbose", "--queue-path", queue.path()});
    EXPECT_EQ(m_status, 0);
    const std::string first = "ux-sim: queue path " + queue.path() + "\nux-sim: for ux-view /";
    const std::string last = "\nux-sim: shot " + m_shots / "a.png" + "\n";
    EXPECT_TRUE(m_err.starts_with(first)) << m_err;
    EXPECT_TRUE(m_err.ends_with(last)) << m_err;
    EXPECT_EQ(std::ranges::count(m_err, '\n'), 3);
}

TEST_F(run_test, a_signal_ends_host_folder_and_queue) {
    for (int number : {SIGTERM, SIGINT, SIGHUP}) {
        program sim(command({"--script", "-"}), m_environment, "wait 60000\n");
        ASSERT_TRUE(eventually([&] { return queue_in_use() && !sim.children().empty(); }));
        const int queue = queue_in_use().value();
        const pid_t host = sim.children().at(0);
        EXPECT_TRUE(queue_exists(queue));
        sim.signal(number);
        EXPECT_EQ(sim.wait(), 128 + number);
        EXPECT_FALSE(queue_exists(queue));
        EXPECT_FALSE(is_alive(host));
        expect_nothing_left();
    }
}

// The process that has a file open, and is not `but`.
std::optional<pid_t> holder_of(const std::string &path, pid_t but) {
    std::error_code ignored;
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        const pid_t pid = std::atoi(entry.path().filename().c_str());
        for (const auto &fd : std::filesystem::directory_iterator(entry.path() / "fd", ignored))
            if (pid != 0 && pid != but &&
                std::filesystem::read_symlink(fd.path(), ignored).string() == path)
                return pid;
    }
    return std::nullopt;
}

TEST_F(run_test, a_simulator_killed_with_its_guard_leaves_the_cleaning_to_the_next_run) {
    program sim(command({}), m_environment);
    ASSERT_TRUE(eventually([&] { return queue_in_use() && !sim.children().empty(); }));
    const int queue = queue_in_use().value();
    const pid_t host = sim.children().at(0);
    ASSERT_TRUE(eventually([&] { // the shim is in place once the host has made its pipe
        return std::filesystem::exists(m_runtime / m_runtime.names().at(0) + "/event");
    }));
    std::optional<pid_t> guard;
    ASSERT_TRUE(eventually([&] {
        guard = holder_of(m_runtime / m_runtime.names().at(0) + "/lock", sim.pid());
        return guard.has_value();
    }));
    kill(*guard, SIGKILL);
    EXPECT_TRUE(eventually([&] { return !is_alive(*guard); }));
    sim.signal(SIGKILL);
    EXPECT_EQ(sim.wait(), 128 + SIGKILL);
    EXPECT_TRUE(eventually([&] { return !is_alive(host); }));
    EXPECT_EQ(m_runtime.names().size(), 1u);
    EXPECT_TRUE(queue_exists(queue));

    play("quit\n");
    EXPECT_EQ(m_status, 0);
    EXPECT_FALSE(queue_exists(queue));
    expect_nothing_left();
}

TEST_F(run_test, a_sweep_leaves_living_runs_alone) {
    program sim(command({"--script", "-"}), m_environment, "wait 60000\n");
    ASSERT_TRUE(eventually([&] { return queue_in_use().has_value(); }));
    const int queue = queue_in_use().value();
    play("quit\n");
    EXPECT_EQ(m_status, 0);
    EXPECT_TRUE(queue_exists(queue));
    EXPECT_EQ(m_runtime.names().size(), 1u);
}

TEST_F(run_test, a_queue_in_use_is_refused) {
    temp_folder folder;
    auto taken = ux::sim::owned_queue::create(ux::sim::queue_key(folder.path()));
    ASSERT_TRUE(taken);
    play("quit\n", {FB_HOST}, {"--queue-path", folder.path()});
    EXPECT_EQ(m_status, 1);
    EXPECT_TRUE(m_err.starts_with("ux-sim: the input queue of " + folder.path() + " is in use"))
        << m_err;
    EXPECT_TRUE(queue_exists(taken->id()));
    play("quit\n", {FB_HOST}, {"--queue-path", "/nowhere"});
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: cannot name a queue by /nowhere: No such file or directory\n");
    expect_nothing_left();
}

} // namespace
