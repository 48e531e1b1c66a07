// SPDX-License-Identifier: MIT
// Ink of a line, tile by tile; see ticker_band.h.

#include "font/ticker_band.h"

#include "font/glyph_session.h"
#include "font/text_layout.h"

#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

constexpr int64_t k_tile_bytes = 4 << 20; // at least; a line of 100 characters 40 high has 0.1 MB
constexpr int64_t k_windows_in_tile = 2;  // at least
constexpr uint8_t k_ink = 255;

// Rounded down, for a positive divisor.
int64_t floor_divide(int64_t value, int64_t divisor) {
    return value >= 0 ? value / divisor : -((divisor - 1 - value) / divisor);
}

} // namespace

ticker_band::ticker_band(scrolling direction, const ticker_box &box, int w, int h, bool has_ink)
    : m_direction(direction), m_box_width(std::max(w, 0)), m_box_height(std::max(h, 0)),
      m_first_row(box.first_row()), m_rows(box.rows()), m_columns(box.width()),
      m_has_ink(has_ink && box.takes_ink() && m_rows > 0), m_unknown_pixel(!box.takes_ink()),
      m_width(m_box_width), m_height(m_box_height),
      m_capacity(std::max(k_tile_bytes, k_windows_in_tile * m_rows * m_columns)) {}

ticker_band::~ticker_band() {
    free(m_tile);
}

bool ticker_band::allocate() {
    if (m_has_ink)
        m_tile = static_cast<uint8_t *>(malloc(static_cast<size_t>(m_capacity)));
    return m_tile || !m_has_ink;
}

// Visits the line's glyphs at their places in the band. Returns the line's rows, or its advance
// when it runs left.
template <class Visit>
int64_t ticker_band::walk(Visit visit) {
    constexpr int64_t k_endless = INT64_MAX;
    const int size = static_cast<int>(m_box_height);
    const bool up = m_direction == scrolling::up;
    const int64_t first_row = up ? m_box_height : 0;
    const int64_t first_column = up ? 0 : m_box_width;
    text_pen pen(up ? m_box_width : k_endless, m_box_height, k_endless);
    const glyph_session session(size, size);
    walk_glyphs(
        pen, m_count, [this](int k) { return m_pairs[2 * k + 1]; },
        [this, up](int k) {
            const uint32_t code = m_pairs[2 * k + 1];
            return up && (code == '\n' || code == '\r');
        },
        [&](const fss_glyph *glyph, int64_t row, int64_t column) {
            visit(*glyph, first_row + row, first_column + column);
        });
    return up ? pen.line() + 1 : pen.column();
}

void ticker_band::lay_out(const uint32_t *pairs, int count) {
    m_pairs = pairs;
    m_count = count;
    m_drawn = {};
    const int64_t extent = walk([](const fss_glyph &, int64_t, int64_t) {});
    if (m_direction == scrolling::up)
        m_height = (extent + 2) * m_box_height;
    else
        m_width = std::max<int64_t>(extent, 0) + 2 * m_box_width;
    if (m_unknown_pixel)
        walk([this](const fss_glyph &glyph, int64_t, int64_t) { report(glyph); });
}

int64_t ticker_band::last_position() const {
    return m_direction == scrolling::up ? m_height - m_box_height : m_width - m_box_width;
}

// The part of the band that the visible part of the box shows.
band_area ticker_band::window(int64_t position) const {
    const int64_t end_row = m_first_row + m_rows;
    if (m_direction == scrolling::up)
        return {0, position + m_first_row, m_columns, position + end_row};
    return {position, m_first_row, position + m_columns, end_row};
}

// The window and what comes behind it, as much as the tile can hold.
band_area ticker_band::surroundings(band_area window) const {
    const int64_t columns = window.right - window.left;
    const int64_t rows = window.bottom - window.top;
    if (m_direction == scrolling::up)
        window.bottom = std::min(m_height, window.top + m_capacity / columns);
    else
        window.right = std::min(m_width, window.left + m_capacity / rows);
    return window;
}

ticker_frame ticker_band::frame(int64_t position) {
    if (!m_has_ink)
        return {nullptr, 0};
    const band_area wanted = window(position);
    if (!m_drawn.contains(wanted))
        draw(surroundings(wanted));
    const int64_t pitch = m_drawn.right - m_drawn.left;
    return {m_tile + (wanted.top - m_drawn.top) * pitch + wanted.left - m_drawn.left, pitch};
}

void ticker_band::draw(const band_area &area) {
    m_drawn = area;
    memset(m_tile, 0, static_cast<size_t>((area.right - area.left) * (area.bottom - area.top)));
    walk(
        [this](const fss_glyph &glyph, int64_t row, int64_t column) { paint(glyph, row, column); });
}

// Paints the glyph whose cell begins at (row, column) of the band, as much as lies in the tile. Its
// rows of bits all begin in the same column, and go on in as many further rows.
void ticker_band::paint(const fss_glyph &glyph, int64_t row, int64_t column) {
    const auto [first, end] = glyph_rows_in_band(glyph);
    if (first >= end || glyph.pitch <= 0)
        return;
    const int64_t start = column + glyph.left;
    const int64_t shift = floor_divide(start, m_width);
    const int64_t first_column = start - shift * m_width;
    const int64_t further = (first_column + glyph.pitch * k_byte_bits - 1) / m_width;
    const int64_t top = row + shift;
    const int64_t last = std::min(end, m_drawn.bottom - top);
    for (int64_t r = std::max(first, m_drawn.top - further - top); r < last; r++)
        paint_row(bits_of(glyph) + (r - first) * glyph.pitch, glyph.pitch, top + r, first_column);
}

// Paints a row of bits that begins at (row, column) of the band, whose rows follow one another as
// in memory.
void ticker_band::paint_row(const uint8_t *bits, int pitch, int64_t row, int64_t column) {
    const int64_t tile_width = m_drawn.right - m_drawn.left;
    for (int i = 0; i < pitch; i++)
        for_each_bit(bits[i], [&](int bit) {
            int64_t y = row;
            int64_t x = column + i * k_byte_bits + bit;
            if (x >= m_width) {
                y += x / m_width;
                x %= m_width;
            }
            if (y >= m_drawn.top && y < m_drawn.bottom && x >= m_drawn.left && x < m_drawn.right)
                m_tile[(y - m_drawn.top) * tile_width + x - m_drawn.left] = k_ink;
        });
}

// Of a glyph in any cell. One that is higher than its cell reaches into the cells below, as in a
// text drawn once.
glyph_rows ticker_band::glyph_rows_in_band(const fss_glyph &glyph) const {
    return rows_of_glyph(glyph, baseline_of(m_box_height), m_height);
}

void ticker_band::report(const fss_glyph &glyph) const {
    const auto [first, end] = glyph_rows_in_band(glyph);
    if (first >= end || glyph.pitch <= 0)
        return;
    const uint8_t *bits = bits_of(glyph);
    for (int64_t i = 0; i < (end - first) * glyph.pitch; i++)
        for_each_bit(bits[i], [](int) { report_unknown_pixel(); });
}

} // namespace ux
