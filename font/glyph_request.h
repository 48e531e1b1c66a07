// SPDX-License-Identifier: MIT
// What the engine is asked about one glyph: the records as they are sent, and the three messages:
// measure a cell, place the next outline, render an outline. A busy engine is asked again at once.
#ifndef UX_FONT_GLYPH_REQUEST_H
#define UX_FONT_GLYPH_REQUEST_H

#include <cstdint>

namespace ux {

struct glyph_request {
    uint32_t word_a; // where the outline is; 0 in a size query, as is all up to `scale`
    uint32_t word_b;
    uint32_t scratch; // DRAM address that receives the bits
    uint32_t scale;   // pixels per font unit, 11 fractional bits
    uint16_t extent;  // glyph metrics value 4 + value 0
    int16_t bearing;  // glyph metrics value 0
    uint16_t font[2]; // font header values 0 and 1
};
static_assert(sizeof(glyph_request) == 24);

struct glyph_cell {
    uint32_t width, height; // pixels
};
static_assert(sizeof(glyph_cell) == 8);

// The code that is drawn for a character: others than the mapped ones are question marks.
uint32_t drawable_code(uint32_t character);

// Fills the request for a code at a pixel size and asks for its cell. On failure says why, with
// `character` as the name of the glyph.
bool measure_glyph(uint32_t code, int size, long character, glyph_request &request,
                   glyph_cell &cell);

// Sends the matrix of an outline, if it has one.
bool place_outline(uint32_t code, uint32_t part);

// Has an outline rendered to the scratch area; completes the request of measure_glyph().
bool render_outline(uint32_t code, uint32_t part, uint32_t scratch, glyph_request &request);

} // namespace ux

#endif
