// SPDX-License-Identifier: MIT
// The window's geometry. The remote control is 240 x 600 units, its wheel lies around (120, 136).
#include "sim/remote_layout.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace ux::sim;

int key_at(double x, double y) {
    const remote_button *button = button_at({x, y});
    return button == nullptr ? -1 : button->key;
}

TEST(remote_layout, the_middle_of_the_wheel_is_ok) {
    EXPECT_EQ(key_at(120, 136), 23);
    EXPECT_EQ(key_at(120 + 33, 136), 23);
    EXPECT_EQ(key_at(120 + 24, 136 + 24), 23); // 33.9 from the middle
}

TEST(remote_layout, the_ring_has_an_arrow_on_each_side) {
    EXPECT_EQ(key_at(120, 136 - 60), 19);
    EXPECT_EQ(key_at(120, 136 + 60), 20);
    EXPECT_EQ(key_at(120 - 60, 136), 21);
    EXPECT_EQ(key_at(120 + 60, 136), 22);
    EXPECT_EQ(key_at(120 + 40, 136 - 41), 19); // just above the diagonal
    EXPECT_EQ(key_at(120 + 41, 136 - 40), 22); // just below it
}

TEST(remote_layout, between_ok_and_ring_and_beside_the_wheel_nothing_is_hit) {
    EXPECT_EQ(key_at(120 + 37, 136), -1);
    EXPECT_EQ(key_at(120 + 89, 136), -1);
    EXPECT_EQ(key_at(120 + 70, 136 + 70), -1); // the corner of the wheel's box
    EXPECT_EQ(key_at(-5, 300), -1);
    EXPECT_EQ(key_at(5, 595), -1);
}

TEST(remote_layout, the_digits_stand_as_on_a_telephone) {
    const int columns[] = {51, 120, 189};
    const int rows[] = {289, 351, 413, 475};
    for (int digit = 1; digit <= 9; ++digit) {
        EXPECT_EQ(key_at(columns[(digit - 1) % 3], rows[(digit - 1) / 3]), digit + 1);
    }
    EXPECT_EQ(key_at(columns[0], rows[3]), 34);
    EXPECT_EQ(key_at(columns[1], rows[3]), 1);
    EXPECT_EQ(key_at(columns[2], rows[3]), 35);
    EXPECT_EQ(key_at(columns[1], 537), 32);
}

TEST(remote_layout, right_and_bottom_edges_of_a_key_are_outside) {
    EXPECT_EQ(key_at(22, 264), 2);
    EXPECT_EQ(key_at(79.9, 313.9), 2);
    EXPECT_EQ(key_at(80, 300), -1);
    EXPECT_EQ(key_at(40, 314), -1);
}

TEST(remote_layout, every_key_has_one_button_and_all_lie_on_the_remote) {
    std::set<int> keys;
    for (const remote_button &button : remote_buttons()) {
        EXPECT_TRUE(keys.insert(button.key).second) << button.key;
        EXPECT_GE(button.area.x, 0);
        EXPECT_GE(button.area.y, 0);
        EXPECT_LE(button.area.x + button.area.width, 240);
        EXPECT_LE(button.area.y + button.area.height, 600);
    }
    EXPECT_EQ(keys, (std::set<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 19, 20, 21, 22, 23, 32, 34, 35}));
}

TEST(remote_layout, no_two_keys_of_the_pad_overlap) {
    auto buttons = remote_buttons();
    for (const remote_button &one : buttons) {
        for (const remote_button &other : buttons) {
            if (&one == &other || one.shape != button_shape::pill ||
                other.shape != button_shape::pill) {
                continue;
            }
            bool apart = one.area.x + one.area.width <= other.area.x ||
                         other.area.x + other.area.width <= one.area.x ||
                         one.area.y + one.area.height <= other.area.y ||
                         other.area.y + other.area.height <= one.area.y;
            EXPECT_TRUE(apart) << one.label << " and " << other.label;
        }
    }
}

TEST(window_layout, a_large_display_shows_the_screen_pixel_for_pixel) {
    window_size size = preferred_window(1280, 720, 1920, 1080);
    EXPECT_EQ(size.width, 24 + 1280 + 24 + 240 + 24);
    EXPECT_EQ(size.height, 24 + 720 + 24);
    window_layout layout = layout_for(size, 1280, 720);
    EXPECT_DOUBLE_EQ(layout.screen.x, 24);
    EXPECT_DOUBLE_EQ(layout.screen.y, 24);
    EXPECT_DOUBLE_EQ(layout.screen.width, 1280);
    EXPECT_DOUBLE_EQ(layout.screen.height, 720);
    EXPECT_DOUBLE_EQ(layout.remote.x, 24 + 1280 + 24);
    EXPECT_DOUBLE_EQ(layout.remote.y, 24 + 60);
    EXPECT_DOUBLE_EQ(layout.remote_scale, 1);
}

TEST(window_layout, a_small_screen_leaves_the_remote_at_full_size) {
    window_size size = preferred_window(320, 240, 1920, 1080);
    EXPECT_EQ(size.width, 320 + 240 + 72);
    EXPECT_EQ(size.height, 600 + 48);
    window_layout layout = layout_for(size, 320, 240);
    EXPECT_DOUBLE_EQ(layout.screen.width, 320);
    EXPECT_DOUBLE_EQ(layout.screen.y, 24 + 180);
    EXPECT_DOUBLE_EQ(layout.remote_scale, 1);
}

TEST(window_layout, a_small_display_shrinks_the_picture_in_proportion) {
    window_size size = preferred_window(1280, 720, 1366, 768);
    EXPECT_LE(size.width, 1366);
    EXPECT_LE(size.height, 768);
    window_layout layout = layout_for(size, 1280, 720);
    EXPECT_NEAR(layout.screen.width / layout.screen.height, 1280.0 / 720, 0.001);
    EXPECT_GT(layout.screen.width, 1000);
    EXPECT_DOUBLE_EQ(layout.remote_scale, 1);
}

TEST(window_layout, a_low_display_shrinks_the_remote_too) {
    window_size size = preferred_window(1280, 720, 800, 348);
    EXPECT_LE(size.width, 800);
    EXPECT_EQ(size.height, 348);
    window_layout layout = layout_for(size, 1280, 720);
    EXPECT_DOUBLE_EQ(layout.remote_scale, 0.5);
    EXPECT_DOUBLE_EQ(layout.remote.height, 300);
}

TEST(window_layout, parts_never_overlap_whatever_the_window) {
    for (int width : {240, 500, 1000, 4000}) {
        for (int height : {240, 600, 2000}) {
            window_layout layout = layout_for({width, height}, 1280, 720);
            EXPECT_LE(layout.screen.x + layout.screen.width, layout.remote.x);
            EXPECT_LE(layout.remote.x + layout.remote.width, width);
            EXPECT_LE(layout.remote.y + layout.remote.height, height);
        }
    }
}

TEST(window_layout, a_point_of_the_picture_is_a_pixel_of_the_screen) {
    window_layout layout{.screen = {10, 20, 640, 360}, .remote = {}, .remote_scale = 1};
    auto pixel = [&](double x, double y) { return screen_pixel_at(layout, {x, y}, 1280, 720); };
    EXPECT_EQ(pixel(10, 20)->x, 0);
    EXPECT_EQ(pixel(10, 20)->y, 0);
    EXPECT_EQ(pixel(11.5, 21)->x, 3);
    EXPECT_EQ(pixel(11.5, 21)->y, 2);
    EXPECT_EQ(pixel(649.9, 379.9)->x, 1279);
    EXPECT_EQ(pixel(649.9, 379.9)->y, 719);
    EXPECT_FALSE(pixel(9.9, 30));
    EXPECT_FALSE(pixel(650, 30));
    EXPECT_FALSE(pixel(30, 380));
}

TEST(window_layout, points_of_the_window_are_points_of_the_remote) {
    window_layout layout{.screen = {}, .remote = {100, 50, 120, 300}, .remote_scale = 0.5};
    EXPECT_DOUBLE_EQ(layout.in_remote({160, 118}).x, 120);
    EXPECT_DOUBLE_EQ(layout.in_remote({160, 118}).y, 136);
}

} // namespace
