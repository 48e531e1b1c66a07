// SPDX-License-Identifier: MIT
// Odd sizes, hosts and simulators that are killed, disks that take nothing. The host is fb_host.c:
// 0x203040 all over; a touch paints a white 4x4 box where it touches.
#include "sim/input_queue.h"
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include <sys/msg.h>

namespace {

using namespace ux::sim::test;

using words = std::vector<std::string>;

/* --- any size, both formats --- */

struct odd_screen {
    int width, height;
    const char *format;
};

class odd_size : public ::testing::TestWithParam<odd_screen> {};

// The last pixel of the screen is touched; the box's other pixels lie outside or begin the next
// row, as fb_host.c paints without clipping to the right.
TEST_P(odd_size, is_shown_to_the_last_pixel) {
    const auto &[width, height, format] = GetParam();
    temp_folder shots;
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const std::string last = std::to_string(width - 1) + " " + std::to_string(height - 1);
    program sim({UX_SIM, "--headless", "--virtual-time", "--size", size, "--format", format,
                 "--shots", shots.path(), "--script", "-", "--", FB_HOST},
                {}, "wait still 40\nshot a.png\ntouch " + last + "\nwait still 60\nshot b.png\n");
    ASSERT_EQ(sim.wait(), 0) << sim.err();
    const rgb_picture before = read_png(shots / "a.png");
    const rgb_picture after = read_png(shots / "b.png");
    const uint32_t ground = std::string(format) == "rgb565" ? 0x310800 : 0x203040;
    EXPECT_EQ(before.width, width);
    EXPECT_EQ(before.height, height);
    EXPECT_EQ(before.at(0, 0), ground);
    EXPECT_EQ(before.at(width - 1, height - 1), ground);
    EXPECT_EQ(after.at(width - 1, height - 1), 0xffffffu);
    if (width > 1) {
        EXPECT_EQ(after.at(width - 2, height - 1), ground);
    }
}

INSTANTIATE_TEST_SUITE_P(
    screens, odd_size,
    ::testing::Values(odd_screen{1, 1, "argb8888"}, odd_screen{1, 1, "rgb565"},
                      odd_screen{3, 5, "rgb565"}, odd_screen{101, 37, "argb8888"},
                      odd_screen{333, 77, "rgb565"}, odd_screen{8192, 2, "argb8888"},
                      odd_screen{8191, 3, "rgb565"}, odd_screen{7, 8192, "rgb565"},
                      odd_screen{1920, 1080, "argb8888"}),
    [](const auto &one) {
        return std::to_string(one.param.width) + "x" + std::to_string(one.param.height) + "_" +
               one.param.format;
    });

/* --- kill -9 --- */

class killed : public ::testing::TestWithParam<bool> {
  protected:
    words command(const words &options) const {
        words line = {UX_SIM, "--headless", "--size", "64x32"};
        if (GetParam()) {
            line.push_back("--virtual-time");
        }
        line.insert(line.end(), options.begin(), options.end());
        line.insert(line.end(), {"--", FB_HOST});
        return line;
    }

    // The host's process, once it has made its pipe.
    static pid_t host_of(const program &sim, const temp_folder &runtime) {
        EXPECT_TRUE(eventually([&] {
            return sim.children().size() == 1 && runtime.names().size() == 1 &&
                   std::filesystem::exists(runtime / runtime.names()[0] + "/event");
        }));
        return sim.children().at(0);
    }

    temp_folder m_runtime;
    variables m_environment = {{"XDG_RUNTIME_DIR", m_runtime.path()}};
};

TEST_P(killed, host_is_told_and_nothing_is_left) {
    // In virtual time nothing but a free run lasts until the signal comes.
    program sim(command({}), m_environment);
    const pid_t host = host_of(sim, m_runtime);
    kill(host, SIGKILL);
    EXPECT_EQ(sim.wait(), 128 + SIGKILL);
    EXPECT_EQ(sim.err().find("ux-sim: the host was ended by signal 9 (Killed)\n"), 0u) << sim.err();
    EXPECT_EQ(m_runtime.names(), words{});
}

TEST_P(killed, simulator_takes_the_host_along_and_nothing_is_left) {
    temp_folder queue;
    program sim(command({"--queue-path", queue.path()}), m_environment);
    const pid_t host = host_of(sim, m_runtime);
    const auto id = ux::sim::find_queue(ux::sim::queue_key(queue.path()));
    ASSERT_TRUE(id);
    sim.signal(SIGKILL);
    EXPECT_EQ(sim.wait(), 128 + SIGKILL);
    EXPECT_TRUE(eventually([&] { return !is_alive(host); }));
    EXPECT_TRUE(eventually([&] {
        msqid_ds state{};
        return m_runtime.names().empty() && msgctl(*id, IPC_STAT, &state) == -1;
    }));
}

TEST_P(killed, one_of_two_runs_leaves_the_other_alone) {
    program one(command({}), m_environment);
    const pid_t host = host_of(one, m_runtime);
    program other(command({}), m_environment);
    ASSERT_TRUE(eventually([&] { return other.children().size() == 1; }));
    const pid_t other_host = other.children().at(0);
    other.signal(SIGKILL);
    EXPECT_EQ(other.wait(), 128 + SIGKILL);
    // A child that has not become the host yet still holds the run's lock.
    EXPECT_TRUE(eventually([&] { return !is_alive(other_host); }));
    program next({UX_SIM, "--headless", "--", "true"}, m_environment);
    EXPECT_EQ(next.wait(), 0);
    EXPECT_TRUE(is_alive(host));
    EXPECT_EQ(m_runtime.names().size(), 1u);
    one.signal(SIGTERM);
    EXPECT_EQ(one.wait(), 128 + SIGTERM);
    EXPECT_EQ(m_runtime.names(), words{});
}

INSTANTIATE_TEST_SUITE_P(time, killed, ::testing::Values(false, true), [](const auto &one) {
    return std::string(one.param ? "virtual" : "real");
});

/* --- disks --- */

const std::string k_tree = std::filesystem::path(UX_SIM).parent_path().parent_path();

// Runs in a mount namespace of its own, with /tmp hidden by a file system mounted with `options`.
// The build tree may lie in /tmp: it is seen at /mnt, and "$sim" is the simulator.
class disks : public ::testing::Test {
  protected:
    void run(const std::string &options, const std::string &command) {
        program sim({"unshare", "--user", "--map-root-user", "--mount", "sh", "-c",
                     "mount --bind " + k_tree +
                         " /mnt && sim=/mnt/bin/ux-sim && mount -t tmpfs -o " + options +
                         " none /tmp && cd / && " + command},
                    {{"XDG_RUNTIME_DIR", ""}});
        m_status = sim.wait();
        m_err = sim.err();
        m_out = sim.out();
    }

    void SetUp() override {
        run("size=64k", "true");
        if (m_status != 0) {
            GTEST_SKIP() << "needs user namespaces: " << m_err;
        }
    }

    std::optional<int> m_status;
    std::string m_err;
    std::string m_out;
};

TEST_F(disks, a_read_only_tmp_is_told) {
    run("ro,size=64k", "$sim --headless -- true");
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: cannot make a folder in /tmp: Read-only file system\n");
}

TEST_F(disks, a_full_tmp_is_told) {
    run("size=4k", "head -c 4096 /dev/zero > /tmp/full;"
                   " $sim --headless -- true; s=$?; ls /tmp; exit $s");
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err.find("ux-sim: cannot "), 0u) << m_err;
    EXPECT_NE(m_err.find("No space left on device\n"), std::string::npos) << m_err;
    EXPECT_EQ(m_out, "full\n");
}

TEST_F(disks, a_shot_that_does_not_fit_is_told_and_leaves_no_half_picture) {
    // The noise of a screen of 300x200 pixels needs some 180 kB as a picture.
    run("size=64k",
        "echo 'shot a.png' > /tmp/s;"
        " $sim --headless --virtual-time --size 300x200 --shots /tmp/shots --script /tmp/s"
        " -- sh -c 'head -c 240000 /dev/urandom > /dev/fb0; exec sleep 60';"
        " s=$?; ls /tmp /tmp/shots; exit $s");
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err, "ux-sim: cannot write /tmp/shots/a.png: No space left on device\n");
    EXPECT_EQ(m_out, "/tmp:\ns\nshots\n\n/tmp/shots:\n");
}

TEST_F(disks, a_recording_that_does_not_fit_is_told) {
    run("size=4k", "head -c 4096 /dev/zero > /tmp/full; XDG_RUNTIME_DIR=/dev/shm"
                   " $sim --headless --record /tmp/r.uxs -- true");
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(m_err.find("ux-sim: cannot write the recording /tmp/r.uxs: "), 0u) << m_err;
    EXPECT_NE(m_err.find("No space left on device"), std::string::npos) << m_err;
}

} // namespace
