// SPDX-License-Identifier: MIT
// How a text is laid out: wrapping, line breaks, the last line, baselines, and ink that leaves its
// canvas row.

#include "tests/font/text_test.h"

using TextLinesTest = TextTest;

TEST_F(TextLinesTest, text_wraps_at_the_glyph_that_crosses_the_right_edge) {
    make_screen(8, 10);
    give_dot('a');
    draw(u"aaa", 0, 0, 5, 10);
    EXPECT_EQ(ink(), "X.X.....\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "X.......\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "........\n");
}

TEST_F(TextLinesTest, pen_that_ends_at_the_right_edge_does_not_wrap) {
    make_screen(8, 6);
    give_dot('a');
    draw(u"aaa", 0, 0, 6, 10);
    EXPECT_EQ(ink(), "X.X.X...\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "........\n");
}

TEST_F(TextLinesTest, glyph_that_wrapped_counts_in_the_new_line) {
    make_screen(8, 12);
    give_dot('a');
    draw(u"aaaa", 0, 0, 3, 12, 3); // baseline 2: the dot lies two rows above the line, moved down
    EXPECT_EQ(take_codes().size(), 4u);
    EXPECT_EQ(ink().find('X'), std::string::npos); // one row, and that is the one cut
    give('a', {0, 2, 2, {"X"}});
    draw(u"aaaa", 0, 0, 3, 12, 3);
    for (int line = 0; line < 4; line++)
        EXPECT_EQ(fb_pixel(0, 3 * line), k_ink) << line;
    EXPECT_EQ(fb_pixel(2, 3), 0u);
}

TEST_F(TextLinesTest, glyph_wider_than_the_box_leaves_the_first_line_empty) {
    make_screen(8, 10);
    give_dot('W', 9);
    draw(u"W", 0, 0, 4, 10);
    EXPECT_EQ(fb_pixel(0, 0), 0u);
    EXPECT_EQ(fb_pixel(0, 5), k_ink);
}

TEST_F(TextLinesTest, carriage_return_and_line_feed_each_break_the_line) {
    make_screen(8, 16);
    give_dot('a');
    give('\r', {0, 4, 3, {}});
    give('\n', {0, 4, 3, {}});
    draw(u"a\ra", 0, 0, 8, 15);
    EXPECT_EQ(fb_pixel(0, 5), k_ink);
    draw(u"a\r\na", 4, 0, 4, 15);
    EXPECT_EQ(fb_pixel(4, 5), 0u);
    EXPECT_EQ(fb_pixel(4, 10), k_ink);
}

TEST_F(TextLinesTest, unit_with_a_high_byte_breaks_no_line) {
    make_screen(12, 6);
    for (uint32_t code : {0x010Au, 0x0A0Du, 0x0D0Au, 0x0A00u, 0xFF0Du})
        give_dot(code);
    draw(u"\u010A\u0A0D\u0D0A\u0A00\uFF0D", 0, 0, 12, 5);
    EXPECT_EQ(ink().substr(0, 12), "X.X.X.X.X...");
}

TEST_F(TextLinesTest, line_break_without_a_glyph_breaks_nothing) {
    make_screen(8, 6);
    give_dot('a');
    draw(u"a\na", 0, 0, 8, 10);
    EXPECT_EQ(ink().substr(0, 8), "X.X.....");
    EXPECT_EQ(take_calls(),
              (calls{"FSS_set_scale 327680 0 0 327680", "FSS_get_bitmap 97", "FSS_free_char",
                     "FSS_get_bitmap 10", "FSS_get_bitmap 97", "FSS_free_char"}));
}

TEST_F(TextLinesTest, character_without_a_glyph_takes_no_room) {
    make_screen(8, 6);
    give_dot('a');
    draw(u"?a?a", 0, 0, 8, 10);
    EXPECT_EQ(ink().substr(0, 8), "X.X.....");
}

TEST_F(TextLinesTest, break_glyph_is_painted_at_the_start_of_the_new_line_and_takes_no_room) {
    make_screen(8, 8);
    give_dot('a');
    give('\n', {0, 4, 7, {"...X", "..XX"}});
    draw(u"a\na", 0, 0, 8, 10);
    EXPECT_EQ(ink(), "X.......\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "X..X....\n"
                     "..XX....\n"
                     "........\n");
    EXPECT_EQ(take_calls(),
              (calls{"FSS_set_scale 327680 0 0 327680", "FSS_get_bitmap 97", "FSS_free_char",
                     "FSS_get_bitmap 10", "FSS_free_char", "FSS_get_bitmap 97", "FSS_free_char"}));
}

TEST_F(TextLinesTest, line_break_behind_a_full_line_moves_down_once) {
    make_screen(8, 16);
    give_dot('W', 9);
    give_dot('a');
    give('\n', {0, 4, 3, {}});
    draw(u"W\na", 0, 0, 4, 15); // W lies in line 1, its pen beyond the box
    EXPECT_EQ(fb_pixel(0, 5), k_ink);
    EXPECT_EQ(fb_pixel(0, 10), k_ink);
}

TEST_F(TextLinesTest, line_that_is_not_whole_is_not_drawn) {
    make_screen(8, 10);
    give_dot('a');
    give('\n', {0, 4, 3, {"XX"}});
    draw(u"a\na", 0, 0, 8, 9);
    EXPECT_EQ(fb_pixel(0, 0), k_ink);
    EXPECT_EQ(fb_pixel(0, 5), 0u);
    draw(u"a\na", 0, 0, 8, 10);
    EXPECT_EQ(fb_pixel(0, 5), k_ink);
}

TEST_F(TextLinesTest, glyph_fetched_at_the_stop_is_given_back_and_no_other_is_fetched) {
    give_dot('a');
    draw(u"aaaa", 0, 0, 2, 5); // one line of one glyph
    EXPECT_EQ(take_calls(), (calls{"FSS_set_scale 327680 0 0 327680", "FSS_get_bitmap 97",
                                   "FSS_free_char", "FSS_get_bitmap 97", "FSS_free_char"}));
}

TEST_F(TextLinesTest, box_lower_than_a_line_shows_nothing) {
    give_dot('a');
    draw(u"aa", 0, 0, 8, 4);
    EXPECT_EQ(ink().find('X'), std::string::npos);
    EXPECT_EQ(take_codes(), std::vector<int>{'a'});
}

TEST_F(TextLinesTest, box_without_width_makes_the_calls_and_shows_nothing) {
    give_dot('a');
    for (int width : {0, -1, -100}) {
        draw(u"aaaa", 2, 2, width, 10); // each glyph wraps: two lines, the third stops
        EXPECT_EQ(take_codes(), (std::vector<int>{'a', 'a'})) << width;
    }
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(TextLinesTest, box_without_height_makes_the_first_call_and_shows_nothing) {
    give_dot('a');
    for (int height : {0, -1, -100}) {
        draw(u"aaaa", 2, 2, 8, height);
        EXPECT_EQ(take_codes(), std::vector<int>{'a'}) << height;
    }
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(TextLinesTest, size_0_and_negative_sizes_show_nothing) {
    give_dot('a');
    for (int size : {0, -1, -5, -70000}) {
        draw(u"aaaa", 0, 0, 8, 8, size);
        EXPECT_EQ(take_codes(), std::vector<int>{'a'}) << size;
    }
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(TextLinesTest, scale_of_any_size_is_its_low_16_bits_in_fixed_point) {
    uxFontDrawing(u"", k_ink, k_key, 0, 0, 8, 8, -5, 0, 0, 1);
    uxFontDrawing(u"", k_ink, k_key, 0, 0, 8, 8, 0x7FFFFFFF, 0x10001, 0, 1);
    EXPECT_EQ(take_calls(),
              (calls{"FSS_set_scale -327680 0 0 0", "FSS_set_scale -65536 0 0 65536"}));
}

TEST_F(TextLinesTest, baseline_lies_four_fifths_below_the_lines_top) {
    make_screen(4, 40);
    give('a', {0, 0, 2, {"X"}});
    const int baselines[][2] = {{1, 0}, {2, 1}, {4, 3}, {5, 4}, {6, 4}, {7, 5}, {16, 12}, {24, 19}};
    for (const auto &[size, row] : baselines) {
        ux_page_clean();
        draw(u"a", 0, 0, 4, 40, size);
        EXPECT_EQ(ink().find('X'), static_cast<size_t>(5 * row)) << size;
    }
}

TEST_F(TextLinesTest, glyph_above_its_line_is_moved_down_and_loses_its_last_rows) {
    make_screen(4, 4);
    give('a', {0, 6, 4, {"X", "XX", "XXX", "XXXX"}}); // rows -2 to 1
    draw(u"a", 0, 0, 4, 5);
    EXPECT_EQ(ink(), "X...\n"
                     "XX..\n"
                     "....\n"
                     "....\n");
}

TEST_F(TextLinesTest, glyph_above_the_second_line_does_not_reach_the_first) {
    make_screen(4, 8);
    give('a', {0, 6, 4, {"X", "XX", "XXX"}});
    give('\n', {0, 4, 3, {}});
    draw(u"\na", 0, 0, 4, 10);
    EXPECT_EQ(ink(), "....\n"
                     "....\n"
                     "....\n"
                     "....\n"
                     "....\n"
                     "X...\n"
                     "....\n"
                     "....\n");
}

TEST_F(TextLinesTest, rows_below_a_line_run_on_to_the_end_of_the_box) {
    make_screen(4, 8);
    give('a', {0, 4, 2, {"X", "X", "X", "X", "X", "X", "X", "X"}});
    draw(u"a", 0, 0, 4, 7); // one line of 5, two rows more in the box
    EXPECT_EQ(ink(), "X...\n"
                     "X...\n"
                     "X...\n"
                     "X...\n"
                     "X...\n"
                     "X...\n"
                     "X...\n"
                     "....\n");
}

TEST_F(TextLinesTest, rows_of_a_later_line_below_the_box_are_dropped) {
    make_screen(4, 14);
    give('a', {0, 4, 4, {"X", "X", "X", "X", "X", "X", "X", "X"}});
    draw(u"aa", 0, 0, 4, 11);
    for (int y = 0; y < 14; y++)
        EXPECT_EQ(fb_pixel(0, y), y < 11 ? k_ink : 0u) << y;
}

TEST_F(TextLinesTest, all_columns_of_the_bitmap_are_painted_whatever_the_advance) {
    make_screen(26, 2);
    give('a', {0, 4, 1, {"X......XX......X.......X"}});
    draw(u"a", 1, 0, 25, 5);
    EXPECT_EQ(ink().substr(0, 26), ".X......XX......X.......X.");
}

TEST_F(TextLinesTest, every_byte_of_a_bitmap_paints_its_set_bits) {
    make_screen(8, 1);
    for (unsigned byte = 0; byte < 256; byte++) {
        std::string bits;
        for (unsigned bit = 128; bit > 0; bit /= 2)
            bits += byte & bit ? 'X' : '.';
        ux_page_clean();
        give('a', {0, 0, 8, {bits}});
        draw(u"a", 0, 0, 8, 1, 1);
        EXPECT_EQ(ink(), bits + '\n');
    }
}

TEST_F(TextLinesTest, ink_right_of_the_box_goes_on_in_the_next_canvas_row) {
    make_screen(8, 5);
    give('a', {0, 4, 4, {"XXXXXX"}});
    draw(u"a", 2, 1, 4, 5);
    EXPECT_EQ(ink(), "........\n"
                     "..XXXX..\n"
                     "..XX....\n"
                     "........\n"
                     "........\n");
}

TEST_F(TextLinesTest, bearing_counts_towards_the_right_edge_for_ink_only) {
    make_screen(8, 5);
    give('a', {3, 4, 4, {"XX"}}); // the pen fits, the ink does not
    draw(u"a", 2, 1, 4, 5);
    EXPECT_EQ(ink(), "........\n"
                     ".....X..\n"
                     "..X.....\n"
                     "........\n"
                     "........\n");
}

TEST_F(TextLinesTest, ink_left_of_the_box_goes_to_the_end_of_the_previous_canvas_row) {
    make_screen(8, 8);
    give('\n', {-2, 4, 0, {"XXX"}});
    draw(u"\n", 2, 0, 4, 10);
    EXPECT_EQ(ink(), "........\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "....XX..\n"
                     "..X.....\n"
                     "........\n"
                     "........\n");
}

TEST_F(TextLinesTest, ink_before_the_canvas_is_dropped) {
    make_screen(8, 3);
    give('a', {-2, 4, 3, {"XXX"}});
    draw(u"a", 2, 1, 4, 5);
    EXPECT_EQ(ink(), "........\n"
                     "..X.....\n"
                     "........\n");
}

TEST_F(TextLinesTest, ink_behind_the_canvas_is_dropped) {
    make_screen(8, 6);
    give('a', {0, 0, 4, {"XXXXXX", "XXXXXX"}}); // begins in the last of 5 rows
    draw(u"a", 2, 0, 4, 5);
    EXPECT_EQ(ink(), "........\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "..XXXX..\n"
                     "........\n");
}

TEST_F(TextLinesTest, glyph_without_rows_or_columns_moves_the_pen_only) {
    make_screen(8, 2);
    give_dot('a');
    give(' ', {0, 0, 3, {}});
    give('_', {0, 4, 1, {"", "", ""}});
    draw(u"a a_a", 0, 0, 8, 5);
    EXPECT_EQ(ink().substr(0, 8), "X....X.."); // the last one wraps
}
