/* SPDX-License-Identifier: MIT */
/*
 * What the rasteriser's glyphs look like, for every kind of scale and code.
 */
#include "tests/platform/font_fixture.h"

#include <climits>

namespace {

using fss_glyph_test = font_fixture;

/* Picture rows of a hollow box with strokes of one pixel. */
std::vector<std::string> thin_box(int width, int height) {
    const std::string bar(static_cast<std::size_t>(width), '#');
    std::string sides(static_cast<std::size_t>(width), '.');
    sides.front() = sides.back() = '#';
    std::vector<std::string> rows(static_cast<std::size_t>(height), sides);
    rows.front() = rows.back() = bar;
    return rows;
}

TEST_F(fss_glyph_test, letter_a_at_16_pixels_is_the_hinted_mono_glyph) {
    set_size(16, 16);
    const glyph_picture a = fss_picture('A');
    EXPECT_EQ(a, reference_picture(k_vera, 'A', {16, 16}));
    EXPECT_EQ(a.top, 12) << "a capital of this font is 0.729 of the size high, hinted to 12 rows";
    ASSERT_EQ(a.rows.size(), 12u);
    for (const std::string &row : a.rows)
        EXPECT_NE(row.find('#'), std::string::npos);
}

TEST_F(fss_glyph_test, printable_ascii_matches_freetype_at_every_size_from_8_to_48) {
    for (int size = 8; size <= 48; size++) {
        set_size(size, size);
        const auto pixels = static_cast<unsigned>(size);
        for (std::uint32_t code = 32; code <= 126; code++)
            ASSERT_EQ(fss_picture(code), reference_picture(k_vera, code, {pixels, pixels}))
                << "code " << code << " size " << size;
    }
}

TEST_F(fss_glyph_test, width_and_height_scale_apart) {
    for (const auto &[width, height] : {std::pair{8u, 24u}, {40u, 10u}, {17u, 16u}, {1u, 60u}}) {
        set_size(static_cast<int>(width), static_cast<int>(height));
        for (std::uint32_t code = 32; code <= 126; code++)
            ASSERT_EQ(fss_picture(code), reference_picture(k_vera, code, {width, height}))
                << "code " << code << " size " << width << "x" << height;
    }
}

TEST_F(fss_glyph_test, large_glyphs_beyond_a_byte_of_pixels_match_freetype) {
    for (const unsigned size : {200u, 255u, 300u, 400u, 1024u}) {
        set_size(static_cast<int>(size), static_cast<int>(size));
        for (const std::uint32_t code : {'A', 'W', '.', '@', 'g', ' '})
            ASSERT_EQ(fss_picture(code), reference_picture(k_vera, code, {size, size}))
                << "code " << code << " size " << size;
    }
}

TEST_F(fss_glyph_test, shear_slants_the_outline) {
    FSS_set_scale(32 << 16, 8 << 16, 0, 32 << 16);
    EXPECT_EQ(fss_picture('H'), reference_picture(k_vera, 'H', {32, 32, 0.25, 0}));
    FSS_set_scale(32 << 16, 0, -(4 << 16), 32 << 16);
    EXPECT_EQ(fss_picture('H'), reference_picture(k_vera, 'H', {32, 32, 0, -0.125}));
    set_size(32, 32);
    EXPECT_EQ(fss_picture('H'), reference_picture(k_vera, 'H', {32, 32}));
}

TEST_F(fss_glyph_test, fractions_of_a_pixel_count) {
    FSS_set_scale((20 << 16) + 0x8000, 0, 0, (20 << 16) + 0x8000);
    const glyph_picture between = fss_picture('W');
    EXPECT_NE(between, reference_picture(k_vera, 'W', {20, 20}));
    EXPECT_EQ(between.top, 15) << "0.729 x 20.5 = 14.9";
}

TEST_F(fss_glyph_test, bits_right_of_the_bitmap_are_clear_and_rows_are_packed) {
    set_size(16, 16);
    for (std::uint32_t code = 32; code <= 126; code++) {
        const glyph_picture reference = reference_picture(k_vera, code, {16, 16});
        std::size_t width = 0;
        for (const std::string &row : reference.rows)
            width = std::max(width, row.size());
        fss_glyph *glyph = FSS_get_bitmap(code);
        ASSERT_NE(glyph, nullptr);
        EXPECT_GE(static_cast<std::size_t>(glyph->pitch) * 8, width);
        EXPECT_LT(static_cast<std::size_t>(glyph->pitch) * 8, width + 8 + 1);
        FSS_free_char(glyph);
    }
}

TEST_F(fss_glyph_test, a_space_has_width_and_no_ink) {
    set_size(16, 16);
    const glyph_picture space = fss_picture(' ');
    EXPECT_EQ(space.advance, 5) << "0.318 x 16";
    EXPECT_TRUE(space.rows.empty());
}

TEST_F(fss_glyph_test, line_ends_have_neither_width_nor_ink) {
    set_size(16, 16);
    for (const std::uint32_t code : {10u, 13u}) {
        const glyph_picture end = fss_picture(code);
        EXPECT_EQ(end.advance, 0);
        EXPECT_TRUE(end.rows.empty());
    }
}

TEST_F(fss_glyph_test, a_code_the_font_lacks_shows_its_box) {
    set_size(16, 16);
    const glyph_picture box = reference_picture(k_vera, 0x4E00, {16, 16});
    ASSERT_FALSE(box.rows.empty());
    for (const std::uint32_t code :
         {0u, 1u, 0x4E00u, 0xD800u, 0xFFFFu, 0x10FFFFu, 0x110000u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_EQ(fss_picture(code), box) << "code " << code;
}

TEST_F(fss_glyph_test, a_font_whose_sign_for_missing_glyphs_is_empty_gets_the_drawn_box) {
    std::string font = read_file(k_vera);
    const std::size_t entry = font.find("loca");
    ASSERT_NE(entry, std::string::npos);
    std::size_t table = 0;
    for (std::size_t i = 0; i < 4; i++)
        table = table << 8 | static_cast<std::uint8_t>(font[entry + 8 + i]);
    /* Glyph 0 runs from the first to the second of these 16-bit offsets: make it end at its start.
     */
    font.replace(table, 2, font, table + 2, 2);
    use_font(write_file("no_sign.ttf", font).c_str());
    set_size(16, 16);
    EXPECT_EQ(fss_picture(0x4E00).rows, thin_box(8, 12));
    EXPECT_EQ(fss_picture('A'), reference_picture(k_vera, 'A', {16, 16}));
}

TEST_F(fss_glyph_test, sizes_that_make_no_sense_give_no_glyph) {
    const std::int32_t good = 16 << 16;
    for (const std::int32_t bad : {0, -1, -(16 << 16), INT_MIN, (1024 << 16) + 1, INT_MAX}) {
        FSS_set_scale(bad, 0, 0, good);
        EXPECT_EQ(FSS_get_bitmap('A'), nullptr) << bad;
        FSS_set_scale(good, 0, 0, bad);
        EXPECT_EQ(FSS_get_bitmap('A'), nullptr) << bad;
        EXPECT_EQ(FSS_get_bitmap('\n'), nullptr) << bad;
    }
    for (const std::int32_t shear : {INT_MIN, -(1024 << 16) - 1, INT_MAX}) {
        FSS_set_scale(good, shear, 0, good);
        EXPECT_EQ(FSS_get_bitmap('A'), nullptr) << shear;
        FSS_set_scale(good, 0, shear, good);
        EXPECT_EQ(FSS_get_bitmap('A'), nullptr) << shear;
    }
}

TEST_F(fss_glyph_test, no_glyph_before_a_scale_is_set) {
    EXPECT_EQ(FSS_get_bitmap('A'), nullptr);
}

TEST_F(fss_glyph_test, extreme_usable_scales_give_bounded_glyphs) {
    const std::int32_t most = 1024 << 16;
    const std::int32_t scales[][4] = {
        {1, 0, 0, 1},        {most, 0, 0, 1},          {1, 0, 0, most},
        {1, most, most, 1},  {most, most, most, most}, {1, -most, 0, 1},
        {most, 0, -most, 1}, {64, most, 0, 64}};
    for (const auto &scale : scales) {
        FSS_set_scale(scale[0], scale[1], scale[2], scale[3]);
        for (const std::uint32_t code : {32u, 65u, 87u, 0x4E00u}) {
            fss_glyph *glyph = FSS_get_bitmap(code);
            ASSERT_NE(glyph, nullptr) << scale[0] << " " << scale[1];
            EXPECT_LE(glyph->rows, 4096);
            EXPECT_LE(glyph->pitch, 512);
            FSS_free_char(glyph);
        }
    }
}

TEST_F(fss_glyph_test, without_any_font_every_glyph_is_a_drawn_box) {
    probes::opens().hide_others = true;
    set_size(16, 16);
    const glyph_picture box = fss_picture('A');
    EXPECT_EQ(box.left, 1);
    EXPECT_EQ(box.top, 12);
    EXPECT_EQ(box.advance, 10);
    EXPECT_EQ(box.rows, thin_box(8, 12));
    EXPECT_EQ(fss_picture(0xFFFFFFFF), box);
    set_size(20, 12);
    EXPECT_EQ(fss_picture(' ').rows, thin_box(10, 9));
    set_size(1, 1);
    EXPECT_EQ(fss_picture('A').rows, std::vector<std::string>{"#"});
}

TEST_F(fss_glyph_test, the_drawn_box_has_thicker_strokes_at_larger_sizes) {
    probes::opens().hide_others = true;
    set_size(32, 32);
    const glyph_picture box = fss_picture('A');
    ASSERT_EQ(box.rows.size(), 24u);
    for (const std::size_t full : {0u, 1u, 22u, 23u})
        EXPECT_EQ(box.rows[full], "################");
    for (std::size_t y = 2; y < 22; y++)
        EXPECT_EQ(box.rows[y], "##............##");
}

TEST_F(fss_glyph_test, null_is_accepted_back) {
    FSS_free_char(nullptr);
}

} // namespace
