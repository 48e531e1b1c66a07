// SPDX-License-Identifier: MIT
// The ticker's box on the screen: which elements it has, and that nothing else is touched.

#include "font/ticker_box.h"

#include "tests/support/screen_test.h"

#include <climits>

namespace {

constexpr uint32_t k_ink = 0xFF112233;

class TickerBoxTest : public ScreenTest {
  protected:
    // The screen, every element its index + 1, under a frame that is all ink.
    std::string covered(int x, int y, int w, int h) {
        for (int i = 0; i < main_screen.width * main_screen.height; i++)
            set_fb_pixel(i % main_screen.width, i / main_screen.width, 0);
        ux::ticker_box box(x, y, w, h);
        EXPECT_TRUE(box.allocate());
        box.save();
        const std::vector<uint8_t> ink(static_cast<size_t>(box.rows() * box.width()), 255);
        box.show({ink.data(), box.width()}, k_ink);
        std::string picture = fb_picture(k_ink);
        box.restore();
        EXPECT_EQ(fb_picture(k_ink).find_first_not_of(".\n"), std::string::npos);
        return picture;
    }
};

} // namespace

TEST_F(TickerBoxTest, box_inside_covers_its_rectangle) {
    make_screen(6, 4);
    EXPECT_EQ(covered(1, 1, 3, 2), "......\n"
                                   ".XXX..\n"
                                   ".XXX..\n"
                                   "......\n");
}

TEST_F(TickerBoxTest, box_beyond_the_right_edge_goes_on_in_the_next_row) {
    make_screen(6, 4);
    EXPECT_EQ(covered(4, 1, 3, 2), "......\n"
                                   "....XX\n"
                                   "X...XX\n"
                                   "X.....\n");
}

TEST_F(TickerBoxTest, box_left_of_the_screen_begins_in_the_previous_row) {
    make_screen(6, 4);
    EXPECT_EQ(covered(-2, 1, 3, 2), "....XX\n"
                                    "X...XX\n"
                                    "X.....\n"
                                    "......\n");
}

TEST_F(TickerBoxTest, what_lies_before_the_first_and_behind_the_last_element_is_left_out) {
    make_screen(6, 4);
    EXPECT_EQ(covered(-2, -1, 4, 3), "XX..XX\n"
                                     "XX....\n"
                                     "......\n"
                                     "......\n");
    EXPECT_EQ(covered(4, 3, 4, 3), "......\n"
                                   "......\n"
                                   "......\n"
                                   "....XX\n");
    EXPECT_EQ(covered(0, 4, 6, 3), "......\n......\n......\n......\n");
    EXPECT_EQ(covered(0, -3, 6, 3), "......\n......\n......\n......\n");
}

TEST_F(TickerBoxTest, row_wider_than_the_screen_shows_one_screens_width) {
    make_screen(6, 4);
    EXPECT_EQ(covered(2, 1, 100, 1), "......\n"
                                     "..XXXX\n"
                                     "XX....\n"
                                     "......\n");
    EXPECT_EQ(covered(2, 1, INT_MAX, INT_MAX), "......\n"
                                               "..XXXX\n"
                                               "XXXXXX\n"
                                               "XXXXXX\n");
}

TEST_F(TickerBoxTest, ink_of_a_partial_row_is_that_of_its_visible_columns) {
    make_screen(4, 2);
    ux::ticker_box box(-2, 0, 4, 2); // elements -2 to 1 and 2 to 5
    ASSERT_TRUE(box.allocate());
    box.save();
    ASSERT_EQ(box.rows(), 2);
    const uint8_t ink[] = {255, 255, 0, 255, 255, 0, 0, 255};
    box.show({ink, 4}, k_ink);
    EXPECT_EQ(fb_picture(k_ink), ".XX.\n.X..\n");
}

TEST_F(TickerBoxTest, rows_above_the_screen_are_not_counted) {
    make_screen(6, 4);
    const ux::ticker_box box(0, -5, 6, 7);
    EXPECT_EQ(box.first_row(), 5);
    EXPECT_EQ(box.rows(), 2);
}

TEST_F(TickerBoxTest, boxes_without_size_have_no_rows) {
    for (int w : {INT_MIN, -1, 0, 5})
        for (int h : {INT_MIN, -1, 0})
            EXPECT_EQ(ux::ticker_box(1, 1, w, h).rows(), 0);
    EXPECT_EQ(ux::ticker_box(1, 1, -1, 5).rows(), 0);
}

TEST_F(TickerBoxTest, boxes_far_outside_have_few_rows_or_none) {
    const int ends[] = {INT_MIN, INT_MIN + 1, -70000, 70000, INT_MAX - 1, INT_MAX};
    for (int x : ends)
        for (int y : ends)
            for (int w : {1, 70000, INT_MAX})
                for (int h : {1, 70000, INT_MAX}) {
                    ux::ticker_box box(x, y, w, h);
                    EXPECT_LE(box.rows(), main_screen.height + 1);
                    EXPECT_TRUE(box.allocate());
                    box.save();
                    box.show({nullptr, 0}, k_ink);
                    box.clear();
                }
}

TEST_F(TickerBoxTest, screens_without_memory_or_size_have_no_rows) {
    uint8_t *fb = std::exchange(main_screen.fb, nullptr);
    EXPECT_EQ(ux::ticker_box(0, 0, 5, 5).rows(), 0);
    main_screen.fb = fb;
    for (int ux_screen::*size : {&ux_screen::width, &ux_screen::height}) {
        const int before = std::exchange(main_screen.*size, 0);
        EXPECT_EQ(ux::ticker_box(0, 0, 5, 5).rows(), 0);
        main_screen.*size = -4;
        EXPECT_EQ(ux::ticker_box(0, 0, 5, 5).rows(), 0);
        main_screen.*size = before;
    }
    main_screen.bytes_per_pixel = 0;
    EXPECT_EQ(ux::ticker_box(0, 0, 5, 5).rows(), 0);
    main_screen.bytes_per_pixel = 4;
}

TEST_F(TickerBoxTest, clearing_makes_exactly_the_box_0) {
    make_screen(4, 3);
    fill_buf(k_ink);
    ux::ticker_box box(1, 1, 2, 9);
    box.clear();
    EXPECT_EQ(fb_picture(k_ink), "XXXX\nX..X\nX..X\n");
}

TEST_F(TickerBoxTest, frame_without_ink_gives_the_saved_pixels_back) {
    make_screen(4, 3);
    fill_buf(5);
    ux::ticker_box box(1, 1, 2, 1);
    ASSERT_TRUE(box.allocate());
    box.save();
    fill_buf(6);
    box.show({nullptr, 0}, k_ink);
    for (int y = 0; y < 3; y++)
        for (int x = 0; x < 4; x++)
            EXPECT_EQ(fb_pixel(x, y), y == 1 && (x == 1 || x == 2) ? 5u : 6u);
}

TEST_F(TickerBoxTest, pixels_of_two_bytes_are_saved_cleared_and_restored) {
    make_screen(4, 3, UX_COLOR_MODE_RGB565);
    fill_buf(0x1234);
    ux::ticker_box box(3, 1, 2, 9); // wraps, and ends with the memory
    EXPECT_FALSE(box.takes_ink());
    ASSERT_TRUE(box.allocate());
    box.save();
    box.clear();
    for (int y = 0; y < 3; y++)
        for (int x = 0; x < 4; x++) {
            const bool inside = (x == 3 && y >= 1) || (x == 0 && y >= 2);
            EXPECT_EQ(fb_pixel(x, y), inside ? 0u : 0x1234u) << x << "," << y;
        }
    box.restore();
    for (int y = 0; y < 3; y++)
        for (int x = 0; x < 4; x++)
            EXPECT_EQ(fb_pixel(x, y), 0x1234u);
}
