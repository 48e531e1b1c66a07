// SPDX-License-Identifier: MIT
// Text over a picture. The box is defined as a zeroed canvas with the picture blended over it and
// the text on top, which then replaces the screen's box. No canvas is made: each row of the screen
// is zeroed and blended in place, and the ink follows.

#include "font/glyph_session.h"
#include "font/text_layout.h"
#include "font/unit_text.h"
#include "graphics/blend.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

// Rows of the box that may meet the screen's memory: row k begins at element (y + k) * width + x.
struct row_range {
    int64_t first, end;
};

row_range rows_near(int64_t count, const text_box &box) {
    const int64_t reach = (int64_t{box.x} + box.width) / main_screen.width + 1;
    const int64_t below = (count - box.x) / main_screen.width + 1;
    return {std::max<int64_t>(0, -reach - box.y), std::min<int64_t>(box.height, below - box.y)};
}

// Replaces the box by the picture over 0; `picture` is width * height pixels of 32 bits, or null
// for 0 alone. Rows that run into the next ones are replaced from the top row down.
void lay_picture(const text_box &box, const word32 *picture) {
    const int64_t bpp = main_screen.bytes_per_pixel;
    const int64_t count = main_screen.fb && bpp > 0 ? element_count(main_screen) : 0;
    if (count == 0)
        return;
    const row_range rows = rows_near(count, box);
    for (int64_t row = rows.first; row < rows.end; row++) {
        const int64_t start = (box.y + row) * main_screen.width + box.x;
        const int64_t first = std::clamp<int64_t>(start, 0, count);
        const int64_t end = std::clamp<int64_t>(start + box.width, first, count);
        uint8_t *pixels = main_screen.fb + first * bpp;
        memset(pixels, 0, static_cast<size_t>((end - first) * bpp));
        if (picture && first < end)
            blend_row(reinterpret_cast<word32 *>(pixels),
                      picture + row * box.width + (first - start), end - first);
    }
}

// A line feed inside the line is not drawn, and its glyph is not given back: players count on both.
// One behind a glyph wider than the box is treated as any other glyph.
void draw_units(const text_box &box, const unit_text &text, int count) {
    text_canvas canvas(box);
    text_pen pen(box);
    for (int k = 0; k < count; k++) {
        fss_glyph *glyph = FSS_get_bitmap(text[k]);
        if (!glyph)
            continue;
        const bool breaks = text[k] == u'\n';
        const bool is_silent = breaks && !pen.is_beyond_edge();
        const int advance = breaks ? 0 : glyph->advance;
        const bool fits = pen.place(advance, breaks);
        if (fits && !is_silent) {
            canvas.paint(glyph, pen.line_row(), pen.column());
            pen.move_on(advance);
        }
        if (!is_silent)
            FSS_free_char(glyph);
        if (!fits)
            return;
    }
}

} // namespace
} // namespace ux

// Pictures have 32-bit pixels: on another screen the box becomes 0, and the text is reported.
int uxFontBoxDrawing(const void *text, uint32_t fg, const char *image_path, int x, int y, int w,
                     int h, int size_x, int size_y) noexcept {
    const ux::unit_text units(text);
    const int count = text ? units.length() : 0;
    if (count == 0 || count == UX_TEXT_UNITS)
        return 0;
    const ux::glyph_session session(size_x, size_y);
    const ux::text_box box = {x, y, w, h, size_y, fg, true};
    void *picture = image_path ? ux_load_image(image_path, w, h) : nullptr;
    const bool can_blend = main_screen.bytes_per_pixel == sizeof(ux::word32);
    ux::lay_picture(box, can_blend ? static_cast<ux::word32 *>(picture) : nullptr);
    free(picture);
    ux::draw_units(box, units, count);
    return 0;
}
