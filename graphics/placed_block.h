// SPDX-License-Identifier: MIT
// A pixel block at its place on a 32-bit screen, and blending of parts of it.
#ifndef UX_GRAPHICS_PLACED_BLOCK_H
#define UX_GRAPHICS_PLACED_BLOCK_H

#include "graphics/surface.h"

namespace ux {

struct placed_block {
    const word32 *pixels;
    int x; // place of the block's first pixel on the screen
    int y;
    int64_t width;        // of the block, pixels; also its row length
    int64_t height;       // of the block, rows
    int64_t drawn_width;  // columns that lie left of the screen's right edge
    int64_t drawn_height; // rows that lie above its bottom edge
};

// Blends `count` pixels of a block's row, from `column` on, as far as the screen's memory and the
// block reach.
void blend_run(const placed_block &block, int64_t row, int64_t column, int64_t count);

inline void blend_pixel_of(const placed_block &block, int64_t row, int64_t column) {
    blend_run(block, row, column, 1);
}

} // namespace ux

#endif
