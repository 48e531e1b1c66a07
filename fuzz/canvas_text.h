// SPDX-License-Identifier: MIT
// Text drawing as it is defined, without any shortcut: a canvas filled with the background colour,
// glyphs drawn into it bit by bit, then laid over the screen. The library is compared with it.
#ifndef UX_FUZZ_CANVAS_TEXT_H
#define UX_FUZZ_CANVAS_TEXT_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace canvas_text {

struct glyph {
    int left, top, advance, rows, pitch;
    std::vector<uint8_t> bits; // rows * pitch bytes
};

// The part of the world that drawing touches.
struct world {
    std::map<uint32_t, glyph> glyphs; // by code; other codes have none
    int width, height;                // of the screen
    int bytes_per_pixel;
    std::vector<uint32_t> pixels;   // the screen, when its pixels have 4 bytes
    std::vector<std::string> calls; // of the rasteriser
    long unknown_pixels = 0;        // reports of pixels that can not be drawn
};

struct job {
    uint32_t fg, bg;
    int x, y, w, h, size_x, size_y;
};

// A text of 16-bit units of which `units` are readable.
void draw_units(world &on, const job &job, const uint8_t *text, size_t units);

// A text of UTF-8.
void draw_utf8(world &on, const job &job, const std::string &text);

// Fills `pairs`, which keeps what is not written, and returns the words counted.
int decode(const std::string &text, std::vector<uint32_t> &pairs);

} // namespace canvas_text

#endif
