/* SPDX-License-Identifier: MIT */
/*
 * Measuring and rendering on the graphics engine with good fonts: cells worked out by hand, ink
 * compared with FreeType used in the plainest way.
 */
#include "tests/platform/engine_fixture.h"
#include "tests/platform/sfnt.h"

namespace {

struct gfx_glyph_test : engine_fixture {};

/* A plain rendering moved to its place in a cell, and back inside where hinting put it beyond. */
std::vector<std::string> in_cell(const glyph_picture &glyph, std::uint32_t width,
                                 std::uint32_t height, int baseline) {
    int left = static_cast<int>(width); /* of the ink, as `right` is */
    int right = 0;
    for (const std::string &row : glyph.rows) {
        const std::size_t first = row.find('#');
        if (first == row.npos)
            continue;
        left = std::min(left, glyph.left + static_cast<int>(first));
        right = std::max(right, glyph.left + static_cast<int>(row.size()));
    }
    int x0 = glyph.left;
    for (; left < 0 && right < static_cast<int>(width); x0++, left++)
        right++;
    for (; left > 0 && right > static_cast<int>(width); x0--, left--)
        right--;
    std::vector<std::string> rows(height, std::string(width, '.'));
    for (std::size_t r = 0; r < glyph.rows.size(); r++)
        for (std::size_t c = 0; c < glyph.rows[r].size(); c++) {
            const auto y = static_cast<std::size_t>(baseline - glyph.top) + r;
            const auto x = static_cast<std::size_t>(x0) + c;
            if (y < height && x < width && glyph.rows[r][c] == '#')
                rows[y][x] = '#';
        }
    return rows;
}

/* How many rows lie above Vera's baseline: 1901 of 2048 units. */
int baseline_of(std::uint32_t size) {
    return static_cast<int>((1901 * size + 2047) / 2048);
}

TEST_F(gfx_glyph_test, cells_are_the_advance_wide_and_ascender_and_descender_high) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    /* Vera: A is 1401 units wide, a space 651, W 2025; ascender 1901, descender -483. */
    const cell a = cell_of('A', 16);
    EXPECT_EQ(a.width, 11u) << "10.945";
    EXPECT_EQ(a.height, 19u) << "14.85 and 3.77, each rounded up";
    EXPECT_EQ(cell_of(' ', 16).width, 5u) << "5.086";
    EXPECT_EQ(cell_of(' ', 16).height, 19u);
    EXPECT_EQ(cell_of('W', 100).width, 99u) << "98.88";
    EXPECT_EQ(cell_of('W', 100).height, 93u + 24u);
    EXPECT_EQ(cell_of('A', 1).height, 2u);
}

TEST_F(gfx_glyph_test, a_scale_of_0_is_a_cell_of_nothing) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    EXPECT_EQ(cell_of('A', 0).width, 0u);
    EXPECT_EQ(cell_of('A', 0).height, 0u);
    EXPECT_EQ(part_picture('A', 0, 0), std::vector<std::string>{});
}

TEST_F(gfx_glyph_test, letter_a_is_symmetric_stands_on_its_baseline_and_is_12_of_16_pixels_high) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const std::vector<std::string> rows = part_picture('A', 0, 16);
    ASSERT_EQ(rows.size(), 19u);
    for (std::size_t y = 0; y < rows.size(); y++) {
        EXPECT_EQ(std::string(rows[y].rbegin(), rows[y].rend()), rows[y]) << y;
        EXPECT_EQ(rows[y].find('#') != std::string::npos, y >= 3 && y < 15) << y;
    }
    EXPECT_EQ(rows[3], ".....#.....");
    EXPECT_EQ(rows[14], "#.........#") << "nearly as wide as the advance of 10.95 pixels";
}

TEST_F(gfx_glyph_test, printable_ascii_matches_freetype_at_every_size_from_8_to_48) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    for (std::uint32_t size = 8; size <= 48; size++)
        for (std::uint32_t code = 33; code <= 126; code++) {
            ASSERT_EQ(RMTTGetCompoundCount(font, code), 1u) << code;
            const cell measured = cell_of(code, size);
            ASSERT_EQ(part_picture(code, 0, size),
                      in_cell(reference_picture(k_vera, code, {size, size}), measured.width,
                              measured.height, baseline_of(size)))
                << "code " << code << " size " << size;
        }
}

TEST_F(gfx_glyph_test, rendering_writes_the_whole_cell_and_nothing_behind_it) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const cell measured = cell_of('W', 100); /* two words a row */
    const std::uint32_t bytes = 16 * measured.height;
    std::byte *memory = rua->memory.resolve(scratch, k_scratch_size);
    std::memset(memory, 0xFF, k_scratch_size);
    EXPECT_EQ(render(render_request('W', 0, 100)), EM862X_SUCCESS);
    for (std::uint32_t y = 0; y < measured.height; y++)
        for (std::uint32_t x = measured.width; x < 128; x++)
            ASSERT_EQ(static_cast<int>(memory[y * 16 + x / 8]) >> (7 - x % 8) & 1, 0);
    for (std::uint32_t i = bytes; i < k_scratch_size; i++)
        ASSERT_EQ(memory[i], std::byte{0xFF}) << i;
}

TEST_F(gfx_glyph_test, a_space_has_no_outline) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    EXPECT_EQ(RMTTGetCompoundCount(font, ' '), 0u);
}

TEST_F(gfx_glyph_test, metrics_are_those_of_the_file) {
    for (const char *path : {k_vera, k_dejavu}) {
        ASSERT_EQ(open(path), EM862X_SUCCESS);
        const sfnt file(read_file(path));
        for (std::uint32_t code = 33; code <= 126; code++) {
            const std::int16_t *metrics = RMTTGetGlyphMetrics(font, code);
            ASSERT_NE(metrics, nullptr);
            const std::size_t header = file.glyph(index_of(code)); /* contours, then the box */
            EXPECT_EQ(metrics[0], file.i16(header + 2)) << code;
            EXPECT_EQ(metrics[1], file.i16(header + 4)) << code;
            EXPECT_EQ(metrics[2], file.i16(header + 6)) << code;
            EXPECT_EQ(metrics[3], file.i16(header + 8)) << code;
            EXPECT_EQ(metrics[4] + metrics[0], file.advance(index_of(code))) << code;
        }
    }
}

TEST_F(gfx_glyph_test, metrics_stay_where_they_are_while_the_font_is_open) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const std::int16_t *metrics = RMTTGetGlyphMetrics(font, 'j');
    ASSERT_NE(metrics, nullptr);
    const std::vector<std::int16_t> before(metrics, metrics + 5);
    EXPECT_LT(before[0], 0) << "the hook of the j begins left of its origin";
    for (std::uint32_t code = 33; code <= 126; code++)
        RMTTGetGlyphMetrics(font, code);
    EXPECT_EQ(RMTTGetGlyphMetrics(font, 'j'), metrics);
    EXPECT_EQ(std::vector<std::int16_t>(metrics, metrics + 5), before);
}

TEST_F(gfx_glyph_test, codes_the_font_was_not_opened_for_have_nothing) {
    mapping.code['B'] = 0;
    mapping.last = 'Y';
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    for (const std::uint32_t code : {0u, std::uint32_t{'B'}, std::uint32_t{'Z'}, 256u, ~0u}) {
        EXPECT_EQ(RMTTGetGlyphMetrics(font, code), nullptr) << code;
        EXPECT_EQ(RMTTGetCompoundCount(font, code), 0u) << code;
        EXPECT_EQ(RMTTGetScaleMatrix(font, code, 0), nullptr) << code;
        std::uint32_t words[2] = {7, 7};
        RMTTGetGlyphPointer(font, code, 0, &words[0], &words[1]);
        EXPECT_EQ(words[0], 0u) << code;
        EXPECT_EQ(words[1], 0u) << code;
    }
    EXPECT_NE(RMTTGetGlyphMetrics(font, 'Y'), nullptr);
}

TEST_F(gfx_glyph_test, a_code_may_stand_for_another) {
    mapping.code['a'] = 'A';
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    EXPECT_EQ(part_picture('a', 0, 16), part_picture('A', 0, 16));
}

TEST_F(gfx_glyph_test, fonts_of_1000_units_are_as_large_as_their_scale_says) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    request asked = query('A', 16);
    asked.scale = 33; /* 33 / 2048 pixels per unit */
    asked.extent = 600;
    asked.header_0 = 800;
    asked.header_1 = static_cast<std::uint16_t>(-200);
    cell answer;
    EXPECT_EQ(measure(asked, answer), EM862X_SUCCESS);
    EXPECT_EQ(answer.width, 10u) << "9.67";
    EXPECT_EQ(answer.height, 13u + 4u) << "12.89 and 3.22";
}

TEST_F(gfx_glyph_test, a_busy_engine_answers_so_as_often_as_told) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const request asked = query('A', 16);
    const request made = render_request('A', 0, 16);
    const std::int16_t matrix[6] = {0x4000, 0, 0, 0x4000, 0, 0};
    cell answer;
    rua->engine.keep_busy(3);
    EXPECT_EQ(measure(asked, answer), EM862X_BUSY);
    EXPECT_EQ(answer.width, 0u);
    EXPECT_EQ(send(k_matrix, matrix, 12), EM862X_BUSY);
    EXPECT_EQ(render(made), EM862X_BUSY);
    EXPECT_EQ(measure(asked, answer), EM862X_SUCCESS);
    EXPECT_EQ(send(k_matrix, matrix, 12), EM862X_SUCCESS);
    EXPECT_EQ(render(made), EM862X_SUCCESS);
}

} // namespace
