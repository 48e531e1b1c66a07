// SPDX-License-Identifier: MIT
// The one arithmetic of turning YUV into RGB, video range, 8 bits of fraction. With c = Y - 16,
// d = U - 128, e = V - 128 and base = 298 * c + 128
//   red   = (base + 409 * e) >> 8
//   green = (base - 100 * d - 208 * e) >> 8
//   blue  = (base + 516 * d) >> 8
// each clamped to 0..255. The shifts are arithmetic: they round down, below 0 too.
#ifndef UX_GRAPHICS_YUV_H
#define UX_GRAPHICS_YUV_H

#include <cstdint>

namespace ux {

struct rgb {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

inline uint8_t clamp_to_byte(int32_t value) {
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

inline rgb rgb_from_yuv(uint8_t y, uint8_t u, uint8_t v) {
    const int32_t c = y - 16;
    const int32_t d = u - 128;
    const int32_t e = v - 128;
    const int32_t base = 298 * c + 128;
    return {clamp_to_byte((base + 409 * e) >> 8), clamp_to_byte((base - 100 * d - 208 * e) >> 8),
            clamp_to_byte((base + 516 * d) >> 8)};
}

// The low bits are cut.
inline uint16_t rgb565_from_rgb(const rgb &color) {
    return static_cast<uint16_t>((color.red & 0xF8) << 8 | (color.green & 0xFC) << 3 |
                                 color.blue >> 3);
}

// Turn the pairs of a UYVY row into pixels as long as whole groups are left; the memories do not
// overlap. Return how many of the `count` pairs are done.
int64_t groups_to_rgb565(uint8_t *to, const uint8_t *uyvy, int64_t count);
int64_t groups_to_rgb888(uint8_t *to, const uint8_t *uyvy, int64_t count);
int64_t groups_to_rgb888_avx2(uint8_t *to, const uint8_t *uyvy, int64_t count); // if has_avx2()

} // namespace ux

#endif
