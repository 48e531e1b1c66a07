// SPDX-License-Identifier: MIT
// Copying a rectangle from the drawing buffer to a device that is turned by a quarter.
#ifndef UX_GRAPHICS_ROTATE_H
#define UX_GRAPHICS_ROTATE_H

#include "graphics/pixel.h"

namespace ux {

// Where pixel (column, row) of a `width` x `height` screen lies on the turned device, whose rows
// are `height` pixels long.
struct quarter_turn {
    int64_t origin;      // element of pixel (0, 0)
    int64_t column_step; // elements from one column to the next
    int64_t row_step;    // elements from one row to the next
};

inline quarter_turn turn_90(int64_t width, int64_t height) {
    return {(width - 1) * height, -height, 1};
}

inline quarter_turn turn_270(int64_t height) {
    return {height - 1, height, -1};
}

struct pixel_rect {
    int64_t x, y, width, height;
};

// Copies `rect` row by row, left to right, pixel by pixel: the two memories may overlap, and then
// the copy feeds on its own output. `pitch` is the row length of `from`; the caller clips.
void rotate_in_order(word32 *to, const word32 *from, int64_t pitch, const quarter_turn &turn,
                     const pixel_rect &rect);
void rotate_in_order(word16 *to, const word16 *from, int64_t pitch, const quarter_turn &turn,
                     const pixel_rect &rect);

// The same for pixels of any number of bytes.
void rotate_in_order(uint8_t *to, const uint8_t *from, int64_t pixel_bytes, int64_t pitch,
                     const quarter_turn &turn, const pixel_rect &rect);

// The same for memories that do not overlap, in blocks that suit the cache.
void rotate_apart(word32 *to, const word32 *from, int64_t pitch, const quarter_turn &turn,
                  const pixel_rect &rect);
void rotate_apart(word16 *to, const word16 *from, int64_t pitch, const quarter_turn &turn,
                  const pixel_rect &rect);

} // namespace ux

#endif
