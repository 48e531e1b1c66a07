// SPDX-License-Identifier: MIT
// The one arithmetic of nearest-neighbour scaling: output k of n takes source floor(k * m / n) of
// m, so the first output is the first source, and the last source need not be used.
#ifndef UX_GRAPHICS_SCALE_H
#define UX_GRAPHICS_SCALE_H

#include "graphics/pixel.h"

namespace ux {

// Ways to make a row, slowest first. All but the first two need groups of eight outputs that begin
// on a whole source pixel and so come from the same places around it: 3 to 2, 1 to 2, 3 to 8...
enum class scaling {
    plain,        // one output after the other; any width
    fixed_point,  // positions by multiplication; up to 65,536 outputs
    loaded_group, // each pixel of a group loaded on its own
    one_vector,   // a group shuffled out of eight source pixels
    two_vectors   // a group shuffled out of sixteen source pixels
};

// How rows of one width become rows of another; made once for all rows of a picture. It owns
// nothing. Both widths are 1 or more.
struct nearest_columns {
    nearest_columns(int32_t from_width, int32_t to_width);

    int32_t source_width; // in pixels
    int32_t width;        // of the output, in pixels
    uint64_t step;        // source pixels per output pixel, with 32 bits of fraction, rounded up
    scaling way;          // the fastest that suits the widths and the processor
};

// Scales a row of 32-bit pixels. Reads `source_width` pixels at most and writes `width` of them, in
// order from the left where the two rows overlap.
void scale_row(word32 *to, const word32 *from, const nearest_columns &columns);

} // namespace ux

#endif
