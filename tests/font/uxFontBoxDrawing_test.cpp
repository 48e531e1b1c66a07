// SPDX-License-Identifier: MIT
// Text over a picture: what becomes of the box, which calls are made, how its line feeds differ
// from the widgets' drawer's. Random boxes are compared in box_canvas_test.cpp.

#include "tests/font/text_test.h"
#include "tests/graphics/picture_files.h"
#include "tests/support/page_end.h"

#include <climits>

namespace {

class BoxDrawingTest : public TextTest {
  protected:
    void SetUp() override {
        TextTest::SetUp();
        black = write("black.png", 1, 1, {0, 0, 0, 255});
        clear = write("clear.png", 1, 1, {255, 255, 255, 0});
    }

    void TearDown() override {
        EXPECT_EQ(fake_chip::get().open_files, 0) << "a file was not closed";
        TextTest::TearDown();
    }

    std::string write(const std::string &name, uint32_t width, uint32_t height,
                      const std::vector<uint8_t> &rgba) const {
        png_content content;
        content.width = width;
        content.height = height;
        content.color_type = PNG_COLOR_TYPE_RGB_ALPHA;
        content.bytes = rgba;
        return folder.write_png(name, content);
    }

    static int draw_over(const std::string &picture, const void *text, int x, int y, int w, int h,
                         int size = 5) {
        return uxFontBoxDrawing(text, k_ink, picture.c_str(), x, y, w, h, size, size);
    }

    // Glyphs that a test left with the drawer on purpose.
    static void expect_kept(int glyphs) {
        EXPECT_EQ(fake_chip::get().outstanding, glyphs);
        fake_chip::get().outstanding = 0;
    }

    using colors = std::vector<uint32_t>;

    colors fb_row(int y) const {
        colors row;
        for (int x = 0; x < main_screen.width; x++)
            row.push_back(fb_pixel(x, y));
        return row;
    }
    // The calls that read a picture file, between setting the scale and the first glyph.
    static calls reading(const std::string &path, const calls &glyphs) {
        calls all = {"FSS_set_scale 327680 0 0 327680", "RMnonAsciiFromAscii " + path,
                     "RMOpenFile " + path + " 0", "RMFreeNonAscii", "RMCloseFile"};
        all.insert(all.end(), glyphs.begin(), glyphs.end());
        return all;
    }

    picture_folder folder;
    std::string black; // opaque, 1 x 1: the box becomes 0xFF000000
    std::string clear; // alpha 0
};

// 'X' ink, '#' opaque black, '.' 0, '?' anything else.
std::string with_black(std::string picture) {
    for (int y = 0, i = 0; y < main_screen.height; y++, i++)
        for (int x = 0; x < main_screen.width; x++, i++) {
            uint32_t pixel = 0;
            memcpy(&pixel, main_screen.fb + 4 * (y * main_screen.width + x), sizeof pixel);
            if (pixel == 0xFF000000)
                picture[static_cast<size_t>(i)] = '#';
        }
    return picture;
}

} // namespace

TEST_F(BoxDrawingTest, box_of_fb_is_replaced_and_buf_is_left_alone) {
    make_screen(6, 7);
    fill_buf(7);
    set_apart();
    give_dot('a');
    EXPECT_EQ(draw_over(black, u"a", 1, 1, 4, 5), 0);
    EXPECT_EQ(with_black(ink()), "......\n"
                                 ".X###.\n"
                                 ".####.\n"
                                 ".####.\n"
                                 ".####.\n"
                                 ".####.\n"
                                 "......\n");
    EXPECT_EQ(buf_picture(7), "XXXXXX\nXXXXXX\nXXXXXX\nXXXXXX\nXXXXXX\nXXXXXX\nXXXXXX\n");
}

TEST_F(BoxDrawingTest, scale_is_set_then_the_picture_read_then_glyphs_fetched) {
    give_dot('a');
    uxFontBoxDrawing(u"a", k_ink, black.c_str(), 0, 0, 9, 5, 7, 5);
    calls expected = reading(black, {"FSS_get_bitmap 97", "FSS_free_char"});
    expected[0] = "FSS_set_scale 458752 0 0 327680";
    EXPECT_EQ(take_calls(), expected);
}

TEST_F(BoxDrawingTest, empty_and_null_texts_make_no_call_and_leave_the_box) {
    fill_buf(7);
    EXPECT_EQ(draw_over(black, u"", 0, 0, 9, 5), 0);
    EXPECT_EQ(draw_over(black, nullptr, 0, 0, 9, 5), 0);
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(fb_pixel(0, 0), 7u);
}

TEST_F(BoxDrawingTest, text_of_127_units_is_drawn) {
    give_dot('a', 0);
    const std::u16string text(127, u'a');
    EXPECT_EQ(draw_over(black, text.c_str(), 0, 0, 9, 5), 0);
    EXPECT_EQ(take_codes(), std::vector<int>(127, 'a'));
    EXPECT_EQ(fb_pixel(0, 0), k_ink);
}

TEST_F(BoxDrawingTest, text_of_128_units_makes_no_call_and_leaves_the_box) {
    fill_buf(7);
    give_dot('a', 0);
    const std::u16string text(128, u'a');
    const page_end copy(text.data(), 256);
    EXPECT_EQ(draw_over(black, copy.data(), 0, 0, 9, 5), 0);
    EXPECT_EQ(take_calls(), calls{});
    EXPECT_EQ(fb_pixel(0, 0), 7u);
}

TEST_F(BoxDrawingTest, picture_colors_are_scaled_by_their_alpha) {
    make_screen(5, 1);
    fill_buf(0xFFFFFFFF);
    const std::string picture = write("five.png", 5, 1,
                                      {255, 255, 255, 255, 200, 100, 50, 128, 255, 255, 255, 1,
                                       //
                                       255, 128, 64, 2, 255, 255, 255, 0});
    EXPECT_EQ(draw_over(picture, u"a", 0, 0, 5, 1), 0);
    EXPECT_EQ(fb_row(0), (colors{0xFFFEFEFE, 0x80643219, 0x01000000, 0x02010100, 0}));
}

TEST_F(BoxDrawingTest, picture_without_alpha_is_opaque) {
    png_content content;
    content.bytes = {1, 2, 255};
    const std::string picture = folder.write_png("rgb.png", content);
    draw_over(picture, u"a", 0, 0, 1, 1);
    EXPECT_EQ(fb_pixel(0, 0), 0xFF0001FEu);
}

TEST_F(BoxDrawingTest, picture_is_scaled_to_the_box) {
    make_screen(4, 2);
    const std::string picture = write("two.png", 2, 1, {16, 16, 16, 128, 32, 32, 32, 128});
    draw_over(picture, u"a", 0, 0, 4, 2);
    for (int y = 0; y < 2; y++)
        EXPECT_EQ(fb_row(y), (colors{0x80080808, 0x80080808, 0x80101010, 0x80101010}));
}

TEST_F(BoxDrawingTest, ink_of_any_color_is_written_as_it_is) {
    give_dot('a');
    for (uint32_t color : {0u, 0xFF000000u, 0x00FFFFFFu, 0x12345678u}) {
        uxFontBoxDrawing(u"a", color, black.c_str(), 0, 0, 2, 5, 5, 5);
        EXPECT_EQ(fb_pixel(0, 0), color);
        EXPECT_EQ(fb_pixel(1, 0), 0xFF000000u);
    }
}

TEST_F(BoxDrawingTest, transparent_picture_makes_the_box_0_under_the_text) {
    make_screen(3, 2);
    fill_buf(7);
    give_dot('a');
    draw_over(clear, u"a", 0, 0, 2, 2, 2);
    EXPECT_EQ(fb_row(0), (colors{0, 0, 7}));
    EXPECT_EQ(fb_row(1), (colors{0, 0, 7}));
    give('a', {0, 1, 2, {"X"}});
    draw_over(clear, u"a", 0, 0, 2, 2, 2);
    EXPECT_EQ(fb_row(0), (colors{k_ink, 0, 7}));
}

TEST_F(BoxDrawingTest, unreadable_picture_is_reported_and_makes_the_box_0_under_the_text) {
    make_screen(2, 5);
    fill_buf(7);
    give_dot('a');
    const std::string missing = folder.path("missing.png");
    testing::internal::CaptureStdout();
    EXPECT_EQ(draw_over(missing, u"a", 0, 0, 2, 5), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "RMOpenBitmapFile " + missing + " FAIL on ux_load_image\n");
    EXPECT_EQ(ink(), "X.\n..\n..\n..\n..\n");
}

TEST_F(BoxDrawingTest, no_picture_at_all_makes_the_box_0_under_the_text) {
    make_screen(2, 5);
    fill_buf(7);
    give_dot('a');
    EXPECT_EQ(uxFontBoxDrawing(u"a", k_ink, nullptr, 0, 0, 2, 5, 5, 5), 0);
    EXPECT_EQ(ink(), "X.\n..\n..\n..\n..\n");
}

TEST_F(BoxDrawingTest, any_allocation_may_fail) {
    make_screen(2, 5);
    give_dot('a');
    hooks::take_allocation_count();
    draw_over(black, u"a", 0, 0, 2, 5);
    const long allocations = hooks::take_allocation_count();
    ASSERT_GT(allocations, 0);
    for (long n = 1; n <= allocations; n++) {
        fill_buf(7);
        testing::internal::CaptureStdout();
        hooks::fail_allocation(n);
        EXPECT_EQ(draw_over(black, u"a", 0, 0, 2, 5), 0);
        hooks::fail_allocation(0);
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(fb_pixel(0, 0), k_ink) << n;
        EXPECT_TRUE(fb_pixel(1, 4) == 0 || fb_pixel(1, 4) == 0xFF000000) << n;
    }
}

TEST_F(BoxDrawingTest, only_a_line_feed_breaks_the_line) {
    make_screen(8, 10);
    give_dot('a');
    give_dot('\r');
    give_dot('\n');
    give_dot(0x010A);
    EXPECT_EQ(draw_over(clear, u"\ra\u010A\na", 0, 0, 8, 10), 0);
    expect_kept(1);
    EXPECT_EQ(ink(), "X.X.X...\n"
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

TEST_F(BoxDrawingTest, line_feed_inside_the_line_is_neither_drawn_nor_given_back) {
    make_screen(4, 10);
    give_dot('a', 4); // the pen is at the edge, not beyond
    give('\n', {1, 4, 3, {"X"}});
    draw_over(clear, u"\na\n", 0, 0, 4, 15);
    EXPECT_EQ(take_calls(), reading(clear, {"FSS_get_bitmap 10", "FSS_get_bitmap 97",
                                            "FSS_free_char", "FSS_get_bitmap 10"}));
    expect_kept(2);
    EXPECT_EQ(ink(), "....\n....\n....\n....\n....\nX...\n....\n....\n....\n....\n");
}

TEST_F(BoxDrawingTest, line_feed_behind_a_glyph_wider_than_the_box_is_drawn_and_given_back) {
    make_screen(4, 20);
    give_dot('w', 5);
    give_dot('a');
    give('\n', {3, 4, 3, {"X"}});
    draw_over(clear, u"w\na", 0, 0, 4, 20);
    EXPECT_EQ(ink(), "....\n....\n....\n....\n....\n"
                     "X...\n....\n....\n....\n....\n"
                     "X..X\n....\n....\n....\n....\n"
                     "....\n....\n....\n....\n....\n");
}

TEST_F(BoxDrawingTest, line_feed_below_the_last_line_ends_the_text) {
    make_screen(4, 5);
    give_dot('a');
    give_dot('\n');
    draw_over(clear, u"a\na", 0, 0, 4, 5);
    expect_kept(1);
    EXPECT_EQ(take_codes(), (std::vector<int>{'a', '\n'}));
}

TEST_F(BoxDrawingTest, line_feed_without_glyph_does_not_break_the_line) {
    make_screen(4, 1);
    give_dot('a');
    draw_over(clear, u"a\na", 0, 0, 4, 5);
    EXPECT_EQ(ink(), "X.X.\n");
}

TEST_F(BoxDrawingTest, lines_wrap_at_the_edge_and_end_with_the_last_whole_one) {
    make_screen(5, 14);
    give_dot('a');
    draw_over(clear, u"aaaaaaa", 0, 0, 5, 14);
    EXPECT_EQ(ink(), "X.X..\n.....\n.....\n.....\n.....\n"
                     "X.X..\n.....\n.....\n.....\n.....\n"
                     ".....\n.....\n.....\n.....\n");
    EXPECT_EQ(take_codes(), (std::vector<int>{'a', 'a', 'a', 'a', 'a'})); // one too many is fetched
}

TEST_F(BoxDrawingTest, line_height_0_shows_the_picture_without_text) {
    give_dot('a');
    EXPECT_EQ(uxFontBoxDrawing(u"a", k_ink, black.c_str(), 0, 0, 2, 5, 5, 0), 0);
    EXPECT_EQ(fb_pixel(0, 0), 0xFF000000u);
    EXPECT_EQ(fb_pixel(1, 4), 0xFF000000u);
}

TEST_F(BoxDrawingTest, box_without_pixels_opens_the_picture_and_changes_nothing) {
    fill_buf(7);
    give_dot('a');
    constexpr int k_sizes[][2] = {{0, 5}, {4, 0}, {-1, 5}, {4, -1}, {INT_MIN, INT_MIN}};
    for (const auto &size : k_sizes) {
        EXPECT_EQ(draw_over(black, u"a", 3, 3, size[0], size[1]), 0);
        EXPECT_EQ(take_calls(), reading(black, {"FSS_get_bitmap 97", "FSS_free_char"}));
    }
    EXPECT_EQ(fb_picture(7).find('.'), std::string::npos);
    EXPECT_EQ(fb_picture(7).find('?'), std::string::npos);
}

TEST_F(BoxDrawingTest, screen_of_two_bytes_a_pixel_is_cleared_and_each_set_bit_reported) {
    make_screen(6, 3, UX_COLOR_MODE_RGB565);
    fill_buf(7);
    give('a', {0, 1, 4, {"X.X."}});
    testing::internal::CaptureStderr();
    EXPECT_EQ(draw_over(black, u"a", 1, 1, 4, 2, 2), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unknown bpp : 2\nUnknown bpp : 2\n");
    EXPECT_EQ(fb_picture(7), "XXXXXX\nX....X\nX....X\n");
}

TEST_F(BoxDrawingTest, box_beyond_the_right_edge_goes_on_in_the_next_row) {
    make_screen(4, 3);
    draw_over(black, u"a", 3, 0, 2, 2);
    EXPECT_EQ(with_black(ink()), "...#\n#..#\n#...\n");
}

TEST_F(BoxDrawingTest, box_left_of_the_screen_begins_in_the_previous_row) {
    make_screen(4, 3);
    draw_over(black, u"a", -1, 0, 2, 3);
    EXPECT_EQ(with_black(ink()), "#..#\n#..#\n#...\n");
}

TEST_F(BoxDrawingTest, rows_above_and_below_the_screen_are_left_out) {
    make_screen(4, 3);
    draw_over(black, u"a", 1, -2, 2, 4);
    draw_over(black, u"a", 0, 2, 1, 9);
    EXPECT_EQ(with_black(ink()), ".##.\n.##.\n#...\n");
}

TEST_F(BoxDrawingTest, picture_of_a_cut_box_keeps_its_place) {
    make_screen(2, 2);
    const std::string picture = write("four.png", 2, 2,
                                      {2, 0, 0, 128, 4, 0, 0, 128, //
                                       6, 0, 0, 128, 8, 0, 0, 128});
    draw_over(picture, u"a", -1, -1, 2, 2);
    EXPECT_EQ(fb_row(0), (colors{0x80040000, 0}));
    fill_buf(0);
    draw_over(picture, u"a", 0, 1, 2, 2);
    EXPECT_EQ(fb_row(1), (colors{0x80010000, 0x80020000}));
}

TEST_F(BoxDrawingTest, boxes_far_outside_are_safe) {
    fill_buf(7);
    give_dot('a');
    for (int place : {INT_MIN, INT_MIN + 9, -1000, 1000, INT_MAX - 9, INT_MAX}) {
        draw_over(clear, u"a", place, 0, 9, 5);
        draw_over(clear, u"a", 0, place, 9, 5);
        draw_over(clear, u"a", place, place, 9, 5);
    }
    // Places far to the left or right are elements before or behind the screen's.
    EXPECT_EQ(fb_picture(7).find('.'), std::string::npos);
}

// The address sanitizer ends the program at blocks of such sizes.
#ifndef __SANITIZE_ADDRESS__
TEST_F(BoxDrawingTest, boxes_of_any_size_are_safe) {
    give_dot('a');
    testing::internal::CaptureStdout();
    draw_over(clear, u"a", INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    draw_over(clear, u"a", 0, INT_MIN, 1 << 16, INT_MAX);
    draw_over(clear, u"a", 0, 0, INT_MAX, INT_MAX);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(fb_pixel(0, 0), k_ink);
}
#endif

TEST_F(BoxDrawingTest, screen_without_memory_is_not_written) {
    uint8_t *memory = main_screen.fb;
    main_screen.fb = nullptr;
    give_dot('a');
    EXPECT_EQ(draw_over(black, u"a", 0, 0, 9, 5), 0);
    main_screen.fb = memory;
    main_screen.width = 0;
    EXPECT_EQ(draw_over(black, u"a", 0, 0, 9, 5), 0);
    main_screen.width = 16;
    EXPECT_EQ(fb_pixel(0, 0), 0u);
}
