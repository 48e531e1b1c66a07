// SPDX-License-Identifier: MIT
// The host's alpha plane: one byte for two pixels, halved by shifts, nothing outside it touched.

#include "tests/support/screen_test.h"

#include <algorithm>
#include <climits>

namespace {

// A 16 x 8 screen has 8 x 8 bytes.
class AlphaPlaneTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        main_screen.alpha_plane = memory.data();
    }

    void TearDown() override {
        EXPECT_TRUE(memory.guards_are_whole());
        ScreenTest::TearDown();
    }

    // The plane as text: 'X' for 7, '.' for 0; the first `rows` rows.
    std::string plane(int rows) {
        std::string text;
        for (int i = 0; i < rows * 8; i++) {
            text += memory.data()[i] == 7 ? 'X' : memory.data()[i] == 0 ? '.' : '?';
            if (i % 8 == 7)
                text += '\n';
        }
        return text;
    }

    guarded_memory memory{64};
};

} // namespace

TEST_F(AlphaPlaneTest, rectangle_is_filled_at_half_its_columns) {
    ux_set_alpha(4, 1, 6, 2, 7);
    EXPECT_EQ(plane(4), "........\n..XXX...\n..XXX...\n........\n");
}

TEST_F(AlphaPlaneTest, odd_columns_and_widths_are_shifted_down) {
    ux_set_alpha(5, 0, 5, 1, 7);
    ux_set_alpha(0, 1, 1, 1, 7);
    EXPECT_EQ(plane(2), "..XX....\n........\n");
}

TEST_F(AlphaPlaneTest, rows_of_an_odd_screen_have_half_its_width) {
    main_screen.width = 17;
    ux_set_alpha(0, 1, 2, 1, 7);
    EXPECT_EQ(plane(2), "........\nX.......\n");
}

TEST_F(AlphaPlaneTest, run_too_wide_goes_on_in_the_next_row) {
    ux_set_alpha(12, 0, 10, 1, 7);
    EXPECT_EQ(plane(2), "......XX\nXXX.....\n");
}

TEST_F(AlphaPlaneTest, bytes_before_the_plane_are_left_out) {
    ux_set_alpha(-4, 0, 8, 1, 7);
    EXPECT_EQ(plane(2), "XX......\n........\n");
    ux_set_alpha(0, -1, 2, 3, 7);
    EXPECT_EQ(plane(2), "XX......\nX.......\n");
}

TEST_F(AlphaPlaneTest, bytes_behind_the_plane_are_left_out) {
    ux_set_alpha(12, 7, 40, 9, 7);
    EXPECT_EQ(plane(8).substr(7 * 9), "......XX\n");
}

TEST_F(AlphaPlaneTest, ends_of_the_numbers_stay_inside) {
    ux_set_alpha(INT_MAX, INT_MAX, INT_MAX, INT_MAX, 7);
    ux_set_alpha(INT_MIN, 0, INT_MAX, 1, 7);
    ux_set_alpha(0, 0, INT_MIN, 4, 7);
    ux_set_alpha(0, 0, 4, INT_MIN, 7);
    EXPECT_EQ(plane(1), "........\n");
    ux_set_alpha(0, 0, INT_MAX, 1, 7);
    EXPECT_EQ(std::count(memory.data(), memory.data() + 64, 7), 64);
}

TEST_F(AlphaPlaneTest, screen_of_no_size_has_no_plane) {
    for (int height : {0, -1, INT_MIN}) {
        main_screen.height = height;
        ux_set_alpha(0, -1, 16, 1, 7);
        ux_set_alpha(0, 0, 16, 1, 7);
    }
    EXPECT_EQ(plane(1), "........\n");
}

TEST_F(AlphaPlaneTest, without_a_plane_nothing_happens) {
    main_screen.alpha_plane = nullptr;
    ux_set_alpha(0, 0, 16, 8, 7);
    EXPECT_EQ(plane(1), "........\n");
}
