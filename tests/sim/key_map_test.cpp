// SPDX-License-Identifier: MIT
// Where the keyboard map lies, and that it is painted whole.
#include "sim/key_map.h"

#include <gtest/gtest.h>

namespace {

using namespace ux::sim;

TEST(key_map, lies_in_the_middle_of_the_window) {
    const key_map_place place = place_key_map({1592, 768}, 1);
    EXPECT_EQ(place.width, 440);
    EXPECT_EQ(place.height, 372);
    EXPECT_EQ(place.x, 576);
    EXPECT_EQ(place.y, 198);
}

TEST(key_map, shrinks_to_94_percent_of_a_small_window) {
    const key_map_place place = place_key_map({240, 240}, 1); // 225.6 / 440 = 0.5127
    EXPECT_EQ(place.width, 225);
    EXPECT_EQ(place.height, 190);
    EXPECT_EQ(place.x, 7);
    EXPECT_EQ(place.y, 25);
}

TEST(key_map, bears_a_window_without_room) {
    const key_map_place place = place_key_map({1, 1}, 1);
    EXPECT_EQ(place.width, 1);
    EXPECT_EQ(place.height, 1);
    canvas panel(place.width, place.height, place.scale, {});
    paint_key_map(panel);
}

TEST(key_map, has_an_edge_all_around_and_eight_rows_of_caps) {
    constexpr int k_width = 440;
    canvas panel(k_width, 372, 1, {});
    paint_key_map(panel);
    for (int x : {0, k_width - 1}) {
        EXPECT_EQ(panel.pixels()[x], 0xff5a606bu);
    }
    int caps = 0;
    // Down a line through the left part of all caps, beside their texts: panel, cap, panel ...
    for (int y = 61; y < 360; ++y) {
        const auto bright = [&](int row) {
            return (panel.pixels()[row * k_width + 38] & 0xff) > 0x48;
        };
        caps += bright(y) && !bright(y - 1);
    }
    EXPECT_EQ(caps, 8);
}

} // namespace
