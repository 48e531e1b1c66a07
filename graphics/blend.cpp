// SPDX-License-Identifier: MIT
// Blending of rows: blend_pixel() on eight pixels at a time.

#include "graphics/blend.h"

#include "graphics/simd.h"

#include <cstring>

namespace ux {
namespace {

constexpr int64_t k_lanes = 8;
constexpr int64_t k_block = 32; // pixels that are left out at once when all are transparent

using pixels [[gnu::vector_size(32)]] = uint32_t;
using channels [[gnu::vector_size(32)]] = uint16_t;
using bytes [[gnu::vector_size(32)]] = uint8_t;
using halves [[gnu::vector_size(16)]] = uint64_t; // of such a vector

// The high byte of each 16-bit lane: green and alpha.
inline __attribute__((always_inline)) void take_high(bytes &result, const bytes &high,
                                                     const bytes &low) {
    const bytes is_high = reinterpret_cast<bytes>(channels{} + 0xFF00);
    result = is_high > 127 ? high : low;
}

// A 16-bit lane holds blue and green, or red and alpha. (screen * (256 - a) + source * a) >> 8 is
// screen + ((source - screen) * a >> 8), of which the low 8 bits count: multiplication modulo 2^16
// is enough. With the differences H of the high bytes and L of the low ones,
// - H * a has the high channel's change in its high byte;
// - the difference of the whole lanes is 256 * H + L, so the high byte of its product with `a` is
//   the low channel's change plus the low byte of H * a, which is taken off again.
inline __attribute__((always_inline)) void blend_lanes(word32 *screen, const word32 *source) {
    channels under;
    channels over;
    memcpy(&under, screen, sizeof under);
    memcpy(&over, source, sizeof over);
    const channels over_high = over >> 8;
    const channels a = __builtin_shufflevector(over_high, over_high, 1, 1, 3, 3, 5, 5, 7, 7, 9, 9,
                                               11, 11, 13, 13, 15, 15);
    const bytes high_product = reinterpret_cast<bytes>((over_high - (under >> 8)) * a);
    const bytes product = reinterpret_cast<bytes>((over - under) * a >> 8);
    bytes change;
    take_high(change, high_product, product - high_product);
    const bytes under_bytes = reinterpret_cast<bytes>(under);
    const bytes over_bytes = reinterpret_cast<bytes>(over);
    const bytes larger = under_bytes > over_bytes ? under_bytes : over_bytes;
    const bytes is_alpha = reinterpret_cast<bytes>(pixels{} + 0xFF000000);
    const bytes result = is_alpha > 127 ? larger : under_bytes + change;
    memcpy(screen, &result, sizeof result);
}

// The first pixel answers for most blocks.
inline __attribute__((always_inline)) bool is_transparent(const word32 *block) {
    constexpr uint64_t k_both_alphas = 0xFF000000FF000000;
    if (block[0] >> 24 != 0)
        return false;
    pixels all = {};
    for (int64_t k = 0; k < k_block; k += k_lanes) {
        pixels part;
        memcpy(&part, block + k, sizeof part);
        all |= part;
    }
    halves left;
    halves right;
    memcpy(&left, &all, sizeof left);
    memcpy(&right, reinterpret_cast<const char *>(&all) + sizeof left, sizeof right);
    left |= right;
    return ((left[0] | left[1]) & k_both_alphas) == 0;
}

} // namespace

// Transparent blocks are neither written nor read on the screen.
UX_MULTIVERSION void blend_row(word32 *screen, const word32 *source, int64_t count) {
    int64_t i = 0;
    for (; i + k_block <= count; i += k_block) {
        if (is_transparent(source + i))
            continue;
        for (int64_t k = i; k < i + k_block; k += k_lanes)
            blend_lanes(screen + k, source + k);
    }
    for (; i + k_lanes <= count; i += k_lanes)
        blend_lanes(screen + i, source + i);
    for (; i < count; i++)
        screen[i] = blend_pixel(screen[i], source[i]);
}

// Of one colour everything but the screen's part is known before.
UX_MULTIVERSION void blend_color(word32 *screen, uint32_t color, int64_t count) {
    const uint32_t alpha = color >> 24;
    const auto a = static_cast<uint16_t>(alpha);
    if (alpha == 0)
        return;
    const channels over = reinterpret_cast<channels>(pixels{} + color);
    const channels weight = channels{} + static_cast<uint16_t>(256 - alpha);
    const channels low_part = (over & 0xFF) * a;
    // The screen's alpha passes unchanged: all of it and nothing of the colour's.
    const channels is_alpha = reinterpret_cast<channels>(pixels{} + 0xFFFF0000);
    const channels high_weight = (is_alpha & 256) | (~is_alpha & weight);
    const channels high_part = ~is_alpha & (over >> 8) * a;
    const bytes color_alpha = reinterpret_cast<bytes>(pixels{} + (color & 0xFF000000));
    int64_t i = 0;
    for (; i + k_lanes <= count; i += k_lanes) {
        channels under;
        memcpy(&under, screen + i, sizeof under);
        const channels low = ((under & 0xFF) * weight + low_part) >> 8;
        const channels high = (under >> 8) * high_weight + high_part;
        bytes mixed;
        take_high(mixed, reinterpret_cast<bytes>(high), reinterpret_cast<bytes>(low));
        const bytes result = mixed > color_alpha ? mixed : color_alpha;
        memcpy(screen + i, &result, sizeof result);
    }
    for (; i < count; i++)
        screen[i] = blend_pixel(screen[i], color);
}

} // namespace ux
