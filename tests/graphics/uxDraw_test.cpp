// SPDX-License-Identifier: MIT
// The three drawing operations on small pictures worked out by hand: which pixels, which values,
// which memory.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>

namespace {

using DrawTest = ScreenTest;

constexpr uint32_t k_ink = 0xFF336699;

} // namespace

TEST_F(DrawTest, line_of_45_degrees_is_not_steep) {
    EXPECT_EQ(uxDrawLine(0, 0, 3, 3, 7), 0);
    EXPECT_EQ(buf_picture(7), "X...............\n"
                              ".X..............\n"
                              "..X.............\n"
                              "...X............\n"
                              "................\n"
                              "................\n"
                              "................\n"
                              "................\n");
}

TEST_F(DrawTest, horizontal_line_with_reversed_ends_draws_columns_2_to_10) {
    EXPECT_EQ(uxDrawLine(10, 5, 2, 5, k_ink), 0);
    EXPECT_EQ(buf_picture(k_ink), "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "..XXXXXXXXX.....\n"
                                  "................\n"
                                  "................\n");
}

// dx = 2, dy = 5: walked by rows, error 2, 0, -2 -> 3, 1, -1 -> 4, 2.
TEST_F(DrawTest, steep_line_has_one_pixel_in_each_row) {
    uxDrawLine(0, 0, 2, 5, k_ink);
    EXPECT_EQ(buf_picture(k_ink), "X...............\n"
                                  "X...............\n"
                                  ".X..............\n"
                                  ".X..............\n"
                                  "..X.............\n"
                                  "..X.............\n"
                                  "................\n"
                                  "................\n");
}

// dx = 5, dy = 2: error 2, 0, -2 -> 3, 1, -1 -> 4, 2.
TEST_F(DrawTest, flat_line_has_one_pixel_in_each_column) {
    uxDrawLine(0, 0, 5, 2, k_ink);
    EXPECT_EQ(buf_picture(k_ink), "XX..............\n"
                                  "..XX............\n"
                                  "....XX..........\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

// (0, 3) to (2, 0), dx = 2, dy = 3: steep, and the exchanged ends (3, 0), (0, 2) are in the wrong
// order, so the walk goes from (2, 0) down to (0, 3): error 1, -1 -> 2 left, 0, -2 -> 1 left.
// Ends put in order before the axes are exchanged would give (1, 2) in the place of (2, 1)'s row.
TEST_F(DrawTest, ends_are_put_in_order_after_the_axes_are_exchanged) {
    uxDrawLine(0, 3, 2, 0, k_ink);
    EXPECT_EQ(buf_picture(k_ink), "..X.............\n"
                                  ".X..............\n"
                                  ".X..............\n"
                                  "X...............\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

// dx = 2, dy = 1: error 1, 0, -1: the middle pixel stays in the first row of the walk, which is
// the one of the smaller column.
TEST_F(DrawTest, line_is_the_same_from_either_end) {
    uxDrawLine(0, 0, 2, 1, k_ink);
    uxDrawLine(10, 1, 8, 0, k_ink);
    EXPECT_EQ(buf_picture(k_ink), "XX......XX......\n"
                                  "..X.......X.....\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

TEST_F(DrawTest, line_between_equal_points_is_one_pixel) {
    uxDrawLine(4, 6, 4, 6, k_ink);
    EXPECT_EQ(buf_picture(k_ink), "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "....X...........\n"
                                  "................\n");
}

TEST_F(DrawTest, box_includes_both_corners) {
    EXPECT_EQ(uxDrawBox(3, 1, 5, 4, k_ink), 0);
    EXPECT_EQ(buf_picture(k_ink), "................\n"
                                  "...XXX..........\n"
                                  "...XXX..........\n"
                                  "...XXX..........\n"
                                  "...XXX..........\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

TEST_F(DrawTest, box_with_reversed_corners_is_empty) {
    EXPECT_EQ(uxDrawBox(5, 1, 4, 4, k_ink), 0);
    EXPECT_EQ(uxDrawBox(3, 4, 5, 3, k_ink), 0);
    EXPECT_EQ(uxDrawBox(0, 4, 15, 3, k_ink), 0);
    EXPECT_EQ(uxDrawBox(15, 3, -16, 4, k_ink), 0);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

TEST_F(DrawTest, rectangle_is_an_outline) {
    EXPECT_EQ(uxDrawRect(2, 1, 6, 4, k_ink), 0);
    EXPECT_EQ(buf_picture(k_ink), "................\n"
                                  "..XXXXX.........\n"
                                  "..X...X.........\n"
                                  "..X...X.........\n"
                                  "..XXXXX.........\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

TEST_F(DrawTest, rectangle_with_reversed_corners_draws_the_same_outline) {
    EXPECT_EQ(uxDrawRect(6, 4, 2, 1, k_ink), 0);
    EXPECT_EQ(buf_picture(k_ink), "................\n"
                                  "..XXXXX.........\n"
                                  "..X...X.........\n"
                                  "..X...X.........\n"
                                  "..XXXXX.........\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

TEST_F(DrawTest, color_0_is_written_by_all_three) {
    fill_buf(0xFFFFFFFF);
    uxDrawLine(0, 0, 2, 2, 0);
    uxDrawBox(4, 0, 5, 1, 0);
    uxDrawRect(7, 0, 9, 2, 0);
    EXPECT_EQ(buf_picture(0xFFFFFFFF), ".XXX..X...XXXXXX\n"
                                       "X.XX..X.X.XXXXXX\n"
                                       "XX.XXXX...XXXXXX\n"
                                       "XXXXXXXXXXXXXXXX\n"
                                       "XXXXXXXXXXXXXXXX\n"
                                       "XXXXXXXXXXXXXXXX\n"
                                       "XXXXXXXXXXXXXXXX\n"
                                       "XXXXXXXXXXXXXXXX\n");
}

TEST_F(DrawTest, alpha_is_stored_and_not_blended) {
    fill_buf(0xFF808080);
    uxDrawLine(0, 0, 3, 1, 0x01020304);
    uxDrawBox(5, 0, 6, 1, 0x01020304);
    EXPECT_EQ(buf_pixel(0, 0), 0x01020304u);
    EXPECT_EQ(buf_pixel(3, 1), 0x01020304u);
    EXPECT_EQ(buf_pixel(5, 0), 0x01020304u);
    EXPECT_EQ(buf_pixel(7, 0), 0xFF808080u);
}

TEST_F(DrawTest, mode_3_stores_the_low_16_bits) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    fill_buf(0x1111);
    uxDrawLine(0, 0, 2, 0, 0xFFFF0000);
    uxDrawLine(4, 0, 6, 3, 0x1234F81F);
    uxDrawBox(8, 0, 10, 1, 0xFFFF0000);
    uxDrawBox(12, 0, 14, 1, 0x1234F81F);
    EXPECT_EQ(buf_pixel(2, 0), 0x0000u);
    EXPECT_EQ(buf_pixel(3, 0), 0x1111u);
    EXPECT_EQ(buf_pixel(6, 3), 0xF81Fu);
    EXPECT_EQ(buf_pixel(10, 1), 0x0000u);
    EXPECT_EQ(buf_pixel(14, 1), 0xF81Fu);
    EXPECT_EQ(buf_pixel(15, 1), 0x1111u);
}

TEST_F(DrawTest, other_modes_write_nothing_and_give_0) {
    for (int mode : {0, 2, 4, -1, INT_MAX, INT_MIN}) {
        main_screen.color_mode = mode;
        EXPECT_EQ(uxDrawLine(0, 0, 5, 5, k_ink), 0);
        EXPECT_EQ(uxDrawBox(0, 0, 5, 5, k_ink), 0);
        EXPECT_EQ(uxDrawRect(0, 0, 5, 5, k_ink), 0);
        EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8)) << mode;
    }
}

TEST_F(DrawTest, painting_goes_to_buf_and_not_to_fb) {
    set_apart();
    uxDrawLine(0, 0, 5, 5, k_ink);
    uxDrawBox(2, 2, 8, 4, k_ink);
    uxDrawRect(2, 2, 8, 4, k_ink);
    EXPECT_EQ(buf_pixel(5, 5), k_ink);
    EXPECT_EQ(plain::numbers(main_screen.fb), std::vector<uint32_t>(16 * 8));
}

TEST_F(DrawTest, rows_are_as_long_as_the_drawing_width_when_rotated) {
    main_screen.rotation = UX_ROTATION_90;
    main_screen.width = 8;
    main_screen.height = 16;
    uxDrawLine(3, 1, 3, 3, k_ink);
    EXPECT_EQ(buf_picture(k_ink).substr(0, 5 * 9), "........\n"
                                                   "...X....\n"
                                                   "...X....\n"
                                                   "...X....\n"
                                                   "........\n");
}

TEST_F(DrawTest, run_past_the_right_edge_goes_on_in_the_next_row) {
    uxDrawLine(13, 1, 18, 1, k_ink);
    uxDrawBox(-2, 5, 1, 6, k_ink);
    EXPECT_EQ(buf_picture(k_ink), "................\n"
                                  ".............XXX\n"
                                  "XXX.............\n"
                                  "................\n"
                                  "..............XX\n"
                                  "XX............XX\n"
                                  "XX..............\n"
                                  "................\n");
}

TEST_F(DrawTest, column_far_right_of_the_screen_lies_in_a_row_far_above) {
    uxDrawLine(16 * 1000 + 3, -999, 16 * 1000 + 3, -997, k_ink);
    uxDrawBox(-16 * 1000 + 5, 1002, -16 * 1000 + 6, 1003, k_ink);
    EXPECT_EQ(buf_picture(k_ink), "................\n"
                                  "...X............\n"
                                  "...X.XX.........\n"
                                  "...X.XX.........\n"
                                  "................\n"
                                  "................\n"
                                  "................\n"
                                  "................\n");
}

TEST_F(DrawTest, screen_without_memory_or_size_is_left_alone) {
    uint8_t *buf = main_screen.buf;
    main_screen.buf = nullptr;
    EXPECT_EQ(uxDrawBox(0, 0, 5, 5, k_ink), 0);
    EXPECT_EQ(uxDrawLine(0, 0, 5, 5, k_ink), 0);
    main_screen.buf = buf;
    for (const auto &[width, height] : {std::pair{0, 8}, {16, 0}, {0, 0}, {-16, 8}, {-16, -8}}) {
        main_screen.width = width;
        main_screen.height = height;
        EXPECT_EQ(uxDrawBox(0, 0, 5, 5, k_ink), 0);
        EXPECT_EQ(uxDrawLine(0, 0, 5, 5, k_ink), 0);
        EXPECT_EQ(uxDrawLine(0, 0, 0, 5, k_ink), 0);
    }
    main_screen.width = 16;
    main_screen.height = 8;
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}
