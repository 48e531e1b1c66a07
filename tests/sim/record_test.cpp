// SPDX-License-Identifier: MIT
// Sessions written down and played again, without a window. The host is fb_host.c: the n-th key k
// paints a 4x4 box at (4n, 0) in the colour 0x00kkff, a touch a white one where it touches.
#include "sim/recorder.h"
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <regex>
#include <sstream>

namespace {

using namespace ux::sim::test;

using words = std::vector<std::string>;

constexpr const char *k_head = "# Recorded by ux-sim --record; ux-sim --script plays it.\n";

words lines_of(const std::string &text) {
    std::istringstream stream(text);
    words lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class record_test : public ::testing::Test {
  protected:
    words command(const words &options, const words &host = {FB_HOST}) const {
        words line = {UX_SIM, "--headless", "--size", "64x32", "--shots", m_folder.path()};
        line.insert(line.end(), options.begin(), options.end());
        line.push_back("--");
        line.insert(line.end(), host.begin(), host.end());
        return line;
    }

    std::string recorded() const { return read_file(m_file); }

    temp_folder m_folder;
    std::string m_file = m_folder / "session.uxs";
};

TEST_F(record_test, a_played_script_is_recorded_with_its_times) {
    program sim(command({"--virtual-time", "--record", m_file, "--script", "-"}), {},
                "wait 1000\nkey ok\nwait until 5000\ntouch -3 20\nwait until 7000\nkey 77\n"
                "wait until 9000\n");
    EXPECT_EQ(sim.wait(), 0) << sim.err();
    // The host of the test receives at the moment of sending.
    EXPECT_EQ(recorded(), std::string(k_head) +
                              "wait until 1000\nkey ok\nwait until 5000\ntouch -3 20\n"
                              "wait until 7000\nkey 77\nwait until 9000\nquit\n");
}

TEST_F(record_test, a_recording_played_again_records_itself) {
    program first(command({"--virtual-time", "--record", m_file, "--script", "-"}), {},
                  "wait 777\nkey digit4\nkey up\ntouch 1 2\nwait 500\nkey 255\nwait 50\n");
    ASSERT_EQ(first.wait(), 0) << first.err();
    const std::string again = m_folder / "again.uxs";
    program second(command({"--virtual-time", "--record", again, "--script", m_file}));
    EXPECT_EQ(second.wait(), 0) << second.err();
    EXPECT_EQ(read_file(again), recorded());
}

TEST_F(record_test, what_ux_remote_sends_is_recorded_and_plays_to_the_same_picture) {
    temp_folder queue;
    program sim(
        command({"--record", m_file, "--queue-path", queue.path()}, {FB_HOST, "--exit-on", "23"}));
    ASSERT_TRUE(eventually([&] { return !sim.children().empty(); })); // the queue is there
    program remote(
        {UX_REMOTE, "--queue-path", queue.path(), "--pace", "100", "key", "digit4", "left"});
    EXPECT_EQ(remote.wait(), 0) << remote.err();
    ASSERT_TRUE(eventually([&] { return lines_of(recorded()).size() >= 5; })) << recorded();
    program touch({UX_REMOTE, "--queue-path", queue.path(), "touch", "30", "12"});
    EXPECT_EQ(touch.wait(), 0);
    ASSERT_TRUE(eventually([&] { return lines_of(recorded()).size() >= 7; })) << recorded();
    program ok({UX_REMOTE, "--queue-path", queue.path(), "key", "ok"});
    EXPECT_EQ(ok.wait(), 0);
    EXPECT_EQ(sim.wait(), 0) << sim.err();
    EXPECT_TRUE(std::regex_match(
        recorded(),
        std::regex("# [^\n]*\nwait until \\d+\nkey digit4\nwait until \\d+\nkey left\n"
                   "wait until \\d+\ntouch 30 12\nwait until \\d+\nkey ok\nwait exit\n")))
        << recorded();

    write_file(m_file, recorded() + "shot end.png\n");
    program again(command({"--virtual-time", "--script", m_file}, {FB_HOST, "--exit-on", "23"}));
    EXPECT_EQ(again.wait(), 0) << again.err();
    const rgb_picture end = read_png(m_folder / "end.png");
    EXPECT_EQ(end.at(0, 0), 0x0005ffu); // digit4
    EXPECT_EQ(end.at(4, 0), 0x0015ffu); // left
    EXPECT_EQ(end.at(30, 12), 0xffffffu);
}

TEST_F(record_test, an_interrupted_session_is_kept_with_its_end) {
    program sim(command({"--record", m_file, "--script", "-"}), {}, "key up\nwait 60000\n");
    ASSERT_TRUE(eventually([&] { return lines_of(recorded()).size() >= 3; }));
    sim.signal(SIGINT);
    EXPECT_EQ(sim.wait(), 128 + SIGINT);
    EXPECT_TRUE(std::regex_match(
        recorded(), std::regex("# [^\n]*\nwait until \\d+\nkey up\nwait until \\d+\nquit\n")))
        << recorded();
}

TEST_F(record_test, a_killed_session_keeps_its_keys) {
    program sim(command({"--record", m_file, "--script", "-"}), {}, "key up\nwait 60000\n");
    ASSERT_TRUE(eventually([&] { return lines_of(recorded()).size() >= 3; }));
    sim.signal(SIGKILL);
    EXPECT_EQ(sim.wait(), 128 + SIGKILL);
    EXPECT_TRUE(std::regex_match(recorded(), std::regex("# [^\n]*\nwait until \\d+\nkey up\n")))
        << recorded();
}

TEST_F(record_test, a_file_that_cannot_be_written_is_told_before_the_host_starts) {
    program sim(command({"--record", "/nowhere/file"}, {"touch", m_folder / "started"}));
    EXPECT_EQ(sim.wait(), 1);
    EXPECT_EQ(sim.err(), "ux-sim: cannot write the recording /nowhere/file: No such file or "
                         "directory\n");
    program full(command({"--record", "/dev/full"}, {"touch", m_folder / "started"}));
    EXPECT_EQ(full.wait(), 1);
    EXPECT_EQ(full.err(),
              "ux-sim: cannot write the recording /dev/full: No space left on device\n");
    EXPECT_EQ(m_folder.names(), words{});
}

TEST(recorder, every_message_becomes_a_step_or_a_comment) {
    using ux::sim::step_for;
    EXPECT_EQ(step_for(1, 23, 0, 0), "key ok");
    EXPECT_EQ(step_for(1, 1, 0, 0), "key digit0");
    EXPECT_EQ(step_for(1, 35, 9, 9), "key punctuation");
    EXPECT_EQ(step_for(1, 255, 0, 0), "key 255");
    EXPECT_EQ(step_for(1, 256, 0, 0), "# a message of kind 1 with key 256");
    EXPECT_EQ(step_for(1, -1, 0, 0), "# a message of kind 1 with key -1");
    EXPECT_EQ(step_for(2, 23, -5, 2147483647), "touch -5 2147483647");
    EXPECT_EQ(step_for(9, 1, 2, 3), "# a message of kind 9 with key 1");
}

} // namespace
