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

int ux_get_char_size(uint32_t ch, int size, uint32_t *w, uint32_t *h) noexcept {
    return ux_get_char_size_em862x(ch, size, w, h);
}

int ux_get_string_size(const char *str, int size, uint32_t *w, uint32_t *h) noexcept {
    return ux_get_string_size_em862x(str, size, w, h);
}

void *ux_get_string_buffer(const char *str, int size, uint32_t fg, uint32_t bg, uint32_t bpp,
                           uint32_t *w, uint32_t *h) noexcept {
    return ux_get_string_buffer_em862x(str, size, fg, bg, bpp, w, h);
}
