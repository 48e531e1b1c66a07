// SPDX-License-Identifier: MIT
// Strings of the engine on the screen: fitting, cropping, placing, laying over.

#include "tests/font/engine_text_test.h"

#include <cstring>

namespace {

class DrawStringTest : public EngineTextTest {
  protected:
    // One glyph 'a' of 4 x 3 pixels on screens of 16 x 8.
    void SetUp() override {
        EngineTextTest::SetUp();
        set_ink('a', {"X..X", ".XX.", "X..X"});
        set_cell('a', 4, 3);
    }

    // Draws with foreground 7 and returns what that printed.
    std::string draw(const char *text, int x, int y, int w, int h, int align, uint32_t bg = 0) {
        return output_of([&] { result = ux_draw_string(text, 16, 7, bg, x, y, w, h, align); });
    }

    int result = 77;
};

// Makes 'a' a row of columns whose ink is the binary digits of its column's number, top to bottom:
// any part of it tells where it comes from.
constexpr uint32_t k_rows = 7;

std::vector<std::string> numbered_columns(uint32_t width) {
    std::vector<std::string> rows(k_rows, std::string(width, '.'));
    for (uint32_t x = 0; x < width; x++)
        for (uint32_t bit = 0; bit < k_rows; bit++)
            if (x >> bit & 1)
                rows[bit][x] = 'X';
    return rows;
}

} // namespace

// --- fitting -------------------------------------------------------------------------------------

TEST_F(DrawStringTest, size_0_takes_the_largest_size_whose_space_fits) {
    fake_chip::get().cell_of = [](uint32_t, uint32_t scale) {
        return fake_chip::cell{2, scale * 5 / 4};
    };
    output_of([&] { result = ux_draw_string("a", 0, 7, 0, 0, 0, 100, 25, 0); });
    EXPECT_EQ(result, 0);
    const calls made = take_calls();
    const char *scales[] = {"19", "18", "17", "16", "15", "14"}; // 25 down to 20, hexadecimal
    for (size_t i = 0; i < std::size(scales); i++) {
        EXPECT_EQ(made.at(2 * i), "RMTTGetGlyphMetrics 32");
        EXPECT_EQ(made.at(2 * i + 1), std::string("RUAExchangeProperty 32 4334 "
                                                  "00000000 00000000 00000000 ") +
                                          scales[i] + "000000 00000000 0b001600");
    }
    EXPECT_EQ(made.at(12), "RMTTGetGlyphMetrics 97");
    EXPECT_EQ(made.at(13), "RUAExchangeProperty 32 4334 "
                           "00000000 00000000 00000000 14000000 00000000 0b001600");
}

TEST_F(DrawStringTest, first_size_from_above_that_fits_is_taken_whatever_lies_below) {
    fake_chip::get().cell_of = [](uint32_t, uint32_t scale) {
        return fake_chip::cell{2, scale == 6 ? 8u : 100u + scale};
    };
    output_of([&] { ux_draw_string("", 0, 7, 0, 0, 0, 100, 8, 0); });
    EXPECT_EQ(only(take_calls(), "RMTTGetGlyphMetrics 32").size(), 3u) << "sizes 8, 7, 6";
}

TEST_F(DrawStringTest, every_size_is_tried_down_from_a_height_out_of_reason) {
    fake_chip::get().record_calls = false;
    uint32_t tried = 0;
    fake_chip::get().cell_of = [&](uint32_t code, uint32_t scale) {
        if (code == ' ')
            EXPECT_EQ(scale, 70000 - tried++);
        return fake_chip::cell{2, scale < 50 ? scale : 70001};
    };
    output_of([&] { result = ux_draw_string("", 0, 7, 0, 0, 0, 100, 70000, 0); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(tried, 70000u - 49 + 1);
}

// The scale is the size times 2^11 in 32 bits, divided by the em size: 0xFFFFF800 / 2048.
TEST_F(DrawStringTest, largest_height_is_a_size_of_its_own) {
    fake_chip::get().cell_of = [](uint32_t, uint32_t) { return fake_chip::cell{2, 0x7FFFFFFF}; };
    output_of([&] { result = ux_draw_string("", 0, 7, 0, 0, 0, 100, 0x7FFFFFFF, 0); });
    EXPECT_EQ(result, 0);
    const calls made = take_calls();
    EXPECT_EQ(only(made, "RMTTGetGlyphMetrics 32").size(), 1u);
    EXPECT_EQ(made.at(1), "RUAExchangeProperty 32 4334 "
                          "00000000 00000000 00000000 ffff1f00 00000000 0b001600");
}

TEST_F(DrawStringTest, box_that_no_size_fits_goes_on_with_size_0) {
    fake_chip::get().cell_of = [](uint32_t, uint32_t) { return fake_chip::cell{2, 100}; };
    output_of([&] { result = ux_draw_string("a", 0, 7, 0, 0, 0, 100, 3, 0); });
    EXPECT_EQ(result, 0);
    const calls made = take_calls();
    EXPECT_EQ(only(made, "RMTTGetGlyphMetrics 32").size(), 3u);
    EXPECT_EQ(made.at(7), "RUAExchangeProperty 32 4334 "
                          "00000000 00000000 00000000 00000000 00000000 0b001600");
}

TEST_F(DrawStringTest, size_0_without_a_height_is_passed_on) {
    for (const int h : {0, -1, -2147483647 - 1}) {
        output_of([&] { result = ux_draw_string("a", 0, 7, 0, 0, 0, 100, h, 0); });
        EXPECT_EQ(result, 0);
        const calls made = take_calls();
        EXPECT_EQ(only(made, "RMTTGetGlyphMetrics 32"), calls{});
        EXPECT_EQ(made.at(1), "RUAExchangeProperty 32 4334 "
                              "00000000 00000000 00000000 00000000 00000000 0b001600");
    }
}

TEST_F(DrawStringTest, given_size_is_not_fitted) {
    draw("a", 0, 0, 1, 1, 0);
    EXPECT_EQ(only(take_calls(), "RMTTGetGlyphMetrics 32"), calls{});
}

TEST_F(DrawStringTest, failed_fit_is_told_once_and_renders_nothing) {
    fake_chip::get().results["4334"] = {9};
    EXPECT_EQ(output_of([&] { result = ux_draw_string("a", 0, 7, 0, 0, 0, 9, 9, 0); }),
              "Cannot get glyph output size\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(take_calls().size(), 2u);
}

// --- failures ------------------------------------------------------------------------------------

TEST_F(DrawStringTest, string_that_cannot_be_rendered_is_told_with_two_line_ends) {
    fake_chip::get().results["4331"] = {9};
    EXPECT_EQ(draw("a", 0, 0, 9, 9, 0), "Error sending command glyph (char code 97)\n"
                                        "Cannot get string buffer in Draw string \n\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(buf_pixel(0, 0), 0u);
}

TEST_F(DrawStringTest, failed_block_is_told_and_draws_nothing) {
    hooks::fail_allocation(1);
    EXPECT_EQ(draw("a", 0, 0, 9, 9, 0), "Could not allocate 48 bytes for font_base \n\n"
                                        "Cannot get string buffer in Draw string \n\n");
    EXPECT_EQ(result, -1);
}

TEST_F(DrawStringTest, screen_of_another_pixel_width_has_no_string) {
    for (const int bytes : {0, 3, 8, -1}) {
        main_screen.bytes_per_pixel = bytes;
        EXPECT_EQ(draw("a", 0, 0, 9, 9, 0), "Cannot get string buffer in Draw string \n\n");
        EXPECT_EQ(result, -1);
    }
    main_screen.bytes_per_pixel = 4;
}

TEST_F(DrawStringTest, empty_and_null_texts_draw_nothing_and_succeed) {
    for (const char *text : {"", static_cast<const char *>(nullptr)})
        for (int align = 0; align < 9; align++) {
            EXPECT_EQ(draw(text, 0, 0, 9, 9, align, 5), "");
            EXPECT_EQ(result, 0);
        }
    for (int i = 0; i < 16 * 8; i++)
        EXPECT_EQ(buf_pixel(i % 16, i / 16), 0u);
}

TEST_F(DrawStringTest, block_is_freed_and_nothing_else_is_allocated) {
    fake_chip::get().record_calls = false;
    set_cell(4, 3);
    ux_draw_string("    ", 0, 7, 5, 0, 0, 16, 8, 4);
    hooks::take_allocation_count();
    EXPECT_EQ(ux_draw_string("    ", 0, 7, 5, 0, 0, 16, 8, 4), 0);
    EXPECT_EQ(hooks::take_allocation_count(), 1);
}

// --- what is stored ------------------------------------------------------------------------------

TEST_F(DrawStringTest, ink_is_stored_and_background_0_leaves_the_screen) {
    fill_buf(9);
    draw("a", 1, 1, 10, 5, 0);
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 16; x++) {
            const bool inside = x >= 1 && x < 5 && y >= 1 && y < 4;
            const char *rows[] = {"X..X", ".XX.", "X..X"};
            const bool ink = inside && rows[y - 1][x - 1] == 'X';
            EXPECT_EQ(buf_pixel(x, y), ink ? 7u : 9u) << x << " " << y;
        }
}

TEST_F(DrawStringTest, background_fills_the_cells_and_not_the_box) {
    fill_buf(9);
    draw("a", 1, 1, 10, 5, 0, 0xFF000000);
    EXPECT_EQ(buf_pixel(2, 1), 0xFF000000u);
    EXPECT_EQ(buf_pixel(1, 2), 0xFF000000u);
    EXPECT_EQ(buf_pixel(1, 1), 7u);
    EXPECT_EQ(buf_pixel(5, 1), 9u);
    EXPECT_EQ(buf_pixel(1, 4), 9u);
}

TEST_F(DrawStringTest, foreground_0_draws_nothing) {
    fill_buf(9);
    EXPECT_EQ(ux_draw_string("a", 16, 0, 0, 1, 1, 10, 5, 0), 0);
    for (int i = 0; i < 16 * 8; i++)
        EXPECT_EQ(buf_pixel(i % 16, i / 16), 9u);
    EXPECT_EQ(ux_draw_string("a", 16, 0, 3, 1, 1, 10, 5, 0), 0);
    EXPECT_EQ(buf_pixel(1, 1), 9u) << "ink of value 0 is a hole";
    EXPECT_EQ(buf_pixel(2, 1), 3u);
}

TEST_F(DrawStringTest, rows_below_a_low_cell_leave_the_screen) {
    set_cell('b', 2, 6);
    fill_buf(9);
    draw("ab", 0, 0, 16, 8, 0, 3);
    EXPECT_EQ(buf_pixel(0, 2), 7u);
    EXPECT_EQ(buf_pixel(0, 3), 9u);
    EXPECT_EQ(buf_pixel(4, 5), 3u);
    EXPECT_EQ(buf_pixel(4, 6), 9u);
}

TEST_F(DrawStringTest, low_cell_in_the_middle_leaves_the_screen_below_it_alone) {
    set_cell(' ', 3, 2); // between two cells of 4 x 3
    for (const int bytes : {1, 2, 4}) {
        main_screen.bytes_per_pixel = bytes;
        memset(main_screen.buf, 9, static_cast<size_t>(16 * 8 * bytes));
        draw("a a", 0, 0, 16, 8, 0, 3);
        for (int x = 0; x < 16; x++) {
            const bool below = x >= 4 && x < 7;
            EXPECT_EQ(main_screen.buf[(2 * 16 + x) * bytes] == 9, below || x >= 11) << x;
            EXPECT_EQ(main_screen.buf[(1 * 16 + x) * bytes] == 9, x >= 11) << x;
        }
    }
}

TEST_F(DrawStringTest, sixteen_bit_screen_stores_the_low_half_and_a_zero_half_is_transparent) {
    make_screen(16, 8, UX_COLOR_MODE_RGB565);
    fill_buf(9);
    EXPECT_EQ(ux_draw_string("a", 16, 0xFF1234, 0xAB0000, 1, 1, 10, 5, 0), 0);
    EXPECT_EQ(buf_pixel(1, 1), 0x1234u);
    EXPECT_EQ(buf_pixel(2, 1), 9u);
}

TEST_F(DrawStringTest, eight_bit_screen_stores_the_low_byte_and_a_zero_byte_is_transparent) {
    main_screen.bytes_per_pixel = 1;
    memset(main_screen.buf, 9, 16 * 8);
    EXPECT_EQ(ux_draw_string("a", 16, 0xFFFF12, 0xABCD00, 1, 1, 10, 5, 0), 0);
    EXPECT_EQ(main_screen.buf[16 + 1], 0x12);
    EXPECT_EQ(main_screen.buf[16 + 2], 9);
    EXPECT_EQ(main_screen.buf[16 + 4], 0x12);
    EXPECT_EQ(main_screen.buf[16 + 5], 9);
}

TEST_F(DrawStringTest, string_goes_to_the_drawing_buffer_alone) {
    set_apart();
    draw("a", 0, 0, 9, 9, 0);
    EXPECT_EQ(buf_pixel(0, 0), 7u);
    EXPECT_EQ(fb_pixel(0, 0), 0u);
}

// --- cropping and placing ------------------------------------------------------------------------

TEST_F(DrawStringTest, wide_string_is_cropped_on_the_side_away_from_its_alignment) {
    make_screen(120, 10);
    set_ink('a', numbered_columns(100));
    set_cell('a', 100, k_rows);
    const std::pair<int, uint32_t> first_columns[] = {{0, 0}, {1, 20}, {2, 40}};
    for (const auto &[align, first] : first_columns) {
        fill_buf(0);
        draw("a", 10, 1, 60, k_rows, align);
        for (uint32_t x = 0; x < 120; x++) {
            uint32_t number = 0;
            for (uint32_t bit = 0; bit < k_rows; bit++)
                if (buf_pixel(static_cast<int>(x), static_cast<int>(1 + bit)) == 7)
                    number |= 1u << bit;
            EXPECT_EQ(number, x >= 10 && x < 70 ? first + x - 10 : 0) << align << " " << x;
        }
    }
}

TEST_F(DrawStringTest, narrow_string_stands_right_and_in_the_middle) {
    make_screen(120, 40);
    set_ink('a', {std::string(40, 'X')});
    set_cell('a', 40, 5);
    draw("a", 10, 2, 100, 20, 5);
    EXPECT_EQ(buf_pixel(69, 9), 0u);
    EXPECT_EQ(buf_pixel(70, 9), 7u); // 10 + 100 - 40; 2 + (20 - 5) / 2, rounded down
    EXPECT_EQ(buf_pixel(109, 9), 7u);
    EXPECT_EQ(buf_pixel(110, 9), 0u);
    EXPECT_EQ(buf_pixel(70, 8), 0u);
    EXPECT_EQ(buf_pixel(70, 10), 0u);
}

TEST_F(DrawStringTest, nine_alignments_stand_in_nine_places) {
    set_ink('a', {"X"});
    set_cell('a', 1, 1);
    const int columns[] = {1, 6, 12}; // in a box of 12 x 6 from (1, 1); (12 - 1) / 2 = 5
    const int rows[] = {1, 3, 6};     // (6 - 1) / 2 = 2
    for (int align = 0; align < 9; align++) {
        fill_buf(0);
        draw("a", 1, 1, 12, 6, align);
        for (int y = 0; y < 8; y++)
            for (int x = 0; x < 16; x++)
                EXPECT_EQ(buf_pixel(x, y), x == columns[align % 3] && y == rows[align / 3] ? 7u : 0)
                    << align;
    }
}

TEST_F(DrawStringTest, unknown_alignments_stand_left_and_at_the_top) {
    for (const int align : {9, -1, 10, 100, -2147483647 - 1, 2147483647}) {
        fill_buf(0);
        draw("a", 2, 3, 10, 5, align);
        EXPECT_EQ(buf_pixel(2, 3), 7u) << align;
        EXPECT_EQ(buf_pixel(5, 5), 7u) << align;
        EXPECT_EQ(buf_pixel(1, 3), 0u) << align;
    }
}

TEST_F(DrawStringTest, high_string_is_cropped_at_top_bottom_or_both) {
    set_ink('a', {"X...", "XX..", "XXX.", "XXXX"});
    set_cell('a', 4, 4);
    const std::pair<int, const char *> first_rows[] = {{0, "X..."}, {3, "XX.."}, {6, "XXX."}};
    for (const auto &[align, row] : first_rows) {
        fill_buf(0);
        draw("a", 0, 0, 4, 2, align);
        for (int x = 0; x < 4; x++)
            EXPECT_EQ(buf_pixel(x, 0), row[x] == 'X' ? 7u : 0u) << align;
        EXPECT_EQ(buf_pixel(0, 2), 0u);
    }
}

TEST_F(DrawStringTest, halves_are_rounded_down_when_cropping) {
    set_ink('a', {"X..XX"});
    set_cell('a', 5, 1);
    draw("a", 0, 0, 2, 1, 1); // columns 1 and 2
    EXPECT_EQ(buf_pixel(0, 0), 0u);
    EXPECT_EQ(buf_pixel(1, 0), 0u);
    draw("a", 0, 1, 4, 1, 1); // columns 0 to 3
    EXPECT_EQ(buf_pixel(0, 1), 7u);
    EXPECT_EQ(buf_pixel(3, 1), 7u);
    EXPECT_EQ(buf_pixel(4, 1), 0u);
}

// --- the edges of the screen ---------------------------------------------------------------------

TEST_F(DrawStringTest, box_beyond_the_right_edge_is_cut_at_the_edge) {
    draw("a", 14, 2, 10, 5, 0);
    EXPECT_EQ(buf_picture(7), "................\n"
                              "................\n"
                              "..............X.\n"
                              "...............X\n"
                              "..............X.\n"
                              "................\n"
                              "................\n"
                              "................\n");
}

TEST_F(DrawStringTest, box_beyond_the_bottom_is_cut_at_the_edge) {
    draw("a", 1, 6, 10, 5, 0);
    EXPECT_EQ(buf_picture(7), "................\n"
                              "................\n"
                              "................\n"
                              "................\n"
                              "................\n"
                              "................\n"
                              ".X..X...........\n"
                              "..XX............\n");
}

TEST_F(DrawStringTest, string_that_starts_left_of_or_above_the_screen_is_not_drawn_at_all) {
    const int starts[][2] = {{-5, 0},  {-1, 0},         {0, -1},          {0, -2},
                             {16, 0},  {0, 8},          {-2147483647, 0}, {0, -2147483647},
                             {-1, -1}, {2147483647, 0}, {0, 2147483647}};
    for (const auto &[x, y] : starts) {
        EXPECT_EQ(draw("a", x, y, 100, 100, 0, 5), "");
        EXPECT_EQ(result, 0);
        for (int i = 0; i < 16 * 8; i++)
            ASSERT_EQ(buf_pixel(i % 16, i / 16), 0u) << x << " " << y;
    }
}

TEST_F(DrawStringTest, box_left_of_the_screen_shows_what_is_placed_on_it) {
    draw("a", -6, 0, 12, 5, 2); // the string stands at -6 + 12 - 4
    EXPECT_EQ(buf_pixel(2, 0), 7u);
    EXPECT_EQ(buf_pixel(5, 0), 7u);
}

TEST_F(DrawStringTest, box_of_negative_size_holds_all_at_its_near_end_and_nothing_elsewhere) {
    draw("a", 2, 2, -3, -3, 0);
    EXPECT_EQ(buf_pixel(2, 2), 7u);
    EXPECT_EQ(buf_pixel(5, 4), 7u);
    fill_buf(0);
    for (int align = 1; align < 9; align++)
        draw("a", 8, 4, -3, -3, align);
    for (int i = 0; i < 16 * 8; i++)
        EXPECT_EQ(buf_pixel(i % 16, i / 16), 0u);
}

TEST_F(DrawStringTest, box_of_no_size_shows_nothing) {
    for (int align = 0; align < 9; align++) {
        draw("a", 2, 2, 0, 5, align, 5);
        draw("a", 2, 2, 5, 0, align, 5);
    }
    for (int i = 0; i < 16 * 8; i++)
        EXPECT_EQ(buf_pixel(i % 16, i / 16), 0u);
}

TEST_F(DrawStringTest, screen_without_memory_or_size_is_survived) {
    uint8_t *const memory = std::exchange(main_screen.buf, nullptr);
    EXPECT_EQ(draw("a", 0, 0, 9, 9, 0), "");
    main_screen.buf = memory;
    main_screen.width = -16;
    draw("a", 0, 0, 9, 9, 0);
    main_screen.width = 16;
    main_screen.height = -8;
    draw("a", 0, 0, 9, 9, 0);
    main_screen.height = 8;
    EXPECT_EQ(result, 0);
    EXPECT_EQ(buf_pixel(0, 0), 0u);
}
