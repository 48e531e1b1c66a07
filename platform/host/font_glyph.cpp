/* SPDX-License-Identifier: MIT */
/*
 * Reads metrics and outlines in font units. A compound glyph is taken apart into the glyphs it
 * refers to; one of them may be compound itself, it is still one outline here.
 */
#include "platform/host/font_glyph.h"

#include <algorithm>
#include <limits>

#include FT_OUTLINE_H

namespace em862x {

namespace {

/* Bits of a component that FreeType passes through but does not name: its offset is scaled. */
constexpr FT_UInt k_offset_is_scaled = 0x800;

constexpr int k_fraction_shift = 2; /* 16.16 to 2.14 */

bool fits_16_bits(FT_Pos value) noexcept {
    return value >= std::numeric_limits<std::int16_t>::min() &&
           value <= std::numeric_limits<std::int16_t>::max();
}

/* Nothing when a value needs more than 16 bits. */
template <std::size_t Count>
std::optional<std::array<std::int16_t, Count>> to_16_bits(const std::array<FT_Pos, Count> &values) {
    if (!std::all_of(values.begin(), values.end(), fits_16_bits))
        return std::nullopt;
    std::array<std::int16_t, Count> narrow{};
    std::transform(values.begin(), values.end(), narrow.begin(),
                   [](FT_Pos value) { return static_cast<std::int16_t>(value); });
    return narrow;
}

/* Nothing for a component that is placed by matching points or by a scaled offset. */
std::optional<glyph_part> read_part(FT_GlyphSlot slot, FT_UInt part) {
    FT_Int index = 0;
    FT_UInt flags = 0;
    FT_Int x = 0;
    FT_Int y = 0;
    FT_Matrix matrix = {};
    if (FT_Get_SubGlyph_Info(slot, part, &index, &flags, &x, &y, &matrix) != 0 || index < 0 ||
        !(flags & FT_SUBGLYPH_FLAG_ARGS_ARE_XY_VALUES) || (flags & k_offset_is_scaled))
        return std::nullopt;
    const auto placed =
        to_16_bits<6>({matrix.xx >> k_fraction_shift, matrix.xy >> k_fraction_shift,
                       matrix.yx >> k_fraction_shift, matrix.yy >> k_fraction_shift, x, y});
    if (!placed)
        return std::nullopt;
    return glyph_part{static_cast<FT_UInt>(index), placed};
}

/* The components of a compound glyph; empty when it is none or cannot be taken apart. */
std::vector<glyph_part> read_components(FT_Face face, FT_UInt index) {
    if (FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_RECURSE) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_COMPOSITE)
        return {};
    std::vector<glyph_part> parts;
    for (FT_UInt part = 0; part < face->glyph->num_subglyphs; part++) {
        const std::optional<glyph_part> component = read_part(face->glyph, part);
        if (!component)
            return {};
        parts.push_back(*component);
    }
    return parts;
}

} // namespace

std::optional<font_glyph> read_font_glyph(FT_Face face, std::uint32_t code) {
    const FT_UInt index = FT_Get_Char_Index(face, code);
    if (FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return std::nullopt;
    const FT_Glyph_Metrics &read = face->glyph->metrics;
    const bool has_ink = face->glyph->outline.n_contours > 0;
    const auto metrics = to_16_bits<5>({read.horiBearingX, read.horiBearingY - read.height,
                                        read.horiBearingX + read.width, read.horiBearingY,
                                        read.horiAdvance - read.horiBearingX});
    if (!metrics)
        return std::nullopt;
    font_glyph glyph{*metrics, {}};
    if (has_ink)
        glyph.parts = read_components(face, index);
    if (has_ink && glyph.parts.empty())
        glyph.parts.push_back({index, std::nullopt});
    return glyph;
}

} // namespace em862x
