/* SPDX-License-Identifier: MIT */
/*
 * Compound glyphs of real fonts: their parts and matrices as the file has them, read here by hand,
 * and the parts laid over each other beside FreeType's rendering of the whole.
 */
#include "tests/platform/engine_fixture.h"
#include "tests/platform/sfnt.h"

namespace {

/* Pixels of FreeType's rendering of a whole glyph, and where the parts differ from it. */
struct pixel_count {
    std::size_t ink = 0;
    std::size_t wrong = 0;
};

struct gfx_compound_test : engine_fixture {
    std::vector<component> served(std::uint32_t code) const {
        std::vector<component> parts;
        for (std::uint32_t part = 0; part < RMTTGetCompoundCount(font, code); part++) {
            const std::int16_t *matrix = RMTTGetScaleMatrix(font, code, part);
            std::uint32_t words[2] = {};
            RMTTGetGlyphPointer(font, code, part, &words[0], &words[1]);
            if (matrix)
                parts.push_back({static_cast<std::uint16_t>(words[1]),
                                 matrix[4],
                                 matrix[5],
                                 {matrix[0], matrix[1], matrix[2], matrix[3]}});
        }
        return parts;
    }

    /* `code` is the font's, `mapped` what the parts are asked for by. */
    pixel_count compare(const char *path, std::uint32_t code, std::uint32_t mapped,
                        std::uint32_t size) const {
        const glyph_picture whole = reference_picture(path, code, {size, size});
        const std::vector<std::string> laid = whole_picture(mapped, size);
        const int baseline = static_cast<int>((font->header[0] * size + 2047) / 2048);
        pixel_count count;
        for (std::size_t r = 0; r < laid.size(); r++)
            for (std::size_t c = 0; c < laid[r].size(); c++) {
                const std::size_t y = r - static_cast<std::size_t>(baseline - whole.top);
                const std::size_t x = c - static_cast<std::size_t>(whole.left);
                const bool expected =
                    y < whole.rows.size() && x < whole.rows[y].size() && whole.rows[y][x] == '#';
                count.wrong += expected != (laid[r][c] == '#');
                count.ink += expected;
            }
        return count;
    }
};

constexpr std::uint32_t k_e_acute = 0xE9;
constexpr std::uint32_t k_no_break_space = 0xA0;
constexpr const char *k_mono_bold = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf";

TEST_F(gfx_compound_test, e_acute_of_vera_is_an_e_and_an_acute_accent) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    ASSERT_EQ(RMTTGetCompoundCount(font, k_e_acute), 2u);
    const std::vector<component> parts = served(k_e_acute);
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[0].glyph, index_of('e'));
    EXPECT_EQ(parts[1].glyph, index_of(0xB4));
    EXPECT_EQ(parts[0].x, 0);
    EXPECT_EQ(parts[0].y, 0);
}

TEST_F(gfx_compound_test, parts_and_matrices_are_those_of_the_file) {
    for (const char *path : {k_vera, k_dejavu}) {
        ASSERT_EQ(open(path), EM862X_SUCCESS);
        const sfnt file(read_file(path));
        int compounds = 0;
        for (std::uint32_t code = 33; code < 256; code++) {
            if (code == k_no_break_space) /* a compound without ink */
                continue;
            const std::vector<component> expected = file.components(index_of(code));
            EXPECT_EQ(served(code), expected) << path << " " << code;
            compounds += expected.empty() ? 0 : 1;
        }
        EXPECT_GT(compounds, 50) << path;
    }
}

TEST_F(gfx_compound_test, a_compound_without_ink_has_no_outline) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    EXPECT_EQ(RMTTGetCompoundCount(font, k_no_break_space), 0u);
}

/* This font has one compound that does more than move its parts. */
TEST_F(gfx_compound_test, scaled_parts_come_with_their_matrix_and_are_rendered) {
    const sfnt file(read_file(k_mono_bold));
    ASSERT_EQ(open(k_mono_bold), EM862X_SUCCESS);
    const auto moves_only = [](const component &part) {
        return part.linear == std::array<std::int16_t, 4>{0x4000, 0, 0, 0x4000};
    };
    std::uint32_t code = 32;
    std::vector<component> expected;
    while (std::all_of(expected.begin(), expected.end(), moves_only) && code < 0x2400)
        expected = file.components(index_of(++code));
    ASSERT_LT(code, 0x2400u);
    mapping.code[1] = code;
    ASSERT_EQ(open(k_mono_bold), EM862X_SUCCESS);
    EXPECT_EQ(served(1), expected);
    const pixel_count count = compare(k_mono_bold, code, 1, 64);
    EXPECT_GT(count.ink, 0u);
    EXPECT_LE(count.wrong * 20, count.ink) << "of " << count.ink << " wrong " << count.wrong;
}

TEST_F(gfx_compound_test, each_part_alone_is_rendered_and_the_last_one_stays) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const std::vector<std::string> letter = part_picture(k_e_acute, 0, 32);
    EXPECT_EQ(letter, part_picture('e', 0, 32));
    const std::vector<std::string> accent = part_picture(k_e_acute, 1, 32);
    const auto has_ink = [](const std::string &row) { return row.find('#') != row.npos; };
    const auto highest_e = std::find_if(letter.begin(), letter.end(), has_ink) - letter.begin();
    const auto lowest_accent =
        accent.rend() - std::find_if(accent.rbegin(), accent.rend(), has_ink) - 1;
    EXPECT_GE(lowest_accent, 0);
    EXPECT_LT(lowest_accent, highest_e) << "the scratch area holds no e any more";
}

/* Each part is hinted on its own and moved by whole pixels; a font may hint the whole further. */
TEST_F(gfx_compound_test, parts_laid_over_each_other_are_nearly_the_whole_glyph) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    for (const std::uint32_t size : {24u, 32u, 48u, 100u})
        for (const std::uint32_t code : {0xC0u, 0xC9u, 0xD6u, 0xE9u, 0xF1u, 0xFCu}) {
            const pixel_count count = compare(k_vera, code, code, size);
            EXPECT_GT(count.ink, 0u);
            EXPECT_LE(count.wrong * 20, count.ink) << "code " << code << " size " << size;
        }
}

TEST_F(gfx_compound_test, parts_are_moved_by_their_offset_to_the_nearest_pixel) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const std::vector<component> parts = sfnt(read_file(k_vera)).components(index_of(k_e_acute));
    ASSERT_EQ(parts.size(), 2u);
    for (const int size : {16, 24, 33, 48, 100}) {
        const auto pixels = static_cast<unsigned>(size);
        const glyph_picture acute = reference_picture(k_vera, 0xB4, {pixels, pixels});
        const int x = acute.left + (parts[1].x * size + 1024) / 2048;
        const int y = (1901 * size + 2047) / 2048 - acute.top - (parts[1].y * size + 1024) / 2048;
        const std::vector<std::string> accent = part_picture(k_e_acute, 1, pixels);
        for (int r = 0; r < static_cast<int>(acute.rows.size()); r++)
            for (int c = 0; c < static_cast<int>(acute.rows[r].size()); c++)
                EXPECT_EQ(accent.at(y + r).at(x + c), acute.rows[r][c]) << size;
    }
}

TEST_F(gfx_compound_test, a_matrix_serves_one_outline_and_is_used_up) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const std::vector<std::string> plain = part_picture('A', 0, 32);
    const std::int16_t half[6] = {0x2000, 0, 0, 0x2000, 0, 0};
    EXPECT_EQ(send(k_matrix, half, sizeof half), EM862X_SUCCESS);
    const std::vector<std::string> small = part_picture('A', 0, 32);
    EXPECT_NE(small, plain);
    for (std::size_t y = 0; y < 18; y++) /* 30 rows above the baseline; the half A has 12 */
        EXPECT_EQ(small[y].find('#'), std::string::npos) << y;
    EXPECT_EQ(part_picture('A', 0, 32), plain);
}

TEST_F(gfx_compound_test, a_matrix_is_used_up_by_a_refused_outline_too) {
    ASSERT_EQ(open(k_vera), EM862X_SUCCESS);
    const std::vector<std::string> plain = part_picture('A', 0, 32);
    const std::int16_t half[6] = {0x2000, 0, 0, 0x2000, 0, 0};
    EXPECT_EQ(send(k_matrix, half, sizeof half), EM862X_SUCCESS);
    request wrong = render_request('A', 0, 32);
    wrong.scratch = 0;
    EXPECT_EQ(render(wrong), EM862X_FAILURE);
    EXPECT_EQ(part_picture('A', 0, 32), plain);
}

} // namespace
