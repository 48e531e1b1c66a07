/* SPDX-License-Identifier: MIT */
/*
 * What tests may ask of the rasteriser beside its public functions.
 */
#ifndef UX_PLATFORM_HOST_FSS_H
#define UX_PLATFORM_HOST_FSS_H

#include <cstddef>

namespace em862x {

/*
 * Forgets font, glyphs and scale, as if the process had just started; the font is looked up anew
 * with the next glyph. Glyphs that callers hold stay valid.
 */
void fss_reset() noexcept;

/* Bytes of all glyphs in the table at present. */
std::size_t fss_table_bytes() noexcept;

} // namespace em862x

#endif
