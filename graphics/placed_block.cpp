// SPDX-License-Identifier: MIT
// Blending of parts of a block; see placed_block.h.

#include "graphics/placed_block.h"

#include "graphics/blend.h"

#include <algorithm>

namespace ux {

void blend_run(const placed_block &block, int64_t row, int64_t column, int64_t count) {
    const surface<argb8888> target = drawing_surface<argb8888>(main_screen);
    const int64_t to = target.index(block.x + column, block.y + row);
    const int64_t from = row * block.width + column;
    const int64_t skipped = std::max<int64_t>({0, -to, -from});
    const int64_t end = std::min({count, target.count - to, block.width * block.height - from});
    if (skipped < end)
        blend_row(target.pixels + to + skipped, block.pixels + from + skipped, end - skipped);
}

} // namespace ux
