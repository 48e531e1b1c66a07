/* SPDX-License-Identifier: MIT */
/*
 * Outlines to bits, by way of FreeType's monochrome rasteriser.
 */
#include "platform/host/glyph_render.h"

#include <algorithm>
#include <cstring>

#include FT_OUTLINE_H

namespace em862x {

namespace {

constexpr FT_Pos k_one = 64;              /* a pixel in FreeType's 26.6 */
constexpr std::int16_t k_unity = 1 << 14; /* 1 in 2.14 */
constexpr int k_fraction_shift = 2;       /* 2.14 to 16.16 */

/* At 72 dots per inch a point is a pixel, which lets sizes keep their fraction. */
bool set_scale(scaled_face &scaled, std::uint32_t scale) noexcept {
    if (scaled.scale == scale)
        return true;
    const std::int64_t size =
        std::int64_t{scale} * scaled.face->units_per_EM * k_one >> k_scale_bits;
    const auto em = static_cast<FT_F26Dot6>(
        std::clamp<std::int64_t>(size, 1, std::int64_t{k_cell_side_max} * k_one));
    const bool is_set = FT_Set_Char_Size(scaled.face, em, em, 72, 72) == 0;
    scaled.scale = is_set ? scale : 0;
    return is_set;
}

FT_Pos to_nearest_pixel(FT_Pos length) noexcept {
    return (length + k_one / 2) & -k_one;
}

/* 26.6 pixels. */
FT_Pos scaled(std::int16_t units, std::uint32_t scale) noexcept {
    return static_cast<FT_Pos>(std::int64_t{units} * scale * k_one >> k_scale_bits);
}

bool only_moves(const outline_matrix &matrix) noexcept {
    return matrix[0] == k_unity && matrix[1] == 0 && matrix[2] == 0 && matrix[3] == k_unity;
}

/* An outline that is only moved goes by whole pixels and stays as crisp as it was hinted. */
void apply(FT_Outline &outline, const outline_matrix &matrix, std::uint32_t scale) noexcept {
    FT_Pos x = scaled(matrix[4], scale);
    FT_Pos y = scaled(matrix[5], scale);
    if (only_moves(matrix)) {
        x = to_nearest_pixel(x);
        y = to_nearest_pixel(y);
    }
    const auto fixed = [](std::int16_t value) { return FT_Fixed{value} * (1 << k_fraction_shift); };
    const FT_Matrix linear = {fixed(matrix[0]), fixed(matrix[1]), fixed(matrix[2]),
                              fixed(matrix[3])};
    FT_Outline_Transform(&outline, &linear);
    FT_Outline_Translate(&outline, x, y);
}

bool load(scaled_face &scaled, const glyph_request &request,
          const std::optional<outline_matrix> &matrix) noexcept {
    const bool hinted = !matrix || only_moves(*matrix);
    const FT_Int32 flags =
        FT_LOAD_NO_BITMAP | (hinted ? FT_LOAD_TARGET_MONO : FT_Int32{FT_LOAD_NO_HINTING});
    FT_Face face = scaled.face;
    if (!set_scale(scaled, request.scale) || FT_Load_Glyph(face, request.outline, flags) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return false;
    if (matrix)
        apply(face->glyph->outline, *matrix, request.scale);
    return true;
}

/* Calls visit(column, row) for every ink pixel of a bitmap. */
template <class Visit>
void for_each_pixel(const FT_Bitmap &bitmap, Visit visit) noexcept {
    for (int row = 0; row < static_cast<int>(bitmap.rows); row++)
        for (int column = 0; column < static_cast<int>(bitmap.width); column++)
            if (bitmap.buffer[row * bitmap.pitch + column / 8] & 0x80 >> column % 8)
                visit(column, row);
}

/* Hinting may round ink out of its cell: how many columns to move it to have it back inside. */
int shift_into(const FT_Bitmap &bitmap, int left, int width) noexcept {
    int first = width;
    int end = 0;
    for_each_pixel(bitmap, [&](int column, int) {
        first = std::min(first, left + column);
        end = std::max(end, left + column + 1);
    });
    if (first < 0)
        return std::clamp(width - end, 0, -first);
    return end > width ? -std::min(first, end - width) : 0;
}

/* Sets the ink in a cleared cell; what lies outside is dropped. */
void copy_ink(const FT_Bitmap &bitmap, int left, int top, const glyph_cell &cell,
              std::byte *bits) noexcept {
    const std::uint32_t pitch = pitch_of(cell);
    for_each_pixel(bitmap, [&](int column, int row) {
        const auto x = static_cast<std::uint32_t>(left + column);
        const auto y = static_cast<std::uint32_t>(top + row);
        if (x < cell.width && y < cell.height)
            bits[std::size_t{y} * pitch + x / 8] |= std::byte{0x80} >> x % 8;
    });
}

} // namespace

bool render_glyph(scaled_face &face, const glyph_request &request,
                  const std::optional<outline_matrix> &matrix, std::byte *bits) noexcept {
    const std::optional<glyph_cell> cell = cell_of(request);
    const std::optional<cell_rows> rows = rows_of(request);
    if (!cell || !rows)
        return false;
    std::memset(bits, 0, std::size_t{pitch_of(*cell)} * cell->height);
    if (cell->width == 0 || cell->height == 0)
        return true;
    FT_GlyphSlot slot = face.face->glyph;
    if (!load(face, request, matrix) || FT_Render_Glyph(slot, FT_RENDER_MODE_MONO) != 0)
        return false;
    const int shift =
        matrix ? 0 : shift_into(slot->bitmap, slot->bitmap_left, static_cast<int>(cell->width));
    copy_ink(slot->bitmap, slot->bitmap_left + shift,
             static_cast<int>(rows->above) - slot->bitmap_top, *cell, bits);
    return true;
}

} // namespace em862x
