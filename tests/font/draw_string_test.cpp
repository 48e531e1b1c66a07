// SPDX-License-Identifier: MIT
// Strings of the engine on the screen.

#include "tests/support/screen_test.h"

TEST_F(ScreenTest, string_of_one_glyph_is_drawn_in_two_colours) {
    fake_chip::get().engine_glyphs['a'].outlines = {{{"X.X", ".X."}}};
    fake_chip::get().cell_of = [](uint32_t, uint32_t) { return fake_chip::cell{3, 2}; };
    ASSERT_EQ(ux_open_font(), 0);
    EXPECT_EQ(ux_draw_string("a", 16, 5, 7, 2, 1, 10, 10, 0), 0);
    EXPECT_EQ(buf_pixel(2, 1), 5u);
    EXPECT_EQ(buf_pixel(3, 1), 7u);
    EXPECT_EQ(buf_pixel(4, 1), 5u);
    EXPECT_EQ(buf_pixel(3, 2), 5u);
    EXPECT_EQ(buf_pixel(4, 2), 7u);
    EXPECT_EQ(buf_pixel(5, 1), 0u);
    EXPECT_EQ(ux_close_font(), 0);
}
