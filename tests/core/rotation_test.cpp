// SPDX-License-Identifier: MIT
// Turning the display: which strings do it, what is exchanged, what is printed.

#include "tests/support/screen_test.h"

namespace {

// Two line ends before and two behind.
constexpr const char *k_rotation_trace = "\n\nEnter ux_screen_rorate_init.........\n\n";

class RotationTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        make_screen(20, 10);
    }

    static std::string rotation_output(const char *mode) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(ux_screen_rorate_init(mode), 0);
        return testing::internal::GetCapturedStdout();
    }
};

} // namespace

TEST_F(RotationTest, quarter_turns_exchange_the_drawing_sizes_only) {
    ux_page *page = new_page();
    EXPECT_EQ(rotation_output("RORATE_90"), k_rotation_trace);
    EXPECT_EQ(main_screen.rotation, 1);
    EXPECT_EQ(main_screen.width, 10);
    EXPECT_EQ(main_screen.height, 20);
    EXPECT_EQ(main_screen.xres, 20);
    EXPECT_EQ(main_screen.yres, 10);
    EXPECT_EQ(page->container.obj.width, 20);
    EXPECT_EQ(page->container.obj.height, 10);
}

TEST_F(RotationTest, turn_by_270_is_rotation_3) {
    EXPECT_EQ(rotation_output("RORATE_270"), k_rotation_trace);
    EXPECT_EQ(main_screen.rotation, 3);
    EXPECT_EQ(main_screen.width, 10);
}

TEST_F(RotationTest, second_turn_exchanges_again_and_normal_resets_nothing) {
    rotation_output("RORATE_90");
    EXPECT_EQ(rotation_output("NORMAL"), k_rotation_trace);
    EXPECT_EQ(main_screen.rotation, 1);
    EXPECT_EQ(main_screen.width, 10);
    rotation_output("RORATE_270");
    EXPECT_EQ(main_screen.rotation, 3);
    EXPECT_EQ(main_screen.width, 20);
    EXPECT_EQ(main_screen.height, 10);
}

TEST_F(RotationTest, other_strings_and_null_print_and_change_nothing) {
    const ux_screen before = main_screen;
    for (const char *mode : {"", "ROTATE_90", "rorate_90", "RORATE_90 ", " RORATE_90", "RORATE_9",
                             "RORATE_900", "RORATE_180", "NORMAL"})
        EXPECT_EQ(rotation_output(mode), k_rotation_trace);
    EXPECT_EQ(rotation_output(nullptr), k_rotation_trace);
    EXPECT_EQ(memcmp(&before, &main_screen, sizeof before), 0);
}
