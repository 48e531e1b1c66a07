// SPDX-License-Identifier: MIT
// A string rendered by the engine into a heap block: measured whole, then glyph by glyph rendered
// into scratch memory that the engine and the CPU share, and expanded from there.
#ifndef UX_FONT_STRING_BUFFER_H
#define UX_FONT_STRING_BUFFER_H

#include "font/glyph_request.h"

namespace ux {

// Width and height of one character's cell at a pixel size. Says why it fails.
bool measure_character(uint32_t character, int size, glyph_cell &cell);

// Sum of the cell widths, largest cell height; 0 x 0 for an empty text. Says why it fails.
bool measure_text(const char *text, int size, glyph_cell &extent);

struct string_style {
    int size; // pixels
    uint32_t fg, bg;
    uint32_t pixel_bytes; // 1, 2 or 4
};

// A new block of extent.width x extent.height pixels, the caller's to free; null on failure, which
// it has told.
void *render_text(const char *text, const string_style &style, glyph_cell &extent);

} // namespace ux

#endif
