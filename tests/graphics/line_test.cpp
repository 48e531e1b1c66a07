// SPDX-License-Identifier: MIT
// Lines against the literal walk: all short lines, random ones on and off the screen, and lines
// whose ends are as far away as integers go.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>
#include <cmath>

namespace {

class LineTest : public ScreenTest {
  protected:
    // Draws the line with the library and literally, each on a cleared screen.
    void compare(int x0, int y0, int x1, int y1) {
        memset(main_screen.buf, 0, bytes());
        plain::canvas canvas = empty_canvas();
        plain::line(canvas, x0, y0, x1, y1, 0xFFFFABCD);
        uxDrawLine(x0, y0, x1, y1, 0xFFFFABCD);
        ASSERT_EQ(plain::numbers(main_screen.buf), canvas.pixels)
            << "line " << x0 << ", " << y0 << " - " << x1 << ", " << y1;
    }

    void compare_random(plain::dice &dice, int count, int reach) {
        for (int i = 0; i < count && !HasFatalFailure(); i++)
            compare(dice.between(-reach, reach), dice.between(-reach, reach),
                    dice.between(-reach, reach), dice.between(-reach, reach));
    }

    plain::canvas empty_canvas() const {
        const bool is_16_bit = main_screen.color_mode == UX_COLOR_MODE_RGB565;
        return {main_screen.width, main_screen.height, is_16_bit ? 0xFFFFu : 0xFFFFFFFFu};
    }

    size_t bytes() const {
        return static_cast<size_t>(main_screen.width * main_screen.height *
                                   main_screen.bytes_per_pixel);
    }
};

using wide [[gnu::mode(TI)]] = int;

// Draws the steps of the literal walk near the screen: the walk is entered at step k with the error
// that k steps leave, error = (deltax >> 1) - k * deltay modulo deltax. False when too many steps
// are near.
bool draw_near_part(plain::canvas &canvas, int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
    const bool steep = plain::absolute(x1 - x0) < plain::absolute(y1 - y0);
    if (steep) {
        std::swap(x0, y0);
        std::swap(x1, y1);
    }
    if (x1 < x0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const int64_t deltax = x1 - x0;
    const int64_t deltay = plain::absolute(y1 - y0);
    const int64_t ystep = y0 < y1 ? 1 : -1;
    const int64_t along = steep ? canvas.width : 1;
    const int64_t across = ystep * (steep ? 1 : canvas.width);
    const long double start =
        static_cast<long double>(x0 * along + y0 * (steep ? 1 : canvas.width));
    const long double slope = static_cast<long double>(along) +
                              static_cast<long double>(across) * static_cast<long double>(deltay) /
                                  static_cast<long double>(deltax);
    const long double margin = static_cast<long double>(4 * canvas.width);
    const long double a = (-margin - start) / slope;
    const long double b = (static_cast<long double>(canvas.count()) + margin - start) / slope;
    if (!(std::fabs(a - b) < 2e5L))
        return false;
    const auto last_step = static_cast<long double>(deltax);
    auto k = static_cast<int64_t>(std::fmax(std::fmin(a, b) - 2, 0.0L));
    const auto end = static_cast<int64_t>(std::fmin(std::fmax(a, b) + 2, last_step));
    wide error = (deltax >> 1) - static_cast<wide>(k) * deltay;
    int64_t y = y0;
    if (error < 0) {
        const auto turns = static_cast<int64_t>((-error + deltax - 1) / deltax);
        error += static_cast<wide>(turns) * deltax;
        y += turns * ystep;
    }
    for (; k <= end; k++) {
        if (steep)
            canvas.put(y, x0 + k, 1);
        else
            canvas.put(x0 + k, y, 1);
        error -= deltay;
        if (error < 0) {
            y += ystep;
            error += deltax;
        }
    }
    return true;
}

} // namespace

TEST_F(LineTest, every_line_between_points_of_a_small_square_is_the_literal_walk) {
    make_screen(9, 9);
    for (int end = 0; end < 9 * 9 * 9 * 9 && !HasFatalFailure(); end++)
        compare(end % 9, end / 9 % 9, end / 81 % 9, end / 729);
}

TEST_F(LineTest, lines_partly_outside_keep_the_pixels_of_the_whole_walk) {
    plain::dice dice(1);
    make_screen(37, 23);
    compare_random(dice, 5000, 60);
}

TEST_F(LineTest, lines_mostly_outside_keep_the_pixels_of_the_whole_walk) {
    plain::dice dice(2);
    make_screen(37, 23);
    compare_random(dice, 1500, 3000);
}

TEST_F(LineTest, lines_on_a_16_bit_screen_are_the_literal_walk) {
    plain::dice dice(3);
    make_screen(37, 23, UX_COLOR_MODE_RGB565);
    compare_random(dice, 3000, 60);
}

TEST_F(LineTest, lines_on_screens_of_one_row_or_column_are_the_literal_walk) {
    plain::dice dice(4);
    for (const auto &[width, height] : {std::pair{1, 1}, {1, 20}, {20, 1}, {2, 9}}) {
        make_screen(width, height);
        compare_random(dice, 500, 30);
    }
}

TEST_F(LineTest, axis_parallel_lines_of_all_lengths_are_the_literal_walk) {
    make_screen(33, 9);
    for (int from = -40; from <= 70 && !HasFatalFailure(); from += 3)
        for (int to = -40; to <= 70 && !HasFatalFailure(); to++) {
            compare(from, 4, to, 4);
            compare(4, from, 4, to);
        }
}

TEST_F(LineTest, lines_at_odd_addresses_are_the_literal_walk) {
    plain::dice dice(5);
    make_screen(19, 11, UX_COLOR_MODE_RGB565);
    main_screen.buf++;
    main_screen.height--; // the last byte belongs to the row left out
    compare_random(dice, 1000, 25);
    make_screen(19, 11);
    main_screen.buf += 3;
    main_screen.height--;
    compare_random(dice, 1000, 25);
}

TEST_F(LineTest, horizontal_line_over_all_columns_fills_the_screen) {
    uxDrawLine(INT_MIN, 3, INT_MAX, 3, 9);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8, 9));
}

TEST_F(LineTest, vertical_line_over_all_rows_is_a_column) {
    uxDrawLine(2, INT_MAX, 2, INT_MIN, 9);
    plain::canvas expected = empty_canvas();
    for (int y = 0; y < 8; y++)
        expected.put(2, y, 9);
    EXPECT_EQ(plain::numbers(main_screen.buf), expected.pixels);
}

// Element y * 16 + x with x = y: every 17th.
TEST_F(LineTest, diagonal_over_all_integers_hits_every_17th_element) {
    uxDrawLine(INT_MIN, INT_MIN, INT_MAX, INT_MAX, 9);
    std::vector<uint32_t> expected(16 * 8);
    for (size_t element = 0; element < expected.size(); element += 17)
        expected[element] = 9;
    EXPECT_EQ(plain::numbers(main_screen.buf), expected);
}

// Element y * 16 + x with y = -1 - x: -16 - 15 * x, so 14, 29, 44 ...
TEST_F(LineTest, falling_diagonal_over_all_integers_hits_every_15th_element) {
    uxDrawLine(INT_MIN, INT_MAX, INT_MAX, INT_MIN, 9);
    std::vector<uint32_t> expected(16 * 8);
    for (size_t element = 14; element < expected.size(); element += 15)
        expected[element] = 9;
    EXPECT_EQ(plain::numbers(main_screen.buf), expected);
}

TEST_F(LineTest, lines_wholly_outside_draw_nothing) {
    uxDrawLine(0, -1, 15, -1, 9);
    uxDrawLine(0, 8, 15, 8, 9);
    uxDrawLine(0, -5, 15, -2, 9);
    uxDrawLine(0, INT_MIN, 15, -2, 9);
    uxDrawLine(0, INT_MAX, 15, 8, 9);
    uxDrawLine(INT_MAX, INT_MAX, INT_MAX, INT_MAX, 9);
    uxDrawLine(INT_MIN, INT_MIN, INT_MIN, INT_MIN, 9);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

TEST_F(LineTest, lines_between_any_integers_keep_the_pixels_of_the_whole_walk) {
    plain::dice dice(6);
    make_screen(37, 23);
    int compared = 0;
    for (int i = 0; i < 4000; i++) {
        const int x0 = dice.between(INT_MIN, INT_MAX);
        const int y0 = dice.between(INT_MIN, INT_MAX);
        // Through or past the screen, and on as far again.
        const auto beyond = [&dice](int n) {
            const int64_t wanted = dice.between(-40, 60) - int64_t{n};
            return static_cast<int>(std::clamp<int64_t>(wanted, INT_MIN, INT_MAX));
        };
        const int x1 = i % 3 == 0 ? dice.between(INT_MIN, INT_MAX) : beyond(x0);
        const int y1 = i % 3 == 0 ? dice.between(INT_MIN, INT_MAX) : beyond(y0);
        plain::canvas canvas = empty_canvas();
        if (!draw_near_part(canvas, x0, y0, x1, y1))
            continue;
        compared++;
        memset(main_screen.buf, 0, bytes());
        uxDrawLine(x0, y0, x1, y1, 1);
        ASSERT_EQ(plain::numbers(main_screen.buf), canvas.pixels)
            << "line " << x0 << ", " << y0 << " - " << x1 << ", " << y1;
    }
    EXPECT_GT(compared, 2000);
}

TEST_F(LineTest, entering_the_literal_walk_late_is_the_literal_walk) {
    plain::dice dice(7);
    for (int i = 0; i < 500; i++) {
        const int x0 = dice.between(-900, 900);
        const int y0 = dice.between(-900, 900);
        const int x1 = dice.between(-900, 900);
        const int y1 = dice.between(-900, 900);
        plain::canvas late = {37, 23};
        plain::canvas whole = {37, 23};
        if (!draw_near_part(late, x0, y0, x1, y1))
            continue;
        plain::line(whole, x0, y0, x1, y1, 1);
        ASSERT_EQ(late.pixels, whole.pixels);
    }
}
