// SPDX-License-Identifier: MIT
// Lines of several slopes beside the plain loop.

#include "bench/bench_screen.h"

#include <cstdlib>
#include <utility>

namespace {

constexpr uint32_t k_color = 0xFFFFFFFF;

// The textbook's loop, with its one multiplication and its test for the steep case per pixel.
[[gnu::noinline]] void plain_line(int x0, int y0, int x1, int y1, uint32_t color) {
    const bool steep = abs(x1 - x0) < abs(y1 - y0);
    if (steep) {
        std::swap(x0, y0);
        std::swap(x1, y1);
    }
    if (x1 < x0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const int deltax = x1 - x0;
    const int deltay = abs(y1 - y0);
    int error = deltax >> 1;
    const int ystep = y0 < y1 ? 1 : -1;
    uint32_t *pixels = screen_pixels();
    for (int x = x0, y = y0; x <= x1; x++) {
        if (steep)
            pixels[x * main_screen.width + y] = color;
        else
            pixels[y * main_screen.width + x] = color;
        error -= deltay;
        if (error < 0) {
            y += ystep;
            error += deltax;
        }
    }
}

struct slope {
    const char *own_name;
    const char *plain_name;
    int x0, y0, x1, y1;
};

constexpr slope k_slopes[] = {
    {"line horizontal/ux", "line horizontal/plain", 10, 300, 1209, 300},
    {"line short horizontal/ux", "line short horizontal/plain", 10, 300, 209, 300},
    {"line vertical/ux", "line vertical/plain", 300, 10, 300, 709},
    {"line short vertical/ux", "line short vertical/plain", 300, 10, 300, 49},
    {"line 45 degrees/ux", "line 45 degrees/plain", 10, 10, 709, 709},
    {"line flat/ux", "line flat/plain", 10, 10, 1209, 110},
    {"line 30 degrees/ux", "line 30 degrees/plain", 10, 10, 1209, 709},
    {"line steep/ux", "line steep/plain", 10, 709, 300, 10},
    {"line very steep/ux", "line very steep/plain", 310, 709, 300, 10},
};

} // namespace

void register_line() {
    for (const slope &s : k_slopes) {
        contender(s.own_name, [s] { uxDrawLine(s.x0, s.y0, s.x1, s.y1, k_color); });
        contender(s.plain_name, [s] { plain_line(s.x0, s.y0, s.x1, s.y1, k_color); });
    }
}
