// SPDX-License-Identifier: MIT
// Laying a rendered string over the screen: its pixels of value 0 are transparent.
#ifndef UX_FONT_STRING_OVERLAY_H
#define UX_FONT_STRING_OVERLAY_H

#include <cstdint>

namespace ux {

// Rows of pixels side by side, and how far they lie apart.
struct pixel_rows {
    uint8_t *first;
    int64_t pitch_bytes;
};

struct const_pixel_rows {
    const uint8_t *first;
    int64_t pitch_bytes;
};

// Lays `rows` rows of `columns` pixels of 1, 2 or 4 bytes over those of the screen; the caller
// clips.
void lay_over(const pixel_rows &screen, const const_pixel_rows &string, uint32_t columns,
              uint32_t rows, uint32_t pixel_bytes);

// The same for a string without a transparent pixel; the screen is not read.
void copy_over(const pixel_rows &screen, const const_pixel_rows &string, uint32_t columns,
               uint32_t rows, uint32_t pixel_bytes);

// Some of `columns` pixels are transparent.
bool has_transparent(const uint8_t *pixels, uint32_t columns, uint32_t pixel_bytes);

} // namespace ux

#endif
