// SPDX-License-Identifier: MIT
// Rendering strings into blocks: the calls in order, and the pixels.

#include "tests/font/string_buffer_test.h"

namespace {

using picture_rows = std::vector<std::string>;

} // namespace

TEST_F(StringBufferTest, one_outline_and_a_space_make_exactly_these_calls) {
    auto &glyph = fake_chip::get().engine_glyphs['a'];
    glyph.metrics = {3, 0, 0, 0, 9};
    glyph.outlines = {{{"XX"}, {}, 0x01020304, 0xA0B0C0D0}};
    set_cell('a', 10, 19);
    set_cell(' ', 5, 19);
    EXPECT_EQ(render("a "), "");
    const std::string measure_a = "RUAExchangeProperty 32 4334 "
                                  "00000000 00000000 00000000 10000000 0c000300 0b001600";
    const std::string measure_space = "RUAExchangeProperty 32 4334 "
                                      "00000000 00000000 00000000 10000000 00000000 0b001600";
    EXPECT_EQ(take_calls(), (calls{
                                "RMTTGetGlyphMetrics 97",
                                measure_a,
                                "RMTTGetGlyphMetrics 32",
                                measure_space,
                                "RUAMalloc 0 57 1216", // 64 x 19
                                "RMTTGetGlyphMetrics 97",
                                measure_a,
                                "RMTTGetCompoundCount 97",
                                "RMTTGetScaleMatrix 97 0",
                                "RMTTGetGlyphPointer 97 0",
                                "RUASetProperty 32 4331 "
                                "04030201 d0c0b0a0 00000300 10000000 0c000300 0b001600",
                                "RUALock 196608 152", // 8 x 19
                                "RUAMap 196608 152",
                                "RUAUnMap 152 152",
                                "RUAUnLock 196608 152",
                                "RMTTGetGlyphMetrics 32",
                                measure_space,
                                "RMTTGetCompoundCount 32",
                                "RUAFree 196608",
                            }));
    EXPECT_EQ(width, 15u);
    EXPECT_EQ(height, 19u);
}

TEST_F(StringBufferTest, messages_go_to_the_engine_that_was_opened) {
    output_of([] { ux_close_font(); });
    fake_chip::get().engines = 3;
    fake_chip::get().accepted_attempt = 2;
    output_of([] { ux_open_font(); });
    take_calls();
    auto &glyph = fake_chip::get().engine_glyphs['a'];
    glyph.outlines = {{{"X"}, {1, 2, 3, 4, 5, 6}}};
    set_cell(1, 1);
    render("a");
    const calls made = take_calls();
    EXPECT_EQ(only(made, "RUAExchangeProperty 544 4334").size(), 2u);
    EXPECT_EQ(only(made, "RUASetProperty 544 4332").size(), 1u);
    EXPECT_EQ(only(made, "RUASetProperty 544 4331").size(), 1u);
}

TEST_F(StringBufferTest, matrix_is_sent_as_12_bytes_before_its_outline) {
    fake_chip::get().engine_glyphs['a'].outlines = {{{"X"}, {0x4000, 0, -1, 0x2000, -300, 258}}};
    set_cell(1, 1);
    render("a");
    const calls made = take_calls();
    EXPECT_EQ(made.at(6), "RMTTGetScaleMatrix 97 0");
    EXPECT_EQ(made.at(7), "RUASetProperty 32 4332 00400000 ffff0020 d4fe0201");
    EXPECT_EQ(made.at(8), "RMTTGetGlyphPointer 97 0");
    EXPECT_EQ(made.at(9).substr(0, 23), "RUASetProperty 32 4331 ");
}

TEST_F(StringBufferTest, outlines_are_placed_rendered_and_read_one_by_one) {
    fake_chip::get().engine_glyphs['a'].outlines = {
        {{"X."}, {1, 0, 0, 1, 0, 0}, 1, 2}, {{".X"}, {}, 3, 4}, {{"XX"}, {2, 0, 0, 2, 0, 0}, 5, 6}};
    set_cell(2, 1);
    render("a");
    calls made = take_calls();
    made.erase(made.begin(), made.begin() + 6); // measured twice, scratch, count
    EXPECT_EQ(made, (calls{
                        "RMTTGetScaleMatrix 97 0",
                        "RUASetProperty 32 4332 01000000 00000100 00000000",
                        "RMTTGetGlyphPointer 97 0",
                        "RUASetProperty 32 4331 "
                        "01000000 02000000 00000300 10000000 00000000 0b001600",
                        "RUALock 196608 8",
                        "RUAMap 196608 8",
                        "RUAUnMap 8 8",
                        "RUAUnLock 196608 8",
                        "RMTTGetScaleMatrix 97 1",
                        "RMTTGetGlyphPointer 97 1",
                        "RUASetProperty 32 4331 "
                        "03000000 04000000 00000300 10000000 00000000 0b001600",
                        "RUALock 196608 8",
                        "RUAMap 196608 8",
                        "RUAUnMap 8 8",
                        "RUAUnLock 196608 8",
                        "RMTTGetScaleMatrix 97 2",
                        "RUASetProperty 32 4332 02000000 00000200 00000000",
                        "RMTTGetGlyphPointer 97 2",
                        "RUASetProperty 32 4331 "
                        "05000000 06000000 00000300 10000000 00000000 0b001600",
                        "RUALock 196608 8",
                        "RUAMap 196608 8",
                        "RUAUnMap 8 8",
                        "RUAUnLock 196608 8",
                        "RUAFree 196608",
                    }));
}

TEST_F(StringBufferTest, every_outline_rewrites_the_whole_cell_so_the_last_one_shows) {
    fake_chip::get().engine_glyphs['a'].outlines = {{{"XX.", "XX."}}, {{"..X", "..."}}};
    set_cell(3, 2);
    render("a");
    EXPECT_EQ(picture(), (picture_rows{"..X", "..."}));
}

TEST_F(StringBufferTest, set_bits_are_foreground_and_clear_bits_background) {
    set_ink('a', {"X.X", ".X.", "XXX"});
    set_cell(3, 3);
    EXPECT_EQ(render("a"), "");
    EXPECT_EQ(picture(), (picture_rows{"X.X", ".X.", "XXX"}));
}

TEST_F(StringBufferTest, cells_stand_side_by_side_at_the_top_and_leave_zero_below) {
    set_ink('a', {"XX", "XX"});
    set_ink('b', {"X..", ".X.", "..X"});
    set_cell('a', 2, 2);
    set_cell('b', 3, 3);
    set_cell(' ', 1, 1);
    render("ab a");
    EXPECT_EQ(picture(), (picture_rows{"XXX...XX", "XX.X. XX", "  ..X   "}));
}

TEST_F(StringBufferTest, glyph_without_outline_is_a_cell_of_background) {
    set_cell(' ', 4, 2);
    render("  ");
    EXPECT_EQ(picture(), (picture_rows{"........", "........"}));
    const calls made = take_calls();
    for (const char *absent : {"RMTTGetScaleMatrix", "RMTTGetGlyphPointer", "RUASetProperty",
                               "RUALock", "RUAMap", "RUAUnMap", "RUAUnLock"})
        EXPECT_EQ(only(made, absent), calls{}) << absent;
}

TEST_F(StringBufferTest, bits_beyond_the_cell_are_skipped_at_every_width) {
    for (uint32_t columns = 1; columns <= 130; columns++) {
        const std::string row(columns, '.'); // the fake pads with ink
        set_ink('a', {row, row});
        set_cell('a', columns, 2);
        set_cell('b', 1, 2);
        render("ab");
        EXPECT_EQ(picture(), (picture_rows{row + ".", row + "."})) << columns;
    }
}

TEST_F(StringBufferTest, scratch_rows_are_whole_multiples_of_64_bits) {
    const uint32_t widths[][3] = {{1, 64, 8},    {63, 64, 8},    {64, 64, 8},
                                  {65, 128, 16}, {128, 128, 16}, {129, 192, 24}};
    for (const auto &[columns, string_row, cell_row] : widths) {
        set_ink('a', {"X"});
        set_cell('a', columns, 3);
        render("a");
        const calls made = take_calls();
        EXPECT_EQ(only(made, "RUAMalloc"),
                  (calls{"RUAMalloc 0 57 " + std::to_string(string_row * 3)}));
        const std::string bytes = std::to_string(cell_row * 3);
        EXPECT_EQ(only(made, "RUAUnMap"), (calls{"RUAUnMap " + bytes + " " + bytes}));
    }
}

TEST_F(StringBufferTest, scratch_is_as_large_as_the_whole_string) {
    set_cell('a', 40, 3);
    set_cell('b', 40, 5);
    render("aab");
    EXPECT_EQ(only(take_calls(), "RUAMalloc"), (calls{"RUAMalloc 0 57 640"})); // 128 x 5
}

TEST_F(StringBufferTest, pixels_are_as_wide_as_asked_for) {
    set_ink('a', {"X.XXXXXXX.X", ".X"});
    set_cell('a', 11, 2);
    set_cell(' ', 2, 1);
    for (const uint32_t bpp : {1u, 2u, 4u}) {
        EXPECT_EQ(render("a ", 16, bpp), "");
        EXPECT_EQ(picture(), (picture_rows{"X.XXXXXXX.X..", ".X.........  "})) << bpp;
    }
}

TEST_F(StringBufferTest, colours_are_cut_to_the_pixel) {
    set_ink('a', {"X."});
    set_cell('a', 2, 1);
    render("a", 16, 2);
    EXPECT_EQ(pixel(0, 0), 0x2233u);
    EXPECT_EQ(pixel(1, 0), 0x5566u);
    render("a", 16, 1);
    EXPECT_EQ(pixel(0, 0), 0x33u);
    EXPECT_EQ(pixel(1, 0), 0x66u);
}

TEST_F(StringBufferTest, other_pixel_widths_give_null_without_a_message_or_a_call) {
    for (const uint32_t bpp : {0u, 3u, 5u, 8u, 0xFFFFFFFFu}) {
        EXPECT_EQ(render("ab", 16, bpp), "");
        EXPECT_EQ(block, nullptr);
    }
    EXPECT_EQ(take_calls(), calls{});
}

TEST_F(StringBufferTest, empty_string_is_a_block_of_0_by_0_and_its_scratch_is_freed_at_once) {
    for (const char *text : {"", static_cast<const char *>(nullptr)}) {
        width = height = 9;
        EXPECT_EQ(render(text), "");
        EXPECT_NE(block, nullptr);
        EXPECT_EQ(width, 0u);
        EXPECT_EQ(height, 0u);
        const calls made = take_calls();
        ASSERT_EQ(made.size(), 2u);
        EXPECT_EQ(made[0], "RUAMalloc 0 57 0");
        EXPECT_EQ(made[1].substr(0, 7), "RUAFree");
    }
}

TEST_F(StringBufferTest, bytes_outside_32_to_126_are_rendered_as_question_marks) {
    set_ink('?', {"X.", ".X"});
    set_cell('?', 2, 2);
    render("\xC3\xA9\x7F\x01");
    EXPECT_EQ(picture(), (picture_rows{"X.X.X.X.", ".X.X.X.X"}));
    EXPECT_EQ(only(take_calls(), "RMTTGetGlyphPointer").front(), "RMTTGetGlyphPointer 63 0");
}

TEST_F(StringBufferTest, busy_matrix_and_outline_are_sent_again) {
    fake_chip::get().engine_glyphs['a'].outlines = {{{"X"}, {1, 0, 0, 1, 0, 0}}};
    set_cell(1, 1);
    fake_chip::get().results["4332"] = {7, 7, 6};
    fake_chip::get().results["4331"] = {7, 7, 7, 6};
    EXPECT_EQ(render("a"), "");
    EXPECT_EQ(picture(), (picture_rows{"X"}));
    const calls made = take_calls();
    EXPECT_EQ(only(made, "RUASetProperty 32 4332").size(), 3u);
    EXPECT_EQ(only(made, "RUASetProperty 32 4331").size(), 4u);
    EXPECT_EQ(only(made, "RMTTGetGlyphPointer").size(), 1u);
    EXPECT_EQ(only(made, "RUALock").size(), 1u);
}

TEST_F(StringBufferTest, block_is_the_only_allocation) {
    fake_chip::get().record_calls = false;
    set_cell(1, 1);
    render("    "); // the fake knows all its calls now
    free(std::exchange(block, nullptr));
    hooks::take_allocation_count();
    block = ux_get_string_buffer("    ", 16, 1, 2, 4, &width, &height);
    EXPECT_EQ(hooks::take_allocation_count(), 1);
}
