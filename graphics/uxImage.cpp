// SPDX-License-Identifier: MIT
// Drawing of pixel blocks into the drawing buffer: cut at the right and bottom edge, blended on a
// 32-bit screen, copied on a 16-bit one.

#include "graphics/blend.h"
#include "graphics/surface.h"

#include <algorithm>
#include <cstring>

namespace ux {
namespace {

constexpr int k_first_unknown_effect = 9;

// A block and the part of it that is drawn.
struct placed_block {
    int x;
    int y;
    int64_t pitch;  // pixels per row of the block
    int64_t width;  // columns drawn
    int64_t height; // rows drawn
};

// Calls draw(first element on the screen, first element of the block, elements) for each row, as
// far as the `count` elements of the screen reach.
template <class Draw>
void for_each_row(int64_t count, const placed_block &block, Draw draw) {
    const int64_t first_row = std::max<int64_t>(0, -int64_t{block.y} - 1);
    for (int64_t row = first_row; row < block.height; row++) {
        const int64_t start = (block.y + row) * main_screen.width + block.x;
        const int64_t skipped = std::max<int64_t>(0, -start);
        const int64_t end = std::min(block.width, count - start);
        if (skipped < end)
            draw(start + skipped, row * block.pitch + skipped, end - skipped);
    }
}

void blend_block(const word32 *pixels, const placed_block &block) {
    const surface<argb8888> target = drawing_surface<argb8888>(main_screen);
    for_each_row(target.count, block, [&](int64_t to, int64_t from, int64_t count) {
        blend_row(target.pixels + to, pixels + from, count);
    });
}

// Whole pixels, of however many bytes the device has them.
void copy_block(const uint8_t *pixels, const placed_block &block) {
    const int64_t bpp = main_screen.bytes_per_pixel;
    const int64_t elements = main_screen.buf && bpp > 0 ? element_count(main_screen) : 0;
    for_each_row(elements, block, [&](int64_t to, int64_t from, int64_t count) {
        memmove(main_screen.buf + to * bpp, pixels + from * bpp, static_cast<size_t>(count * bpp));
    });
}

// The size drawn along one axis: cut where the block reaches the screen's far edge.
int64_t drawn_size(int64_t position, int64_t size, int64_t screen_size) {
    return position + size >= screen_size ? screen_size - position : size;
}

} // namespace
} // namespace ux

int ux_draw_image_buff(const void *block, int x, int y, int width, int height,
                       int effect) noexcept {
    const ux::placed_block placed = {x, y, width, ux::drawn_size(x, width, main_screen.width),
                                     ux::drawn_size(y, height, main_screen.height)};
    if (!block || placed.width <= 0 || placed.height <= 0)
        return -1;
    if (main_screen.color_mode == UX_COLOR_MODE_RGB565) {
        ux::copy_block(static_cast<const uint8_t *>(block), placed);
        return 0;
    }
    if (main_screen.color_mode != UX_COLOR_MODE_ARGB8888)
        return -1;
    if (effect < 0 || effect >= ux::k_first_unknown_effect)
        return 0;
    if (effect != 0)
        return -1;
    ux::blend_block(static_cast<const ux::word32 *>(block), placed);
    return 0;
}
