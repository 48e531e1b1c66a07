// SPDX-License-Identifier: MIT
// Converting a screenful of UYVY. "plain" is the literal loop, as the compiler optimises it;
// "calls" the same with the exported converter called for each pixel, which no compiler can see
// through. libyuv goes through ARGB with constants of its own.

#include "bench/bench_screen.h"

#include <libyuv.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr int k_uyvy_pitch = k_width * 2;
constexpr int k_rgb565_pitch = k_width * 2;
constexpr int k_rgb888_pitch = k_width * 3;

// The screen is the target; of RGB888 and RGB565 it holds more than enough.
const uint8_t *uyvy() {
    static const std::vector<uint8_t> bytes = [] {
        std::vector<uint8_t> made(size_t{k_uyvy_pitch} * k_height);
        for (size_t i = 0; i < made.size(); i++)
            made[i] = static_cast<uint8_t>(i * 2654435761u >> 13);
        return made;
    }();
    return bytes.data();
}

struct rgb {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

inline uint8_t clamp(int value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

inline rgb plain_pixel(int y, int u, int v) {
    const int base = 298 * (y - 16) + 128;
    return {clamp((base + 409 * (v - 128)) >> 8),
            clamp((base - 100 * (u - 128) - 208 * (v - 128)) >> 8),
            clamp((base + 516 * (u - 128)) >> 8)};
}

// Calls store(column, y, u, v) for each pixel of a row.
template <class Store>
inline void each_pixel(const uint8_t *from, Store store) {
    for (int i = 0; i < k_width; i += 2, from += 4) {
        store(i, from[1], from[0], from[2]);
        store(i + 1, from[3], from[0], from[2]);
    }
}

[[gnu::noinline]] void plain_rgb565() {
    for (int row = 0; row < k_height; row++) {
        auto *to = reinterpret_cast<uint16_t *>(main_screen.buf + row * k_rgb565_pitch);
        each_pixel(uyvy() + row * k_uyvy_pitch, [to](int i, uint8_t y, uint8_t u, uint8_t v) {
            const rgb color = plain_pixel(y, u, v);
            to[i] = static_cast<uint16_t>((color.red & 0xF8) << 8 | (color.green & 0xFC) << 3 |
                                          color.blue >> 3);
        });
    }
}

[[gnu::noinline]] void calls_rgb565() {
    for (int row = 0; row < k_height; row++) {
        auto *to = reinterpret_cast<uint16_t *>(main_screen.buf + row * k_rgb565_pitch);
        each_pixel(uyvy() + row * k_uyvy_pitch, [to](int i, uint8_t y, uint8_t u, uint8_t v) {
            to[i] = yuv444_rgb565(y, u, v, 0);
        });
    }
}

[[gnu::noinline]] void plain_rgb888() {
    for (int row = 0; row < k_height; row++) {
        uint8_t *to = main_screen.buf + row * k_rgb888_pitch;
        each_pixel(uyvy() + row * k_uyvy_pitch, [to](int i, uint8_t y, uint8_t u, uint8_t v) {
            const rgb color = plain_pixel(y, u, v);
            to[3 * i] = color.red;
            to[3 * i + 1] = color.green;
            to[3 * i + 2] = color.blue;
        });
    }
}

[[gnu::noinline]] void calls_rgb888() {
    for (int row = 0; row < k_height; row++) {
        uint8_t *to = main_screen.buf + row * k_rgb888_pitch;
        each_pixel(uyvy() + row * k_uyvy_pitch, [to](int i, uint8_t y, uint8_t u, uint8_t v) {
            yuv444_rgb888(y, u, v, to + 3 * i, to + 3 * i + 1, to + 3 * i + 2);
        });
    }
}

// Two steps a row, so that the row between stays in the cache.
template <class Convert>
void libyuv_rows(int pitch, Convert from_argb) {
    static uint8_t argb[k_width * 4];
    for (int row = 0; row < k_height; row++) {
        libyuv::UYVYToARGB(uyvy() + row * k_uyvy_pitch, k_uyvy_pitch, argb, k_width * 4, k_width,
                           1);
        from_argb(argb, k_width * 4, main_screen.buf + row * pitch, pitch, k_width, 1);
    }
}

void copy(int pitch) {
    memcpy(main_screen.buf, other_pixels(), static_cast<size_t>(pitch) * k_height);
}

} // namespace

void register_convert() {
    contender("uyvy to rgb565/ux", [] {
        yuv422_rgb565(uyvy(), reinterpret_cast<uint16_t *>(main_screen.buf), k_width, k_height,
                      k_uyvy_pitch, k_rgb565_pitch, 0);
    });
    contender("uyvy to rgb565/plain", [] { plain_rgb565(); });
    contender("uyvy to rgb565/calls", [] { calls_rgb565(); });
    contender("uyvy to rgb565/libyuv", [] { libyuv_rows(k_rgb565_pitch, libyuv::ARGBToRGB565); });
    contender("uyvy to rgb565/memcpy", [] { copy(k_rgb565_pitch); });
    contender("uyvy to rgb888/ux", [] {
        yuv422_rgb888(uyvy(), main_screen.buf, k_width, k_height, k_uyvy_pitch, k_rgb888_pitch);
    });
    contender("uyvy to rgb888/plain", [] { plain_rgb888(); });
    contender("uyvy to rgb888/calls", [] { calls_rgb888(); });
    contender("uyvy to rgb888/libyuv", [] { libyuv_rows(k_rgb888_pitch, libyuv::ARGBToRAW); });
    contender("uyvy to rgb888/memcpy", [] { copy(k_rgb888_pitch); });
}
