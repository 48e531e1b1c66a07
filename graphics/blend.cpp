// SPDX-License-Identifier: MIT
// Blending of rows: blend_pixel() on eight pixels at a time.

#include "graphics/blend.h"

#include "graphics/simd.h"

#include <cstring>

namespace ux {
namespace {

constexpr int64_t k_lanes = 8;

using pixels [[gnu::vector_size(32)]] = uint32_t;
using channels [[gnu::vector_size(32)]] = uint16_t;
using bytes [[gnu::vector_size(32)]] = uint8_t;

// With 16-bit lanes, (screen * 256 + (source - screen) * a) mod 2^16 is screen * (256 - a) + source
// * a, which is at most 255 * 256: one multiplication a channel. Blue and red stand in the low
// bytes of the lanes, green and alpha in the high ones.
inline __attribute__((always_inline)) void blend_lanes(word32 *screen, const pixels &over) {
    pixels under;
    memcpy(&under, screen, sizeof under);
    const channels under_lanes = reinterpret_cast<channels>(under);
    const channels over_high = reinterpret_cast<channels>(over) >> 8;
    const channels under_high = under_lanes >> 8;
    const channels over_low = reinterpret_cast<channels>(over & 0x00FF00FF);
    const channels under_low = reinterpret_cast<channels>(under & 0x00FF00FF);
    const pixels alpha = over >> 24;
    const channels a = reinterpret_cast<channels>(alpha | alpha << 16);
    const channels red_blue = (under_lanes << 8) + (over_low - under_low) * a;
    const channels green = (under_lanes & 0xFF00) + (over_high - under_high) * a;
    const bytes under_bytes = reinterpret_cast<bytes>(under);
    const bytes over_bytes = reinterpret_cast<bytes>(over);
    const bytes larger = under_bytes > over_bytes ? under_bytes : over_bytes;
    const pixels result = reinterpret_cast<pixels>(red_blue >> 8) |
                          (reinterpret_cast<pixels>(green) & 0x0000FF00) |
                          (reinterpret_cast<pixels>(larger) & 0xFF000000);
    memcpy(screen, &result, sizeof result);
}

} // namespace

UX_MULTIVERSION void blend_row(word32 *screen, const word32 *source, int64_t count) {
    int64_t i = 0;
    for (; i + k_lanes <= count; i += k_lanes) {
        pixels over;
        memcpy(&over, source + i, sizeof over);
        blend_lanes(screen + i, over);
    }
    for (; i < count; i++)
        screen[i] = blend_pixel(screen[i], source[i]);
}

UX_MULTIVERSION void blend_color(word32 *screen, uint32_t color, int64_t count) {
    const pixels over = {color, color, color, color, color, color, color, color};
    int64_t i = 0;
    for (; i + k_lanes <= count; i += k_lanes)
        blend_lanes(screen + i, over);
    for (; i < count; i++)
        screen[i] = blend_pixel(screen[i], color);
}

} // namespace ux
