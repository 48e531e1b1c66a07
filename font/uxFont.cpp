// SPDX-License-Identifier: MIT
// The portable face of the glyph renderer: entry points that forward to the chip's.

#include "ux.h"

#include <cstdio>

// The renderer chooses the font file itself; the path is handed over all the same.
int ux_open_font() noexcept {
    puts("open font *****************");
    const int result = ux_open_font_em862x("/home/Vera.ttf");
    if (result == -1)
        puts("open font fail........");
    return result;
}

int ux_close_font() noexcept {
    return ux_close_font_em862x();
}
