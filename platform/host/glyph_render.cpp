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
bool set_scale(FT_Face face, std::uint32_t scale) noexcept {
    const std::int64_t size = std::int64_t{scale} * face->units_per_EM * k_one >> k_scale_bits;
    const FT_F26Dot6 em = static_cast<FT_F26Dot6>(
        std::clamp<std::int64_t>(size, 1, std::int64_t{k_cell_side_max} * k_one));
    return FT_Set_Char_Size(face, em, em, 72, 72) == 0;
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

/* Hinting rounds ink away from where the cell expects it: how far to move it back inside, 26.6. */
FT_Pos shift_into(const FT_Outline &outline, std::uint32_t width) noexcept {
    FT_BBox box;
    FT_Outline_Get_CBox(&outline, &box);
    const FT_Pos left = to_nearest_pixel(box.xMin);
    const FT_Pos right = to_nearest_pixel(box.xMax);
    const FT_Pos edge = FT_Pos{width} * k_one;
    if (left < 0)
        return std::clamp<FT_Pos>(edge - right, 0, -left);
    return right > edge ? -std::min(left, right - edge) : 0;
}

bool load(FT_Face face, const glyph_request &request,
          const std::optional<outline_matrix> &matrix) noexcept {
    const bool hinted = !matrix || only_moves(*matrix);
    const FT_Int32 flags =
        FT_LOAD_NO_BITMAP | (hinted ? FT_LOAD_TARGET_MONO : FT_Int32{FT_LOAD_NO_HINTING});
    if (!set_scale(face, request.scale) || FT_Load_Glyph(face, request.outline, flags) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return false;
    if (matrix)
        apply(face->glyph->outline, *matrix, request.scale);
    return true;
}

} // namespace

bool render_glyph(FT_Library library, FT_Face face, const glyph_request &request,
                  const std::optional<outline_matrix> &matrix, std::byte *bits) noexcept {
    const std::optional<glyph_cell> cell = cell_of(request);
    const std::optional<cell_rows> rows = rows_of(request);
    if (!cell || !rows)
        return false;
    const std::uint32_t pitch = pitch_of(*cell);
    std::memset(bits, 0, std::size_t{pitch} * cell->height);
    if (cell->width == 0 || cell->height == 0)
        return true;
    if (!load(face, request, matrix))
        return false;
    FT_Outline &outline = face->glyph->outline;
    const FT_Pos x = matrix ? 0 : shift_into(outline, cell->width);
    FT_Outline_Translate(&outline, x, FT_Pos{rows->below} * k_one);
    FT_Bitmap target = {};
    target.rows = cell->height;
    target.width = cell->width;
    target.pitch = static_cast<int>(pitch);
    target.buffer = reinterpret_cast<unsigned char *>(bits);
    target.pixel_mode = FT_PIXEL_MODE_MONO;
    return FT_Outline_Get_Bitmap(library, &outline, &target) == 0;
}

} // namespace em862x
