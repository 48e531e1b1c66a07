// SPDX-License-Identifier: MIT
// Pixel formats as tiny types. A loop is written once as a template over one of them; the screen's
// mode is looked at once per call, in with_pixel().
#ifndef UX_GRAPHICS_PIXEL_H
#define UX_GRAPHICS_PIXEL_H

#include "ux.h"

namespace ux {

// Words of the screen's memory: it is reached through byte pointers, and a device may map it at any
// offset.
using word32 [[gnu::may_alias, gnu::aligned(1)]] = uint32_t;
using word16 [[gnu::may_alias, gnu::aligned(1)]] = uint16_t;

struct argb8888 {
    using word = word32;
    static constexpr word from_color(uint32_t color) { return color; }
};

// Colours come ready made: the low 16 bits are the pixel.
struct rgb565 {
    using word = word16;
    static constexpr word from_color(uint32_t color) { return static_cast<word>(color); }
};

// Calls draw(format) with the format of a screen's color_mode; an unknown mode draws nothing.
template <class Draw>
inline void with_pixel(int color_mode, Draw draw) {
    if (color_mode == UX_COLOR_MODE_ARGB8888)
        draw(argb8888{});
    else if (color_mode == UX_COLOR_MODE_RGB565)
        draw(rgb565{});
}

} // namespace ux

#endif
