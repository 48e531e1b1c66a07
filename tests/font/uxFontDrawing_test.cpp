// SPDX-License-Identifier: MIT
// The widgets' text drawer: which calls it makes, how it reads the text, where the ink goes on the
// screen. How lines are laid out is tested in text_lines_test.cpp.

#include "tests/font/text_test.h"
#include "tests/support/page_end.h"

#include <climits>

using FontDrawingTest = TextTest;

TEST_F(FontDrawingTest, text_goes_to_fb_and_not_to_buf) {
    make_screen(4, 2);
    set_apart();
    give_dot('a');
    EXPECT_EQ(draw(u"a", 1, 0, 3, 5), 0);
    EXPECT_EQ(ink(), ".X..\n"
                     "....\n");
    EXPECT_EQ(buf_picture(k_ink), "....\n"
                                  "....\n");
}

TEST_F(FontDrawingTest, scale_is_set_then_each_glyph_is_fetched_and_given_back) {
    give_dot('a');
    give_dot(0x20AC);
    EXPECT_EQ(uxFontDrawing(u"a\u20AC", k_ink, k_key, 0, 0, 9, 5, 7, 5, 0, 1), 0);
    EXPECT_EQ(take_calls(), (calls{"FSS_set_scale 458752 0 0 327680", "FSS_get_bitmap 97",
                                   "FSS_free_char", "FSS_get_bitmap 8364", "FSS_free_char"}));
}

TEST_F(FontDrawingTest, empty_and_null_texts_set_the_scale_and_no_more) {
    EXPECT_EQ(draw(u"", 0, 0, 9, 5), 0);
    EXPECT_EQ(take_calls(), calls{"FSS_set_scale 327680 0 0 327680"});
    EXPECT_EQ(draw(nullptr, 0, 0, 9, 5), 0);
    EXPECT_EQ(take_calls(), calls{"FSS_set_scale 327680 0 0 327680"});
}

TEST_F(FontDrawingTest, text_of_127_units_is_drawn) {
    give_dot('a', 0);
    const std::u16string text(127, u'a');
    draw(text.c_str(), 0, 0, 9, 5);
    EXPECT_EQ(take_codes(), std::vector<int>(127, 'a'));
    EXPECT_EQ(fb_pixel(0, 0), k_ink);
}

TEST_F(FontDrawingTest, text_of_128_units_is_not_drawn_at_all) {
    give_dot('a', 0);
    const std::u16string text(128, u'a');
    EXPECT_EQ(draw(text.c_str(), 0, 0, 9, 5), 0);
    EXPECT_EQ(take_calls(), calls{"FSS_set_scale 327680 0 0 327680"});
    EXPECT_EQ(fb_pixel(0, 0), 0u);
}

TEST_F(FontDrawingTest, units_behind_the_128th_are_not_read) {
    const std::u16string text(128, u'a');
    const page_end copy(text.data(), 256);
    EXPECT_EQ(draw(copy.data(), 0, 0, 9, 5), 0);
}

TEST_F(FontDrawingTest, units_behind_the_zero_unit_are_not_read) {
    give_dot('a');
    const page_end copy(u"aa", 6);
    EXPECT_EQ(draw(copy.data(), 0, 0, 9, 5), 0);
    EXPECT_EQ(take_codes(), (std::vector<int>{'a', 'a'}));
}

TEST_F(FontDrawingTest, units_are_little_endian_at_any_address) {
    const uint8_t bytes[] = {0xFF, 0x41, 0x00, 0x34, 0x12, 0x00, 0x01, 0xFF, 0xFF, 0x00, 0x00};
    draw(bytes + 1, 0, 0, 9, 5);
    EXPECT_EQ(take_codes(), (std::vector<int>{0x41, 0x1234, 0x100, 0xFFFF}));
}

TEST_F(FontDrawingTest, unit_with_a_zero_low_byte_does_not_end_the_text) {
    draw(u"\u0100\u4100", 0, 0, 9, 5);
    EXPECT_EQ(take_codes(), (std::vector<int>{0x100, 0x4100}));
}

TEST_F(FontDrawingTest, unknown_modes_make_no_call_and_give_0) {
    give_dot('a');
    for (int mode : {0, 3, 5, 6, 8, 16, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(uxFontDrawing(u"a", k_ink, k_key, 0, 0, 9, 5, 5, 5, 0, mode), 0) << mode;
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(fb_pixel(0, 0), 0u);
}

TEST_F(FontDrawingTest, step_means_nothing_to_a_text_drawn_once) {
    give_dot('a');
    EXPECT_EQ(uxFontDrawing(u"a", k_ink, k_key, 0, 0, 9, 5, 5, 5, -99, 1), 0);
    EXPECT_EQ(fb_pixel(0, 0), k_ink);
}

TEST_F(FontDrawingTest, nothing_is_allocated) {
    give_dot('a');
    give_dot('\n');
    give('b', {-3, 9, 12, {"XXXXXXXXXXXXXXXX", "X.X.X.X.X.X.X.X."}});
    fake_chip::get().record_calls = false;
    hooks::take_allocation_count();
    draw(u"ab ab\nbbb aaaa bab", 0, 0, 14, 40);
    EXPECT_EQ(hooks::take_allocation_count(), 0);
    EXPECT_EQ(fb_pixel(0, 0), k_ink);
}

TEST_F(FontDrawingTest, same_ink_and_key_write_nothing_and_make_all_calls) {
    give_dot('a');
    uxFontDrawing(u"aa", k_ink, k_ink, 0, 0, 9, 5, 5, 5, 0, 1);
    EXPECT_EQ(fb_pixel(0, 0), 0u);
    EXPECT_EQ(take_calls(), (calls{"FSS_set_scale 327680 0 0 327680", "FSS_get_bitmap 97",
                                   "FSS_free_char", "FSS_get_bitmap 97", "FSS_free_char"}));
}

TEST_F(FontDrawingTest, ink_that_differs_from_the_key_in_one_bit_is_written) {
    give_dot('a');
    for (int bit = 0; bit < 32; bit++) {
        set_fb_pixel(0, 0, 5);
        uxFontDrawing(u"a", k_ink ^ 1u << bit, k_ink, 0, 0, 9, 5, 5, 5, 0, 1);
        EXPECT_EQ(fb_pixel(0, 0), k_ink ^ 1u << bit) << bit;
    }
}

TEST_F(FontDrawingTest, ink_0_is_written) {
    give_dot('a');
    fill_buf(7);
    uxFontDrawing(u"a", 0, k_key, 0, 0, 9, 5, 5, 5, 0, 1);
    EXPECT_EQ(fb_pixel(0, 0), 0u);
    EXPECT_EQ(fb_pixel(1, 0), 7u);
}

TEST_F(FontDrawingTest, key_is_never_written_and_the_screen_shines_through) {
    make_screen(4, 2);
    fill_buf(7);
    give('a', {0, 4, 4, {"X.X.", "..X."}});
    draw(u"a", 0, 0, 4, 5);
    const uint32_t expected[2][4] = {{k_ink, 7, k_ink, 7}, {7, 7, k_ink, 7}};
    for (int y = 0; y < 2; y++)
        for (int x = 0; x < 4; x++)
            EXPECT_EQ(fb_pixel(x, y), expected[y][x]) << x << "," << y;
}

TEST_F(FontDrawingTest, screen_of_two_bytes_a_pixel_reports_each_set_bit_and_shows_none) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    give('a', {0, 4, 4, {"X.X.", "..X."}});
    testing::internal::CaptureStderr();
    EXPECT_EQ(draw(u"a", 0, 0, 16, 5), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unknown bpp : 2\nUnknown bpp : 2\nUnknown bpp : 2\n");
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 16; x++)
            EXPECT_EQ(fb_pixel(x, y), 0u);
}

TEST_F(FontDrawingTest, unknown_pixels_are_reported_also_for_ink_equal_to_the_key) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    give_dot('a');
    testing::internal::CaptureStderr();
    uxFontDrawing(u"a", k_ink, k_ink, 0, 0, 16, 5, 5, 5, 0, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unknown bpp : 2\n");
}

TEST_F(FontDrawingTest, unknown_pixels_are_not_reported_for_rows_that_are_cut) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    give('a', {0, 6, 4, {"X", "X", "X"}}); // rows -2 to 0 of the line: one is left
    testing::internal::CaptureStderr();
    draw(u"a", 0, 0, 16, 5);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unknown bpp : 2\n");
}

TEST_F(FontDrawingTest, box_beyond_the_right_screen_edge_goes_on_in_the_next_screen_row) {
    make_screen(8, 3);
    give('a', {0, 4, 4, {"XXXX"}});
    draw(u"a", 6, 0, 4, 5);
    EXPECT_EQ(ink(), "......XX\n"
                     "XX......\n"
                     "........\n");
}

TEST_F(FontDrawingTest, box_left_of_the_screen_goes_on_in_the_previous_screen_row) {
    make_screen(8, 3);
    give('a', {0, 4, 4, {"XXXX"}});
    draw(u"a", -2, 1, 4, 5);
    EXPECT_EQ(ink(), "......XX\n"
                     "XX......\n"
                     "........\n");
}

TEST_F(FontDrawingTest, ink_before_the_screens_first_element_is_dropped) {
    make_screen(8, 3);
    give('a', {0, 4, 4, {"XXXX", "XXXX"}});
    draw(u"a", -2, 0, 4, 5);
    EXPECT_EQ(ink(), "XX....XX\n"
                     "XX......\n"
                     "........\n");
}

TEST_F(FontDrawingTest, ink_behind_the_screens_last_element_is_dropped) {
    make_screen(8, 3);
    give('a', {0, 4, 4, {"XXXX", "XXXX"}});
    draw(u"a", 6, 2, 4, 5);
    EXPECT_EQ(ink(), "........\n"
                     "........\n"
                     "......XX\n");
    draw(u"a", 0, 3, 4, 5);
    draw(u"a", 0, -2, 4, 5);
    EXPECT_EQ(ink(), "........\n"
                     "........\n"
                     "......XX\n");
}

TEST_F(FontDrawingTest, boxes_far_outside_are_safe) {
    give('a', {0, 4, 4, {"XXXX", "XXXX"}});
    const int ends[] = {INT_MIN, INT_MIN + 1, -70000, 70000, INT_MAX - 1, INT_MAX};
    for (int x : ends)
        for (int y : ends)
            for (int side : {4, 70000, INT_MAX})
                draw(u"aaa", x, y, side, side);
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(FontDrawingTest, glyph_of_the_largest_values_is_safe) {
    for (int value : {INT16_MIN, INT16_MAX}) {
        give('a', {value, value, value, {"XXXX", "XXXX"}});
        for (int size : {1, 5, 70000, INT_MAX})
            draw(u"aaaa", INT_MAX, INT_MAX, INT_MAX, INT_MAX, size);
    }
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(FontDrawingTest, screen_without_memory_is_not_written) {
    give_dot('a');
    uint8_t *fb = std::exchange(main_screen.fb, nullptr);
    EXPECT_EQ(draw(u"a", 0, 0, 9, 5), 0);
    main_screen.fb = fb;
    main_screen.width = 0;
    EXPECT_EQ(draw(u"a", 0, 0, 9, 5), 0);
    EXPECT_EQ(take_codes(), (std::vector<int>{'a', 'a'}));
}

TEST_F(FontDrawingTest, canvas_pixel_is_stored_blue_first) {
    uint8_t canvas[4 * 6] = {};
    set_pixel_bmp(canvas, 3, 1, 1, 0x44332211);
    const uint8_t expected[4 * 6] = {0, 0, 0, 0, 0,    0,    0,    0,    0, 0, 0, 0,
                                     0, 0, 0, 0, 0x11, 0x22, 0x33, 0x44, 0, 0, 0, 0};
    EXPECT_EQ(memcmp(canvas, expected, sizeof canvas), 0);
}

TEST_F(FontDrawingTest, canvas_pixel_knows_no_bounds_and_no_alignment) {
    uint8_t memory[1 + 4 * 6] = {};
    set_pixel_bmp(memory + 1, 3, -1, 1, 0xAABBCCDD); // the last pixel of row 0
    EXPECT_EQ(memory[1 + 8], 0xDD);
    EXPECT_EQ(memory[1 + 11], 0xAA);
    set_pixel_bmp(memory + 1, 3, 4, 0, 0x01020304); // the second pixel of row 1
    EXPECT_EQ(memory[1 + 16], 0x04);
}

TEST_F(FontDrawingTest, canvas_pixel_of_another_width_is_reported_and_not_written) {
    for (int bytes : {0, 1, 2, 3, 8}) {
        main_screen.bytes_per_pixel = bytes;
        uint8_t canvas[64] = {};
        testing::internal::CaptureStderr();
        set_pixel_bmp(canvas, 3, 1, 1, 0x44332211);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Unknown bpp : " + std::to_string(bytes) + "\n");
        EXPECT_EQ(std::count(canvas, canvas + 64, 0), 64);
    }
    main_screen.bytes_per_pixel = 4;
}
