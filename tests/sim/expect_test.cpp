// SPDX-License-Identifier: MIT
// Shots held against reference pictures, and shots that cannot be written. The host is fb_host.c:
// 0x203040 all over; the key k paints a 4x4 box at (0, 0) in the colour 0x00kkff.
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/resource.h>

namespace {

using namespace ux::sim::test;

using words = std::vector<std::string>;

class expect_test : public ::testing::Test {
  protected:
    void play(const std::string &script, const words &options = {}) {
        words line = {UX_SIM,    "--headless",   "--virtual-time", "--size", "64x32",
                      "--shots", m_shots.path(), "--script",       "-"};
        line.insert(line.end(), options.begin(), options.end());
        line.insert(line.end(), {"--", FB_HOST});
        program sim(line, {}, script);
        m_status = sim.wait();
        m_err = sim.err();
    }

    // As if an earlier run had been looked at and found good.
    void keep_references() {
        play("wait still 40\nshot a.png\nkey 40\nwait still 60\nshot b.png\n");
        ASSERT_EQ(m_status, 0) << m_err;
        for (const char *name : {"a.png", "b.png"}) {
            std::filesystem::rename(m_shots / name, m_expected / name);
        }
    }

    words expecting() const { return {"--expect", m_expected.path()}; }

    temp_folder m_shots;
    temp_folder m_expected;
    std::optional<int> m_status;
    std::string m_err;
};

TEST_F(expect_test, the_same_pictures_pass) {
    keep_references();
    play("wait still 40\nshot a.png\nkey 40\nwait still 60\nshot b.png\n", expecting());
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(m_shots.names(), (words{"a.png", "b.png"}));
}

TEST_F(expect_test, a_different_picture_fails_at_the_end_and_is_shown) {
    keep_references();
    play("wait still 40\nshot a.png\nkey 41\nwait still 60\nshot b.png\nkey 42\n", expecting());
    EXPECT_EQ(m_status, 3);
    EXPECT_EQ(m_err, "ux-sim: " + m_shots / "b.png" + ": not as " + m_expected / "b.png" +
                         ": 16 pixels differ inside (0, 0)-(3, 3), shown in " +
                         m_shots / "diff-b.png" + "\nux-sim: 1 of 2 shots are not as expected\n");
    EXPECT_EQ(m_shots.names(), (words{"a.png", "b.png", "diff-b.png"}));
    const rgb_picture diff = read_png(m_shots / "diff-b.png");
    EXPECT_EQ(diff.at(0, 0), 0xff0000u);
    EXPECT_EQ(diff.at(3, 3), 0xff0000u);
    EXPECT_EQ(diff.at(4, 0), 0x080c10u); // a quarter of 0x203040
    EXPECT_EQ(diff.at(63, 31), 0x080c10u);

    play("wait still 40\nshot a.png\nkey 40\nwait still 60\nshot b.png\n", expecting());
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(m_shots.names(), (words{"a.png", "b.png"})); // nothing stale
}

TEST_F(expect_test, a_single_pixel_counts) {
    keep_references();
    play("wait still 40\nshot a.png\ntouch 63 31\nwait still 60\nshot b.png\n", expecting());
    EXPECT_EQ(m_status, 3);
    // The missing box and the one pixel of the touch that lies on the screen.
    EXPECT_NE(m_err.find(": 17 pixels differ inside (0, 0)-(63, 31), "), std::string::npos)
        << m_err;
}

TEST_F(expect_test, a_missing_reference_fails) {
    play("wait still 40\nshot a.png\n", expecting());
    EXPECT_EQ(m_status, 3);
    EXPECT_EQ(m_err, "ux-sim: " + m_shots / "a.png" + ": cannot read " + m_expected / "a.png" +
                         ": No such file or directory\n"
                         "ux-sim: 1 of 1 shots are not as expected\n");
}

TEST_F(expect_test, a_reference_of_another_size_or_kind_fails) {
    keep_references();
    play("wait still 40\nshot a.png\n", {"--size", "32x64", "--expect", m_expected.path()});
    EXPECT_EQ(m_status, 3);
    EXPECT_EQ(m_err.find("ux-sim: " + m_shots / "a.png" + ": the shot is 32x64, " +
                         m_expected / "a.png" + " is 64x32\n"),
              0u)
        << m_err;
    write_file(m_expected / "a.png", "no picture");
    play("wait still 40\nshot a.png\n", expecting());
    EXPECT_EQ(m_status, 3);
    EXPECT_NE(m_err.find("cannot read " + m_expected / "a.png"), std::string::npos) << m_err;
}

TEST_F(expect_test, what_could_not_fail_is_refused) {
    play("wait 10\n", expecting());
    EXPECT_EQ(m_status, 2);
    EXPECT_EQ(m_err, "ux-sim: --expect wants a script that takes shots\n");
    play("shot a.png\n", {"--expect", "/nowhere"});
    EXPECT_EQ(m_status, 2);
    EXPECT_EQ(m_err, "ux-sim: --expect /nowhere is no folder\n");
}

TEST_F(expect_test, references_are_never_replaced_by_shots) {
    keep_references();
    const std::string reference = read_file(m_expected / "a.png");
    for (const std::string &folder :
         {m_expected.path(), m_expected.path() + "/../" +
                                 std::filesystem::path(m_expected.path()).filename().string()}) {
        play("key 77\nwait still 60\nshot a.png\n",
             {"--expect", m_expected.path(), "--shots", folder});
        EXPECT_EQ(m_status, 2);
        EXPECT_EQ(m_err, "ux-sim: --expect and --shots name the same folder: a shot would replace "
                         "its reference\n");
        EXPECT_EQ(read_file(m_expected / "a.png"), reference);
    }
}

// The limit of a file's size stands in for a full disk: the same error path, without mounting one.
TEST_F(expect_test, a_full_disk_is_told_and_leaves_no_half_picture) {
    const std::string signal_file = m_expected / "go";
    program sim({UX_SIM, "--headless", "--size", "64x32", "--shots", m_shots.path(), "--script",
                 "-", "--", "sh", "-c", "until [ -e " + signal_file + " ]; do sleep 0.01; done"},
                {}, "wait exit\nshot a.png\n");
    ASSERT_TRUE(eventually([&] { return !sim.children().empty(); }));
    const rlimit small = {90, 90}; // bytes: enough for the message, too little for the picture
    ASSERT_EQ(prlimit(sim.pid(), RLIMIT_FSIZE, &small, nullptr), 0);
    write_file(signal_file, "");
    EXPECT_EQ(sim.wait(), 1);
    EXPECT_EQ(sim.err(), "ux-sim: cannot write " + m_shots / "a.png" + ": File too large\n");
    EXPECT_EQ(m_shots.names(), words{});
}

TEST_F(expect_test, a_disk_that_is_full_from_the_start_is_told) {
    program sim({"sh", "-c", "( ulimit -f 0; \"$@\" 2>&1; echo status $? ) | cat", "sh", UX_SIM,
                 "--headless", "--", FB_HOST},
                {{"XDG_RUNTIME_DIR", m_shots.path()}});
    EXPECT_EQ(sim.wait(), 0);
    EXPECT_EQ(sim.out().find("ux-sim: cannot "), 0u) << sim.out();
    EXPECT_NE(sim.out().find(": File too large\nstatus 1\n"), std::string::npos) << sim.out();
    EXPECT_EQ(m_shots.names(), words{});
}

} // namespace
