// SPDX-License-Identifier: MIT
// Measuring characters and strings: what the engine is asked, byte for byte, and what each failure
// says.

#include "tests/font/engine_text_test.h"

#include <cstring>

namespace {

class GlyphMeasureTest : public EngineTextTest {
  protected:
    // Measures a character and returns what that printed.
    std::string measure(uint32_t ch, int size) {
        return output_of([&] { result = ux_get_char_size(ch, size, &width, &height); });
    }

    std::string measure(const char *text, int size) {
        return output_of([&] { result = ux_get_string_size(text, size, &width, &height); });
    }

    int result = 77;
    uint32_t width = 1234;
    uint32_t height = 5678;
};

} // namespace

TEST_F(GlyphMeasureTest, size_query_is_24_bytes_with_12_zero_ones_first) {
    fake_chip::get().engine_glyphs['a'].metrics = {0x0102, 91, 92, 93, 0x0304};
    set_cell('a', 10, 19);
    EXPECT_EQ(measure(uint32_t{'a'}, 20), "");
    // Scale 20 << 11 / 2048 = 20; 0x0304 + 0x0102 = 0x0406; then 0x0102; header 11 and 22.
    EXPECT_EQ(take_calls(), (calls{"RMTTGetGlyphMetrics 97",
                                   "RUAExchangeProperty 32 4334 "
                                   "00000000 00000000 00000000 14000000 06040201 0b001600"}));
    EXPECT_EQ(result, 0);
    EXPECT_EQ(width, 10u);
    EXPECT_EQ(height, 19u);
}

TEST_F(GlyphMeasureTest, metrics_sum_wraps_and_bearing_keeps_its_sign) {
    fake_chip::get().engine_glyphs['j'].metrics = {-2, 0, 0, 0, 1};
    measure(uint32_t{'j'}, 16);
    EXPECT_EQ(take_calls().back(), "RUAExchangeProperty 32 4334 "
                                   "00000000 00000000 00000000 10000000 fffffeff 0b001600");
}

TEST_F(GlyphMeasureTest, scale_is_rounded_down_and_counts_the_em_size) {
    fake_chip::get().font.header[2] = 1000;
    measure(uint32_t{'a'}, 17);
    // 17 * 2048 / 1000 = 34.816.
    EXPECT_EQ(take_calls().back(), "RUAExchangeProperty 32 4334 "
                                   "00000000 00000000 00000000 22000000 00000000 0b001600");
}

TEST_F(GlyphMeasureTest, size_is_taken_as_unsigned) {
    fake_chip::get().font.header[2] = 1;
    measure(uint32_t{'a'}, -1);
    EXPECT_EQ(take_calls().back(), "RUAExchangeProperty 32 4334 "
                                   "00000000 00000000 00000000 00f8ffff 00000000 0b001600");
}

TEST_F(GlyphMeasureTest, front_end_and_renderer_make_the_same_calls) {
    set_cell(3, 4);
    ux_get_char_size('x', 9, &width, &height);
    const calls front = take_calls();
    EXPECT_EQ(ux_get_char_size_em862x('x', 9, &width, &height), 0);
    EXPECT_EQ(take_calls(), front);
    ux_get_string_size("xy", 9, &width, &height);
    const calls string_front = take_calls();
    EXPECT_EQ(ux_get_string_size_em862x("xy", 9, &width, &height), 0);
    EXPECT_EQ(take_calls(), string_front);
}

TEST_F(GlyphMeasureTest, codes_outside_32_to_126_are_measured_as_question_marks) {
    set_cell('?', 7, 9);
    for (const uint32_t ch : {0u, 1u, 31u, 127u, 128u, 0xC3u, 255u, 256u + 65u, 0xFFFFFFC3u}) {
        measure(ch, 16);
        EXPECT_EQ(take_calls().front(), "RMTTGetGlyphMetrics 63") << ch;
        EXPECT_EQ(width, 7u) << ch;
    }
    for (const uint32_t ch : {32u, 33u, 65u, 126u}) {
        measure(ch, 16);
        EXPECT_EQ(take_calls().front(), "RMTTGetGlyphMetrics " + std::to_string(ch));
    }
}

TEST_F(GlyphMeasureTest, busy_engine_is_asked_until_it_answers) {
    fake_chip::get().results["4334"] = {7, 7, 7, 6};
    set_cell(3, 4);
    EXPECT_EQ(measure(uint32_t{'a'}, 16), "");
    const calls made = take_calls();
    EXPECT_EQ(made.size(), 1u + 4u) << "metrics once, the query four times";
    EXPECT_EQ(made[1], made[4]);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(width, 3u);
}

TEST_F(GlyphMeasureTest, any_other_answer_is_a_failure_without_retry) {
    for (const int answer : {9, 0, 5, 8, -1}) {
        fake_chip::get().results["4334"] = {7, answer};
        EXPECT_EQ(measure(uint32_t{'a'}, 16), "Cannot get glyph output size\n");
        EXPECT_EQ(only(take_calls(), "RUAExchangeProperty").size(), 2u);
        EXPECT_EQ(result, -1);
        EXPECT_EQ(width, 1234u);
        EXPECT_EQ(height, 5678u);
    }
}

TEST_F(GlyphMeasureTest, unknown_character_is_told_as_it_was_passed) {
    fake_chip::get().unknown_codes = {'?', 'a'};
    EXPECT_EQ(measure(uint32_t{'a'}, 16), "Could not retrieve size( char_index 97)\n");
    EXPECT_EQ(measure(195u, 16), "Could not retrieve size( char_index 195)\n");
    EXPECT_EQ(measure(300u, 16), "Could not retrieve size( char_index 300)\n");
    EXPECT_EQ(measure(0xFFFFFFFEu, 16), "Could not retrieve size( char_index -2)\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(width, 1234u);
    EXPECT_EQ(only(take_calls(), "RUAExchangeProperty"), calls{});
}

TEST_F(GlyphMeasureTest, em_size_0_fails_without_asking_the_engine) {
    fake_chip::get().font.header[2] = 0;
    EXPECT_EQ(measure(uint32_t{'a'}, 16), "Cannot get glyph output size\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(take_calls(), (calls{"RMTTGetGlyphMetrics 97"}));
}

TEST_F(GlyphMeasureTest, font_that_did_not_open_has_no_characters) {
    output_of([] { ux_close_font(); });
    fake_chip::get().font_result = EM862X_FAILURE;
    output_of([] { ux_open_font(); });
    EXPECT_EQ(measure(uint32_t{'a'}, 16), "Could not retrieve size( char_index 97)\n");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(measure("ab", 16), "Could not retrieve size( char_index 97)\n");
    EXPECT_EQ(result, -1);
}

TEST_F(GlyphMeasureTest, string_is_as_wide_as_its_cells_and_as_high_as_the_highest) {
    set_cell('a', 5, 12);
    set_cell('b', 7, 19);
    set_cell(' ', 3, 4);
    EXPECT_EQ(measure("ab a", 16), "");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(width, 20u);
    EXPECT_EQ(height, 19u);
    EXPECT_EQ(only(take_calls(), "RMTTGetGlyphMetrics"),
              (calls{"RMTTGetGlyphMetrics 97", "RMTTGetGlyphMetrics 98", "RMTTGetGlyphMetrics 32",
                     "RMTTGetGlyphMetrics 97"}));
}

TEST_F(GlyphMeasureTest, empty_string_measures_0_by_0_without_a_call) {
    for (const char *text : {"", static_cast<const char *>(nullptr)}) {
        width = height = 9;
        EXPECT_EQ(measure(text, 16), "");
        EXPECT_EQ(result, 0);
        EXPECT_EQ(width, 0u);
        EXPECT_EQ(height, 0u);
        EXPECT_EQ(take_calls(), calls{});
    }
}

TEST_F(GlyphMeasureTest, each_byte_of_a_multibyte_sequence_is_a_question_mark) {
    set_cell('?', 7, 9);
    measure("\xC3\xA9", 16);
    EXPECT_EQ(width, 14u);
    EXPECT_EQ(only(take_calls(), "RMTTGetGlyphMetrics"),
              (calls{"RMTTGetGlyphMetrics 63", "RMTTGetGlyphMetrics 63"}));
}

TEST_F(GlyphMeasureTest, byte_above_127_is_told_as_a_positive_number) {
    fake_chip::get().unknown_codes = {'?'};
    EXPECT_EQ(measure("\xC3", 16), "Could not retrieve size( char_index 195)\n");
}

TEST_F(GlyphMeasureTest, string_measuring_stops_at_the_first_failure_and_leaves_the_outputs) {
    for (size_t failing = 0; failing < 3; failing++) {
        fake_chip::get().results["4334"] = std::deque<int>(failing, EM862X_SUCCESS);
        fake_chip::get().results["4334"].push_back(EM862X_FAILURE);
        EXPECT_EQ(measure("abc", 16), "Cannot get glyph output size\n");
        EXPECT_EQ(result, -1);
        EXPECT_EQ(width, 1234u);
        EXPECT_EQ(height, 5678u);
        EXPECT_EQ(only(take_calls(), "RUAExchangeProperty").size(), failing + 1);
    }
}

TEST_F(GlyphMeasureTest, measuring_allocates_nothing) {
    fake_chip::get().record_calls = false;
    set_cell(3, 4);
    ux_get_string_size("abc", 16, &width, &height);
    hooks::take_allocation_count();
    ux_get_string_size("abc", 16, &width, &height);
    EXPECT_EQ(hooks::take_allocation_count(), 0);
}
