// SPDX-License-Identifier: MIT
// The reference drawer over UTF-8 texts: what it asks the chip for, and its line feeds, which
// follow the text's bytes.

#include "tests/font/text_test.h"
#include "tests/support/page_end.h"

namespace {

class BitmapTextTest : public TextTest {
  protected:
    void SetUp() override {
        TextTest::SetUp();
        make_screen(8, 16);
        for (uint32_t code : {'a', 'b', 'c', 'd', 'e'})
            give_dot(code);
        give('\n', {0, 4, 2, {"X"}});
    }

    static int draw_bytes(const char *text, int w = 8, int h = 15) {
        return DrawFontToBitmapTEST(text, k_ink, k_key, 0, 0, w, h, 5, 5);
    }

    // Where the dots are, line by line: the columns of the rows 0, 5 and 10.
    std::string dots() const {
        std::string lines;
        for (int y : {0, 5, 10})
            lines += ink().substr(static_cast<size_t>(y) * 9, 9);
        return lines;
    }
};

} // namespace

TEST_F(BitmapTextTest, byte_2k_plus_1_decides_the_line_feed_of_glyph_k) {
    // Byte 1 is the line feed, so glyph 0 breaks; the line feed's own byte 3 is no line feed.
    EXPECT_EQ(draw_bytes("a\nbc"), 0);
    EXPECT_EQ(dots(), "........\n"
                      "X.X.X...\n" // a without room, the line feed on it, b, c
                      "........\n");
    EXPECT_EQ(take_codes(), (std::vector<int>{'a', '\n', 'b', 'c'}));
}

TEST_F(BitmapTextTest, line_feed_at_an_even_byte_breaks_nothing) {
    draw_bytes("ab\ncd");
    EXPECT_EQ(dots().substr(0, 8), "X.X.X.X.");
    EXPECT_EQ(dots()[9], 'X'); // d wraps
}

TEST_F(BitmapTextTest, null_glyphs_count_for_the_byte_index) {
    // Byte 3 belongs to glyph 1. The '?' in front of it has no glyph and still is glyph 0.
    draw_bytes("?ab\ncd");
    EXPECT_EQ(dots(), "........\n"
                      "X.X.X.X.\n" // a without room, b on it, then the line feed, c, d
                      "........\n");
}

TEST_F(BitmapTextTest, bytes_behind_the_text_break_nothing) {
    const char text[] = "ab\0\n\n\n\n\n";
    draw_bytes(text);
    EXPECT_EQ(dots().substr(0, 8), "X.X.....");
}

TEST_F(BitmapTextTest, bytes_behind_the_text_are_not_read) {
    const page_end copy("abcde", 6);
    EXPECT_EQ(draw_bytes(copy.bytes()), 0);
    EXPECT_EQ(take_codes().size(), 5u);
}

TEST_F(BitmapTextTest, characters_of_several_bytes_lag_behind_the_bytes) {
    // e acute twice is four bytes: byte 3 belongs to glyph 1, byte 5 to glyph 2.
    give_dot(0xE9);
    draw_bytes("\xC3\xA9\xC3\xA9"
               "b\n");
    EXPECT_EQ(dots(), "X.X.....\n"
                      "X.......\n"
                      "........\n");
    EXPECT_EQ(take_codes(), (std::vector<int>{0xE9, 0xE9, 'b', '\n'}));
}

TEST_F(BitmapTextTest, carriage_return_is_an_ordinary_character) {
    give_dot('\r');
    draw_bytes("a\rb");
    EXPECT_EQ(dots().substr(0, 8), "X.X.X...");
}

TEST_F(BitmapTextTest, line_feed_behind_a_full_line_moves_down_once) {
    give_dot('W', 9);
    draw_bytes("Wab\n", 4); // W in line 1 with the pen beyond the box; byte 3 breaks at a
    EXPECT_EQ(dots(), "........\n"
                      "X.......\n"
                      "X.X.....\n"); // a without room, b on it, then the line feed
}

TEST_F(BitmapTextTest, chip_is_asked_for_the_whole_code) {
    draw_bytes("\xE2\x82\xAC\xC3\xA9");
    EXPECT_EQ(take_calls(), (calls{"FSS_set_scale 327680 0 0 327680", "FSS_get_bitmap 8364",
                                   "FSS_get_bitmap 233"}));
}

TEST_F(BitmapTextTest, untouched_pairs_ask_for_code_0) {
    draw_bytes("a\xFF"
               "\x80\xF0");
    EXPECT_EQ(take_codes(), (std::vector<int>{'a', 0, 0, 0}));
}

TEST_F(BitmapTextTest, null_and_empty_texts_set_the_scale_and_no_more) {
    EXPECT_EQ(draw_bytes(nullptr), 0);
    EXPECT_EQ(draw_bytes(""), 0);
    EXPECT_EQ(take_calls(),
              (calls{"FSS_set_scale 327680 0 0 327680", "FSS_set_scale 327680 0 0 327680"}));
}

TEST_F(BitmapTextTest, text_is_cut_behind_2048_characters) {
    give_dot('x', 0);
    const std::string text(6000, 'x');
    draw_bytes(text.c_str());
    EXPECT_EQ(take_codes().size(), 2048u);
}

TEST_F(BitmapTextTest, glyph_fetched_at_the_stop_is_given_back_and_no_other_is_fetched) {
    draw_bytes("aaaa", 2, 5);
    EXPECT_EQ(take_calls(), (calls{"FSS_set_scale 327680 0 0 327680", "FSS_get_bitmap 97",
                                   "FSS_free_char", "FSS_get_bitmap 97", "FSS_free_char"}));
}

TEST_F(BitmapTextTest, size_0_shows_nothing_after_the_first_glyph) {
    EXPECT_EQ(DrawFontToBitmapTEST("ab", k_ink, k_key, 0, 0, 8, 8, 0, 0), 0);
    EXPECT_EQ(take_calls(), (calls{"FSS_set_scale 0 0 0 0", "FSS_get_bitmap 97", "FSS_free_char"}));
    EXPECT_EQ(ink().find('X'), std::string::npos);
}

TEST_F(BitmapTextTest, text_goes_to_fb_and_not_to_buf) {
    set_apart();
    draw_bytes("a");
    EXPECT_EQ(fb_pixel(0, 0), k_ink);
    EXPECT_EQ(buf_pixel(0, 0), 0u);
}

TEST_F(BitmapTextTest, same_ink_and_key_show_nothing) {
    DrawFontToBitmapTEST("ab", k_ink, k_ink, 0, 0, 8, 8, 5, 5);
    EXPECT_EQ(fb_pixel(0, 0), 0u);
    EXPECT_EQ(take_codes(), (std::vector<int>{'a', 'b'}));
}

TEST_F(BitmapTextTest, screen_of_two_bytes_a_pixel_reports_each_set_bit) {
    make_screen(8, 16, UX_COLOR_MODE_RGB565);
    testing::internal::CaptureStderr();
    draw_bytes("ab");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unknown bpp : 2\nUnknown bpp : 2\n");
    EXPECT_EQ(fb_pixel(0, 0), 0u);
}
