// SPDX-License-Identifier: MIT
// Laying out and painting one text in a box of the screen, glyph by glyph.
//
// Text is defined over a canvas of w x h pixels that is filled with `bg` and then laid over the
// screen, pixels equal to `bg` giving the screen back. No canvas is needed for that: only ink is
// stored, straight to the screen, and ink index i of the canvas is the screen's pixel
// (x + i % w, y + i / w).
#ifndef UX_FONT_TEXT_LAYOUT_H
#define UX_FONT_TEXT_LAYOUT_H

#include "graphics/surface.h"
#include "platform/em862x.h"

namespace ux {

struct text_box {
    int x, y, width, height; // the canvas on the screen
    int line_height;         // also the vertical glyph size
    uint32_t ink;            // colour of set bits
    bool visible;            // false: glyphs are fetched, nothing is stored
};

// The canvas as a place for ink.
class text_canvas {
  public:
    explicit text_canvas(const text_box &box);

    // Paints a glyph whose cell begins at canvas row `line_row`, column `pen`.
    void paint(const fss_glyph *glyph, int64_t line_row, int64_t pen);

  private:
    void paint_wrapped(const uint8_t *bits, int bytes, int64_t row, int64_t column);

    surface<argb8888> m_target;
    text_box m_box;
    int64_t m_baseline;   // rows from a line's top to the baseline
    bool m_has_pixels;    // the canvas is not empty and ink can be stored
    bool m_unknown_pixel; // the screen's pixels are not 32-bit: ink is reported instead
    bool m_lies_inside;   // all of the canvas is in the screen's memory
    word32 *m_origin;     // its first pixel, if so
};

// Where the next glyph goes.
class text_pen {
  public:
    // `lines` is how many whole lines there are.
    text_pen(int64_t width, int64_t line_height, int64_t lines)
        : m_width(width), m_line_height(line_height), m_lines(lines) {}
    explicit text_pen(const text_box &box)
        : text_pen(box.width, box.line_height,
                   box.line_height == 0 ? 0 : int64_t{box.height} / box.line_height) {}

    // Moves to where a glyph of `advance` pixels goes, to a new line if need be; false when there
    // is no whole line left.
    bool place(int advance, bool is_break) {
        m_pen += advance;
        if (m_pen > m_width || is_break) {
            m_line++;
            m_pen = advance;
            m_column = 0;
        }
        return m_line < m_lines;
    }

    // Whether the glyphs of the present line have left the box: one wider than the box does so.
    bool is_beyond_edge() const { return m_pen > m_width; }

    void move_on(int advance) { m_column += advance; }
    int64_t column() const { return m_column; }
    int64_t line() const { return m_line; }
    int64_t line_row() const { return m_line * m_line_height; }

  private:
    int64_t m_width;
    int64_t m_line_height;
    int64_t m_lines;      // whole lines that there are
    int64_t m_line = 0;   // present line
    int64_t m_pen = 0;    // advances since the line's start, the present glyph's included
    int64_t m_column = 0; // where the present glyph's cell begins
};

// Walks over `count` glyphs with the pen: code(k) is the k-th character code, is_break(k) whether
// it ends the line; visit(glyph, line_row, column) sees each glyph where its cell begins, until
// there is no whole line left. A code without glyph is skipped; a break's glyph lies at the start
// of the new line and takes no room. The caller holds a glyph_session.
template <class Code, class IsBreak, class Visit>
void walk_glyphs(text_pen &pen, int count, Code code, IsBreak is_break, Visit visit) {
    for (int k = 0; k < count; k++) {
        fss_glyph *glyph = FSS_get_bitmap(code(k));
        if (!glyph)
            continue;
        const bool breaks = is_break(k);
        const int advance = breaks ? 0 : glyph->advance;
        const bool fits = pen.place(advance, breaks);
        if (fits) {
            visit(glyph, pen.line_row(), pen.column());
            pen.move_on(advance);
        }
        FSS_free_char(glyph);
        if (!fits)
            return;
    }
}

// Draws `count` glyphs in the box; see walk_glyphs().
template <class Code, class IsBreak>
void draw_glyphs(const text_box &box, int count, Code code, IsBreak is_break) {
    text_canvas canvas(box);
    text_pen pen(box);
    walk_glyphs(pen, count, code, is_break,
                [&](const fss_glyph *glyph, int64_t line_row, int64_t column) {
                    canvas.paint(glyph, line_row, column);
                });
}

} // namespace ux

#endif
