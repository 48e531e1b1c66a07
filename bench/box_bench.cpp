// SPDX-License-Identifier: MIT
// Filled boxes.

#include "bench/bench_screen.h"
#include "bench/peers.h"

#include <cstring>

namespace {

constexpr uint32_t k_color = 0xFF204060;

void plain_box(int x0, int y0, int x1, int y1, uint32_t color) {
    for (int y = y0; y <= y1; y++)
        for (int x = x0; x <= x1; x++)
            reinterpret_cast<volatile uint32_t *>(main_screen.buf)[y * main_screen.width + x] =
                color;
}

void pixman_box(int x, int y, int w, int h) {
    pixman_fill(screen_pixels(), k_width, 32, x, y, w, h, k_color);
}

} // namespace

void register_box() {
    contender("box 1280x720/ux", [] { uxDrawBox(0, 0, k_width - 1, k_height - 1, k_color); });
    contender("box 1280x720/memset", [] { memset(main_screen.buf, 0x55, k_screen_bytes); });
    contender("box 1280x720/pixman", [] { pixman_box(0, 0, k_width, k_height); });
    contender("box 1280x720/plain", [] { plain_box(0, 0, k_width - 1, k_height - 1, k_color); });
    contender("box 200x40/ux", [] { uxDrawBox(101, 100, 300, 139, k_color); });
    contender("box 200x40/pixman", [] { pixman_box(101, 100, 200, 40); });
    contender("box 200x40/plain", [] { plain_box(101, 100, 300, 139, k_color); });
}
