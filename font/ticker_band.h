// SPDX-License-Identifier: MIT
// A line of the ticker as a band of ink that a window travels along.
//
// Scrolling up, the band is w wide and (rows + 2) * h high: the line wrapped at w, its first row
// one box height from the top. Scrolling left, it is the line's advance + 2 * w wide and h high:
// the line begins one box width from the left. Ink that leaves a band row at its end goes on in the
// next one, and a glyph that is higher than its wrapped row reaches into those below, as on any
// canvas of the software text.
//
// A band may be far larger than the memory of a player, so only a tile of it is drawn, the window's
// surroundings. It holds any ordinary line whole; where the window leaves it, the next is drawn.
#ifndef UX_FONT_TICKER_BAND_H
#define UX_FONT_TICKER_BAND_H

#include "font/glyph_bits.h"
#include "font/ticker_box.h"

#include "platform/em862x.h"

namespace ux {

enum class scrolling { up, left };

// Columns and rows of a band, the ends exclusive.
struct band_area {
    int64_t left = 0, top = 0, right = 0, bottom = 0;

    bool contains(const band_area &other) const {
        return other.left >= left && other.right <= right && other.top >= top &&
               other.bottom <= bottom;
    }
};

class ticker_band {
  public:
    // For the visible part of `box`, which is `w` x `h`; negative sizes count as 0. Without
    // `has_ink` all frames are empty.
    ticker_band(scrolling direction, const ticker_box &box, int w, int h, bool has_ink);
    ~ticker_band();
    ticker_band(const ticker_band &) = delete;
    ticker_band &operator=(const ticker_band &) = delete;

    // Makes room for the tile; false when there is no memory.
    bool allocate();

    // Lays a line out: `count` pairs of words, see UTF8to16(). They must stay as they are while
    // frames are asked for.
    void lay_out(const uint32_t *pairs, int count);

    // The last position of a window that lies in the band, scrolling left; one box height before
    // the band's end, scrolling up.
    int64_t last_position() const;

    // The window at `position`, 0 to last_position(). Valid until the next call.
    ticker_frame frame(int64_t position);

  private:
    template <class Visit>
    int64_t walk(Visit visit);
    band_area window(int64_t position) const;
    band_area surroundings(band_area window) const;
    void draw(const band_area &area);
    void paint(const fss_glyph &glyph, int64_t row, int64_t column);
    void paint_row(const uint8_t *bits, int pitch, int64_t row, int64_t column);
    void report(const fss_glyph &glyph) const;
    glyph_rows glyph_rows_in_band(const fss_glyph &glyph) const;

    scrolling m_direction;
    int64_t m_box_width, m_box_height;
    int64_t m_first_row, m_rows, m_columns; // of the box that are visible
    bool m_has_ink;
    bool m_unknown_pixel; // ink is reported instead of shown
    const uint32_t *m_pairs = nullptr;
    int m_count = 0;    // of the pairs
    int64_t m_width;    // of the band
    int64_t m_height;   // of the band
    int64_t m_capacity; // bytes of the tile
    uint8_t *m_tile = nullptr;
    band_area m_drawn; // what the tile holds, row by row
};

} // namespace ux

#endif
