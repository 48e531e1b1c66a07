// SPDX-License-Identifier: MIT
// Blending a full-screen block, and a page's background colour.

#include "bench/bench_screen.h"
#include "bench/peers.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

enum class alpha { mixed, opaque, transparent };

// Pixels premultiplied or not cost the same.
uint32_t *block(alpha kind) {
    static uint32_t *blocks[3] = {};
    uint32_t *&pixels = blocks[static_cast<int>(kind)];
    if (!pixels) {
        pixels = new uint32_t[k_pixels];
        for (size_t i = 0; i < k_pixels; i++) {
            const uint32_t a = kind == alpha::mixed    ? static_cast<uint32_t>(i * 7 % 256)
                               : kind == alpha::opaque ? 255u
                                                       : 0u;
            pixels[i] = a << 24 | static_cast<uint32_t>(i * 2654435761u) >> 8;
        }
    }
    return pixels;
}

void blend(alpha kind) {
    ux_draw_image_buff(block(kind), 0, 0, k_width, k_height, 0);
}

void pixman_over(pixman_image_t *from) {
    static pixman_image_t *const to = pixman_screen(other_pixels());
    pixman_image_composite32(PIXMAN_OP_OVER, from, nullptr, to, 0, 0, 0, 0, 0, 0, k_width,
                             k_height);
}

[[gnu::noinline]] void plain_blend(alpha kind) {
    const auto *from = reinterpret_cast<const uint8_t *>(block(kind));
    uint8_t *to = main_screen.buf;
    for (size_t i = 0; i < k_screen_bytes; i += 4) {
        const int a = from[i + 3];
        if (a == 0)
            continue;
        for (size_t c = i; c < i + 3; c++)
            to[c] = static_cast<uint8_t>((to[c] * (256 - a) + from[c] * a) >> 8);
        if (to[i + 3] < a)
            to[i + 3] = static_cast<uint8_t>(a);
    }
}

void copy() {
    memcpy(main_screen.buf, other_pixels(), k_screen_bytes);
}

} // namespace

void register_blend() {
    contender("blend mixed/ux", [] { blend(alpha::mixed); });
    contender("blend mixed/memcpy", [] { copy(); });
    contender("blend mixed/pixman", [] {
        static pixman_image_t *const from = pixman_screen(block(alpha::mixed));
        pixman_over(from);
    });
    contender("blend mixed/plain", [] { plain_blend(alpha::mixed); });
    contender("blend opaque/ux", [] { blend(alpha::opaque); });
    contender("blend opaque/memcpy", [] { copy(); });
    contender("blend transparent/ux", [] { blend(alpha::transparent); });
    contender("blend transparent/memcpy", [] { copy(); });
    for (const uint32_t color : {0x80336699u, 0xFF336699u, 0x00336699u}) {
        char task[32];
        snprintf(task, sizeof task, "page color %08X", color);
        contender((task + std::string("/ux")).c_str(),
                  [color] { ux_update_BGcolor(0, 0, k_width, k_height, color); });
        contender((task + std::string("/memset")).c_str(),
                  [] { memset(main_screen.buf, 0x33, k_screen_bytes); });
    }
    contender("page color 200x100/ux", [] { ux_update_BGcolor(40, 40, 200, 100, 0x80336699u); });
    contender("page color 200x100/memset", [] {
        for (int row = 40; row < 140; row++)
            memset(screen_pixels() + row * k_width + 40, 0x33, 200 * 4);
    });
}
