// SPDX-License-Identifier: MIT
// The one arithmetic of blending. With a = the source's alpha byte, for blue, green and red
//   screen = (screen * (256 - a) + source * a) >> 8
// and the larger of the two alphas stays. The weight is 256 - a, so an opaque pixel does not
// reproduce its source: white over black gives 254. a = 0 gives the screen's pixel back.
#ifndef UX_GRAPHICS_BLEND_H
#define UX_GRAPHICS_BLEND_H

#include "graphics/pixel.h"

namespace ux {

inline uint32_t blend_pixel(uint32_t screen, uint32_t source) {
    const uint32_t a = source >> 24;
    const uint32_t weight = 256 - a;
    // Two channels at a time: each sum is at most 255 * 256 and stays in its 16 bits.
    const uint32_t red_blue =
        ((screen & 0x00FF00FF) * weight + (source & 0x00FF00FF) * a) >> 8 & 0x00FF00FF;
    const uint32_t green = ((screen & 0x0000FF00) * weight + (source & 0x0000FF00) * a) >> 8;
    const uint32_t screen_alpha = screen >> 24;
    return (screen_alpha > a ? screen_alpha : a) << 24 | red_blue | (green & 0x0000FF00);
}

// Blends `count` pixels of `source` over `screen`.
void blend_row(word32 *screen, const word32 *source, int64_t count);

// Blends one colour, by its alpha, over `count` pixels of `screen`.
void blend_color(word32 *screen, uint32_t color, int64_t count);

} // namespace ux

#endif
