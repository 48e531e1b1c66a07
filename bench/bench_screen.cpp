// SPDX-License-Identifier: MIT
// Memory of the benchmarks; see bench_screen.h.

#include "bench/bench_screen.h"

#include <cstdlib>
#include <cstring>

namespace {

uint8_t *allocate() {
    constexpr size_t k_page = 4096;
    auto *memory = static_cast<uint8_t *>(aligned_alloc(k_page, k_screen_bytes));
    memset(memory, 0x40, k_screen_bytes);
    return memory;
}

} // namespace

void use_screen(bool apart) {
    static uint8_t *const buf = allocate();
    static uint8_t *const fb = allocate();
    main_screen.width = main_screen.xres = k_width;
    main_screen.height = main_screen.yres = k_height;
    main_screen.bytes_per_pixel = 4;
    main_screen.color_mode = UX_COLOR_MODE_ARGB8888;
    main_screen.rotation = UX_ROTATION_NONE;
    main_screen.buf = buf;
    main_screen.fb = apart ? fb : buf;
}

uint32_t *other_pixels() {
    static auto *const memory = reinterpret_cast<uint32_t *>(allocate());
    return memory;
}

void open_font_once() {
    static const int opened = ux_open_font();
    benchmark::DoNotOptimize(opened);
}
