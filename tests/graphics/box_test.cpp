// SPDX-License-Identifier: MIT
// Boxes and outlines against the literal loops: all places around a small screen, both pixel
// sizes, all alignments of the memory, corners as far away as integers go.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>

namespace {

class BoxTest : public ScreenTest {
  protected:
    void compare(int x0, int y0, int x1, int y1) {
        memset(main_screen.buf, 0, bytes());
        plain::canvas canvas = empty_canvas();
        plain::box(canvas, x0, y0, x1, y1, 0x1234ABCD);
        uxDrawBox(x0, y0, x1, y1, 0x1234ABCD);
        ASSERT_EQ(plain::numbers(main_screen.buf), canvas.pixels) << text(x0, y0, x1, y1);
    }

    // For boxes too large for loops: an element is inside when some row of the box has it.
    void compare_by_element(int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
        memset(main_screen.buf, 0, bytes());
        plain::canvas canvas = empty_canvas();
        for (int64_t element = 0; element < canvas.count(); element++)
            if (contains(canvas.width, element, x0, y0, x1, y1))
                canvas.put(element, 0, 0x1234ABCD);
        uxDrawBox(static_cast<int>(x0), static_cast<int>(y0), static_cast<int>(x1),
                  static_cast<int>(y1), 0x1234ABCD);
        ASSERT_EQ(plain::numbers(main_screen.buf), canvas.pixels) << text(x0, y0, x1, y1);
    }

    // Whether y * width + x == element for some x in x0..x1 and y in y0..y1.
    static bool contains(int64_t width, int64_t element, int64_t x0, int64_t y0, int64_t x1,
                         int64_t y1) {
        if (x1 < x0)
            return false;
        const int64_t lowest = -floor_divided(x1 - element, width);
        const int64_t highest = floor_divided(element - x0, width);
        return std::max(lowest, y0) <= std::min(highest, y1);
    }

    static int64_t floor_divided(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

    static std::string text(int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
        return std::string("box ") + std::to_string(x0) + ", " + std::to_string(y0) + " - " +
               std::to_string(x1) + ", " + std::to_string(y1);
    }

    plain::canvas empty_canvas() const {
        const bool is_16_bit = main_screen.color_mode == UX_COLOR_MODE_RGB565;
        return {main_screen.width, main_screen.height, is_16_bit ? 0xFFFFu : 0xFFFFFFFFu};
    }

    size_t bytes() const {
        return static_cast<size_t>(main_screen.width * main_screen.height *
                                   main_screen.bytes_per_pixel);
    }

    void compare_random(plain::dice &dice, int count, int reach) {
        for (int i = 0; i < count && !HasFatalFailure(); i++)
            compare(dice.between(-reach, reach), dice.between(-reach, reach),
                    dice.between(-reach, reach), dice.between(-reach, reach));
    }
};

} // namespace

TEST_F(BoxTest, boxes_around_the_screen_are_the_literal_loops) {
    plain::dice dice(1);
    make_screen(37, 23);
    compare_random(dice, 4000, 90);
}

TEST_F(BoxTest, boxes_on_a_16_bit_screen_are_the_literal_loops) {
    plain::dice dice(2);
    make_screen(37, 23, UX_COLOR_MODE_RGB565);
    compare_random(dice, 4000, 90);
}

TEST_F(BoxTest, boxes_of_all_widths_at_all_columns_are_the_literal_loops) {
    for (int mode : {UX_COLOR_MODE_ARGB8888, UX_COLOR_MODE_RGB565}) {
        make_screen(35, 3, mode);
        for (int x0 = -2; x0 <= 36 && !HasFatalFailure(); x0++)
            for (int x1 = x0; x1 <= 37 && !HasFatalFailure(); x1++)
                compare(x0, 1, x1, 1);
    }
}

TEST_F(BoxTest, memory_at_any_address_is_filled_exactly) {
    plain::dice dice(3);
    for (int mode : {UX_COLOR_MODE_ARGB8888, UX_COLOR_MODE_RGB565})
        for (int offset = 0; offset < 9; offset++) {
            make_screen(23, 12, mode);
            main_screen.buf += offset;
            main_screen.height -= 2; // the rows left out hold the offset
            compare_random(dice, 200, 30);
        }
}

TEST_F(BoxTest, boxes_on_screens_of_one_row_or_column_are_the_literal_loops) {
    plain::dice dice(4);
    for (const auto &[width, height] : {std::pair{1, 1}, {1, 20}, {20, 1}, {2, 9}}) {
        make_screen(width, height);
        compare_random(dice, 500, 30);
    }
}

TEST_F(BoxTest, boxes_with_any_corners_hold_exactly_their_elements) {
    plain::dice dice(5);
    make_screen(37, 23);
    for (int i = 0; i < 3000 && !HasFatalFailure(); i++)
        compare_by_element(dice.between(INT_MIN, INT_MAX), dice.between(INT_MIN, INT_MAX),
                           dice.between(INT_MIN, INT_MAX), dice.between(INT_MIN, INT_MAX));
}

// Narrow boxes far left or right lie in rows far below or above.
TEST_F(BoxTest, narrow_boxes_with_far_corners_hold_exactly_their_elements) {
    plain::dice dice(6);
    make_screen(1280, 3);
    for (int i = 0; i < 300 && !HasFatalFailure(); i++) {
        const int x = dice.between(INT_MIN, INT_MAX - 2000);
        const int y = static_cast<int>(-floor_divided(x, 1280)) + dice.between(-4, 4);
        compare_by_element(x, y, x + dice.between(-1, 1300), y + dice.between(-1, 5));
    }
}

TEST_F(BoxTest, integer_extremes_hold_exactly_their_elements) {
    const int64_t ends[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, 15, 16, INT_MAX - 1, INT_MAX};
    for (int64_t x0 : ends)
        for (int64_t y0 : ends)
            for (int64_t x1 : ends)
                for (int64_t y1 : ends)
                    if (!HasFatalFailure())
                        compare_by_element(x0, y0, x1, y1);
}

TEST_F(BoxTest, rectangles_around_the_screen_are_four_literal_lines) {
    plain::dice dice(7);
    make_screen(37, 23);
    for (int i = 0; i < 2000; i++) {
        const int x0 = dice.between(-60, 60);
        const int y0 = dice.between(-60, 60);
        const int x1 = dice.between(-60, 60);
        const int y1 = dice.between(-60, 60);
        memset(main_screen.buf, 0, bytes());
        plain::canvas canvas = empty_canvas();
        plain::line(canvas, x0, y0, x1, y0, 5);
        plain::line(canvas, x0, y1, x1, y1, 5);
        plain::line(canvas, x0, y0, x0, y1, 5);
        plain::line(canvas, x1, y0, x1, y1, 5);
        uxDrawRect(x0, y0, x1, y1, 5);
        ASSERT_EQ(plain::numbers(main_screen.buf), canvas.pixels) << text(x0, y0, x1, y1);
    }
}

// A device whose pixels are smaller than the format's words: fewer words fit.
TEST_F(BoxTest, words_beyond_a_memory_of_small_pixels_are_not_written) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
    uxDrawBox(0, 0, 15, 7, 0x11111111);
    uxDrawLine(0, 0, 15, 7, 0x22222222);
    uxDrawLine(15, 7, 15, 0, 0x22222222);
    EXPECT_EQ(buf_pixel(13, 7), 0x1111u);
    EXPECT_EQ(buf_pixel(15, 7), 0x2222u); // word 63, the last one: column 15 of row 3
}
