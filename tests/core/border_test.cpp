// SPDX-License-Identifier: MIT
// Borders, painted by a container without a background: order of rings and sides, the colours of
// the focused state, borders wider than their object.

#include "tests/support/plain_drawing.h"
#include "tests/support/screen_test.h"

#include <climits>

namespace {

constexpr uint32_t k_top = 0xFF000001;
constexpr uint32_t k_bottom = 0xFF000002;
constexpr uint32_t k_left = 0xFF000003;
constexpr uint32_t k_right = 0xFF000004;

class BorderTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        make_box();
    }

    void make_box() {
        ux_page *page = new_page();
        box = ux_container_new(&page->container, 2, 1, 7, 5);
        box->bg_color = UX_COLOR_NONE;
        box->obj.page_id = main_screen.current_page;
        box->obj.top_color = k_top;
        box->obj.bottom_color = k_bottom;
        box->obj.left_color = k_left;
        box->obj.right_color = k_right;
        box->obj.top_focus_color = 0xFF000005;
        box->obj.bottom_focus_color = 0xFF000006;
        box->obj.left_focus_color = 0xFF000007;
        box->obj.right_focus_color = 0xFF000008;
    }

    // The screen as digits: the low digit of each pixel.
    std::string digits() const {
        std::string picture;
        for (int y = 0; y < main_screen.height; y++) {
            for (int x = 0; x < main_screen.width; x++)
                picture += static_cast<char>(buf_pixel(x, y) ? '0' + buf_pixel(x, y) % 10 : '.');
            picture += '\n';
        }
        return picture;
    }

    // The four sides ring by ring, as literal lines.
    static void paint_literally(plain::canvas &canvas, const ux_obj &obj, int64_t first_ring = 0) {
        for (int64_t i = first_ring; i < obj.border; i++) {
            const int64_t left = obj.x + i;
            const int64_t top = obj.y + i;
            const int64_t right = int64_t{obj.x} + obj.width - 1 - i;
            const int64_t bottom = int64_t{obj.y} + obj.height - 1 - i;
            if (obj.top_color)
                plain::line(canvas, left, top, right, top, obj.top_color);
            if (obj.bottom_color)
                plain::line(canvas, left, bottom, right, bottom, obj.bottom_color);
            if (obj.left_color)
                plain::line(canvas, left, top, left, bottom, obj.left_color);
            if (obj.right_color)
                plain::line(canvas, right, top, right, bottom, obj.right_color);
        }
    }

    void compare() {
        fill_buf(0);
        plain::canvas canvas = {main_screen.width, main_screen.height};
        paint_literally(canvas, box->obj);
        ux_container_show_self(box);
        ASSERT_EQ(plain::numbers(main_screen.buf), canvas.pixels)
            << box->obj.width << " x " << box->obj.height << " at " << box->obj.x << ", "
            << box->obj.y << ", border " << box->obj.border;
    }

    ux_container *box = nullptr;
};

} // namespace

TEST_F(BorderTest, border_0_and_below_paints_nothing) {
    for (int border : {0, -1, INT_MIN}) {
        box->obj.border = border;
        ux_container_show_self(box);
        EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
    }
}

TEST_F(BorderTest, later_sides_win_the_corners) {
    box->obj.border = 1;
    ux_container_show_self(box);
    EXPECT_EQ(digits(), "................\n"
                        "..3111114.......\n"
                        "..3.....4.......\n"
                        "..3.....4.......\n"
                        "..3.....4.......\n"
                        "..3222224.......\n"
                        "................\n"
                        "................\n");
}

TEST_F(BorderTest, rings_go_from_the_outside_in) {
    box->obj.border = 2;
    ux_container_show_self(box);
    EXPECT_EQ(digits(), "................\n"
                        "..3111114.......\n"
                        "..3311144.......\n"
                        "..33...44.......\n"
                        "..3322244.......\n"
                        "..3222224.......\n"
                        "................\n"
                        "................\n");
}

TEST_F(BorderTest, side_of_color_0_is_not_painted) {
    box->obj.border = 1;
    box->obj.left_color = 0;
    box->obj.bottom_color = 0;
    ux_container_show_self(box);
    EXPECT_EQ(digits(), "................\n"
                        "..1111114.......\n"
                        "........4.......\n"
                        "........4.......\n"
                        "........4.......\n"
                        "........4.......\n"
                        "................\n"
                        "................\n");
}

TEST_F(BorderTest, focused_object_paints_all_sides_in_the_top_focus_color) {
    box->obj.border = 1;
    box->obj.status |= UX_ST_FOCUSED;
    ux_container_show_self(box);
    EXPECT_EQ(digits(), "................\n"
                        "..5555555.......\n"
                        "..5.....5.......\n"
                        "..5.....5.......\n"
                        "..5.....5.......\n"
                        "..5555555.......\n"
                        "................\n"
                        "................\n");
}

TEST_F(BorderTest, focused_object_without_top_focus_color_paints_no_border) {
    box->obj.border = 3;
    box->obj.top_focus_color = 0;
    box->obj.status |= UX_ST_FOCUSED;
    ux_container_show_self(box);
    EXPECT_EQ(plain::numbers(main_screen.buf), std::vector<uint32_t>(16 * 8));
}

// Ring 2 of a 5 x 5 box is one pixel, ring 3 has its ends reversed: its top is row 4, its bottom
// row 2, its left column 5, its right column 3.
TEST_F(BorderTest, reversed_ends_of_inner_rings_still_paint) {
    box->obj.border = 4;
    box->obj.width = 5;
    ux_container_show_self(box);
    plain::canvas canvas = {16, 8};
    paint_literally(canvas, box->obj);
    EXPECT_EQ(plain::numbers(main_screen.buf), canvas.pixels);
    EXPECT_EQ(digits(), "................\n"
                        "..31114.........\n"
                        "..34234.........\n"
                        "..34434.........\n"
                        "..34134.........\n"
                        "..32224.........\n"
                        "................\n"
                        "................\n");
}

// Rings of a 3 x 3 box beyond the second lie outside it: the border grows over its surroundings.
TEST_F(BorderTest, border_wider_than_the_object_paints_around_it) {
    box->obj.x = 5;
    box->obj.y = 3;
    box->obj.width = box->obj.height = 3;
    box->obj.border = 4;
    box->obj.top_color = box->obj.bottom_color = box->obj.left_color = box->obj.right_color = 9;
    ux_container_show_self(box);
    EXPECT_EQ(digits(), "................\n"
                        "................\n"
                        "....99999.......\n"
                        "....99999.......\n"
                        "....99999.......\n"
                        "....99999.......\n"
                        "....99999.......\n"
                        "................\n");
}

TEST_F(BorderTest, borders_of_objects_anywhere_are_literal_lines) {
    plain::dice dice(1);
    make_screen(37, 23);
    for (int i = 0; i < 1500 && !HasFatalFailure(); i++) {
        box->obj.x = dice.between(-60, 60);
        box->obj.y = dice.between(-60, 60);
        box->obj.width = dice.between(-20, 70);
        box->obj.height = dice.between(-20, 70);
        box->obj.border = dice.between(0, 12);
        compare();
    }
}

// Widths up to the screen's width and height together.
TEST_F(BorderTest, wide_borders_of_objects_on_the_screen_are_literal_lines) {
    plain::dice dice(2);
    make_screen(37, 23);
    for (int i = 0; i < 200 && !HasFatalFailure(); i++) {
        box->obj.x = dice.between(0, 36);
        box->obj.y = dice.between(0, 22);
        box->obj.width = dice.between(1, 37 - box->obj.x);
        box->obj.height = dice.between(1, 23 - box->obj.y);
        box->obj.border = dice.between(0, 37 + 23);
        box->obj.left_color = i % 3 == 0 ? 0 : k_left;
        box->obj.right_color = i % 5 == 0 ? 0 : k_right;
        compare();
    }
}

TEST_F(BorderTest, rings_further_in_than_the_screen_is_wide_and_high_are_left_out) {
    plain::canvas canvas = {main_screen.width, main_screen.height};
    box->obj.border = 16 + 8;
    paint_literally(canvas, box->obj);
    box->obj.border = INT_MAX;
    ux_container_show_self(box);
    EXPECT_EQ(plain::numbers(main_screen.buf), canvas.pixels);
}

// The guards around the screen are looked at after the test.
TEST_F(BorderTest, border_of_any_width_anywhere_ends_soon) {
    for (int place : {INT_MIN, -1000000, 0, 1000000, INT_MAX})
        for (int size : {INT_MIN, -1, 0, 5, INT_MAX}) {
            box->obj.x = box->obj.y = place;
            box->obj.width = box->obj.height = size;
            box->obj.border = INT_MAX;
            ux_container_show_self(box);
        }
}
