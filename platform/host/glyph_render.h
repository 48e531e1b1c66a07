/* SPDX-License-Identifier: MIT */
/*
 * Rasterises one outline of a font into a cell of bits.
 */
#ifndef UX_PLATFORM_HOST_GLYPH_RENDER_H
#define UX_PLATFORM_HOST_GLYPH_RENDER_H

#include <cstddef>
#include <optional>

#include "platform/host/font_glyph.h"
#include "platform/host/glyph_command.h"

namespace em862x {

/* A face, and the scale it is set to: setting it runs the font's own program. */
struct scaled_face {
    FT_Face face = nullptr;
    std::uint32_t scale = 0; /* 0: none yet */
};

/*
 * Fills the cell at `bits` with the outline, hinted for one bit per pixel unless a matrix turns or
 * stretches it. `bits` has pitch_of(cell) * cell.height bytes; all of them are written. False when
 * the outline cannot be loaded.
 */
bool render_glyph(scaled_face &face, const glyph_request &request,
                  const std::optional<outline_matrix> &matrix, std::byte *bits) noexcept;

} // namespace em862x

#endif
