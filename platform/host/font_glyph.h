/* SPDX-License-Identifier: MIT */
/*
 * What a font says about one character: its metrics, and the outlines that make it up.
 */
#ifndef UX_PLATFORM_HOST_FONT_GLYPH_H
#define UX_PLATFORM_HOST_FONT_GLYPH_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/host/freetype_library.h"

namespace em862x {

/* xx, xy, yx, yy as 2.14 fixed point, x and y in font units, as they cross the interface. */
using outline_matrix = std::array<std::int16_t, 6>;

/* One outline, and how it is placed; without a matrix it is drawn as it is. */
struct glyph_part {
    FT_UInt index; /* the font's number of the glyph that has this outline */
    std::optional<outline_matrix> matrix;
};

/* Of the metrics, in font units, the engine gets 0, the ink's left edge, and the sum of 0 and 4,
 * which is the advance. Between them lie the ink's other edges: bottom, right, top. */
struct font_glyph {
    std::array<std::int16_t, 5> metrics;
    std::vector<glyph_part> parts; /* none: no ink */
};

/*
 * A character of a face; what the font does not have looks like its "missing" glyph. Nothing when
 * that cannot be loaded either or is beyond 16 bits.
 */
std::optional<font_glyph> read_font_glyph(FT_Face face, std::uint32_t code);

} // namespace em862x

#endif
