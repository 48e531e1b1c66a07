/* SPDX-License-Identifier: MIT */
/*
 * Turns glyph bitmaps into text.
 */
#include "tests/platform/reference_glyph.h"

#include <algorithm>
#include <functional>
#include <ostream>

#include <ft2build.h>
#include FT_FREETYPE_H
#include <gtest/gtest.h>

namespace {

std::vector<std::string> rows_of(const std::uint8_t *bytes, int rows, int pitch) {
    std::vector<std::string> lines;
    for (int y = 0; y < rows; y++) {
        std::string line;
        for (int x = 0; x < pitch * 8; x++)
            line += bytes[y * pitch + x / 8] >> (7 - x % 8) & 1 ? '#' : '.';
        line.erase(line.find_last_not_of('.') + 1);
        lines.push_back(line);
    }
    return lines;
}

/* A library and a face for one rendering. */
struct plain_face {
    explicit plain_face(const char *path) {
        FT_Init_FreeType(&library);
        EXPECT_EQ(FT_New_Face(library, path, 0, &face), 0) << path;
    }
    plain_face(const plain_face &) = delete;
    plain_face &operator=(const plain_face &) = delete;
    ~plain_face() { FT_Done_FreeType(library); }

    FT_Library library = nullptr;
    FT_Face face = nullptr;
};

} // namespace

std::ostream &operator<<(std::ostream &stream, const glyph_picture &picture) {
    stream << "left " << picture.left << " top " << picture.top << " advance " << picture.advance;
    for (const std::string &row : picture.rows)
        stream << "\n|" << row;
    return stream;
}

glyph_picture fss_picture(std::uint32_t code) {
    fss_glyph *glyph = FSS_get_bitmap(code);
    EXPECT_NE(glyph, nullptr) << "code " << code;
    if (!glyph)
        return {};
    const auto *bitmap = reinterpret_cast<const std::uint8_t *>(glyph + 1);
    glyph_picture picture = {glyph->left, glyph->top, glyph->advance,
                             rows_of(bitmap, glyph->rows, glyph->pitch)};
    FSS_free_char(glyph);
    return picture;
}

glyph_picture reference_picture(const char *path, std::uint32_t code, reference_scale scale) {
    plain_face font(path);
    if (!font.face)
        return {};
    FT_Set_Pixel_Sizes(font.face, scale.width, scale.height);
    FT_Matrix matrix = {0x10000, static_cast<FT_Fixed>(scale.x_per_y * 0x10000),
                        static_cast<FT_Fixed>(scale.y_per_x * 0x10000), 0x10000};
    FT_Set_Transform(font.face, &matrix, nullptr);
    EXPECT_EQ(FT_Load_Char(font.face, code, FT_LOAD_RENDER | FT_LOAD_TARGET_MONO), 0);
    const FT_GlyphSlot slot = font.face->glyph;
    glyph_picture picture = {
        slot->bitmap_left, slot->bitmap_top, static_cast<int>(slot->advance.x >> 6),
        rows_of(slot->bitmap.buffer, static_cast<int>(slot->bitmap.rows), slot->bitmap.pitch)};
    if (std::all_of(picture.rows.begin(), picture.rows.end(), std::mem_fn(&std::string::empty)))
        picture.rows.clear();
    return picture;
}
