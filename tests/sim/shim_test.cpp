// SPDX-License-Identifier: MIT
// What a host sees through the preload library. The checks themselves are in shim_probe.c.
#include "tests/sim/process.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace ux::sim::test;

void expect_holds(const std::string &check, std::vector<std::string> options = {}) {
    std::vector<std::string> line = {UX_SIM, "--headless", "--size", "100x50"};
    line.insert(line.end(), options.begin(), options.end());
    line.insert(line.end(), {"--", SHIM_PROBE, check});
    program run(line);
    EXPECT_EQ(run.wait(), 0);
    EXPECT_EQ(run.err(), "");
    EXPECT_EQ(run.out(), "");
}

TEST(shim, a_32_bit_screen_is_described_as_argb8888) {
    expect_holds("information_32");
}

TEST(shim, a_16_bit_screen_is_described_as_rgb565) {
    expect_holds("information_16", {"--format", "rgb565"});
}

TEST(shim, every_way_to_open_the_screen_reaches_it) {
    expect_holds("every_way_to_open");
}

TEST(shim, a_copied_descriptor_is_the_screen_and_a_reused_number_is_not) {
    expect_holds("descriptors");
}

TEST(shim, two_openings_show_the_same_pixels) {
    expect_holds("screens_share_pixels");
}

TEST(shim, the_event_pipe_is_the_run_s_own) {
    const bool there = std::filesystem::exists("/tmp/event");
    expect_holds("pipe_is_private");
    EXPECT_EQ(std::filesystem::exists("/tmp/event"), there);
}

TEST(shim, only_the_input_queue_s_key_is_the_run_s_own) {
    expect_holds("queue_key");
}

TEST(shim, device_paths_are_looked_up_below_the_root_first) {
    temp_folder root;
    std::filesystem::create_directories(root / "orbo");
    std::filesystem::create_directories(root / "mnt/firmware");
    write_file(root / "orbo/a.txt", "root");
    write_file(root / "mnt/firmware/c.txt", "c");
    expect_holds("root_first", {"--root", root.path()});
}

TEST(shim, everything_else_passes_through) {
    expect_holds("other_calls_pass");
}

TEST(shim, outside_a_run_it_changes_nothing) {
    program probe({SHIM_PROBE, "other_calls_pass"}, {{"LD_PRELOAD", UX_SIM_SHIM_FILE}});
    EXPECT_EQ(probe.wait(), 0);
    EXPECT_EQ(probe.err(), "");
    program queue({SHIM_PROBE, "plain_queue_key"}, {{"LD_PRELOAD", UX_SIM_SHIM_FILE}});
    EXPECT_EQ(queue.wait(), 0);
    EXPECT_EQ(queue.err(), "");
}

TEST(shim, needs_the_c_library_alone) {
    program needed({"readelf", "-d", UX_SIM_SHIM_FILE});
    ASSERT_EQ(needed.wait(), 0);
    const std::string libraries = needed.out();
    EXPECT_NE(libraries.find("libc.so"), std::string::npos);
    EXPECT_EQ(libraries.find("libstdc++"), std::string::npos);
    EXPECT_EQ(libraries.find("libpng"), std::string::npos);
    EXPECT_EQ(libraries.find("libSDL"), std::string::npos);
}

} // namespace
