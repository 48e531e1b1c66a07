// SPDX-License-Identifier: MIT
// The canvas that is none, and the pen; see text_layout.h.

#include "font/text_layout.h"

#include "font/glyph_bits.h"

namespace ux {
namespace {

constexpr int k_half = k_byte_bits / 2;

// The columns of each byte's ink, left to right, the last one repeated: a byte of the word each,
// the first one lowest.
struct ink_table {
    uint64_t columns[256];
    uint8_t count[256];
};

constexpr ink_table make_ink_table() {
    ink_table table = {};
    for (int byte = 1; byte < 256; byte++) {
        uint64_t last = 0;
        int count = 0;
        for (uint64_t column = 0; column < k_byte_bits; column++)
            if (byte & 0x80 >> column) {
                last = column;
                table.columns[byte] |= column << k_byte_bits * count++;
            }
        table.count[byte] = static_cast<uint8_t>(count);
        for (; count < k_byte_bits; count++)
            table.columns[byte] |= last << k_byte_bits * count;
    }
    return table;
}

constexpr ink_table k_ink = make_ink_table();

// Stores ink at four columns.
inline void store_four(word32 *pixels, uint64_t columns, uint32_t ink) {
    constexpr uint64_t k_column = 7;
    pixels[columns & k_column] = ink;
    pixels[columns >> 8 & k_column] = ink;
    pixels[columns >> 16 & k_column] = ink;
    pixels[columns >> 24 & k_column] = ink;
}

// Rows of a glyph's bitmap.
struct bitmap {
    const uint8_t *bits;
    int pitch; // bytes per row
    int rows;
};

// Ink that lies inside: no bounds, no wrap, and no branch per pixel. A byte's ink columns come from
// a table, so that storing four or eight times is right for any byte. `stride` is in pixels.
void paint_inside(word32 *pixels, int64_t stride, const bitmap &glyph, uint32_t ink) {
    const uint8_t *bits = glyph.bits;
    const int pitch = glyph.pitch;
    for (const uint8_t *end = bits + pitch * glyph.rows; bits != end; pixels += stride) {
        word32 *group = pixels;
        for (const uint8_t *row_end = bits + pitch; bits != row_end; group += k_byte_bits) {
            const uint8_t byte = *bits++;
            if (byte == 0)
                continue;
            const uint64_t columns = k_ink.columns[byte];
            store_four(group, columns, ink);
            if (k_ink.count[byte] > k_half)
                store_four(group, columns >> 32, ink);
        }
    }
}

} // namespace

text_canvas::text_canvas(const text_box &box)
    : m_target(text_surface<argb8888>(main_screen)), m_box(box),
      m_baseline(baseline_of(box.line_height)),
      m_has_pixels(box.width > 0 && box.height > 0 && box.visible && m_target.count > 0),
      m_unknown_pixel(main_screen.bytes_per_pixel != sizeof(argb8888::word)) {
    const int64_t first = m_target.index(box.x, box.y);
    const int64_t last =
        m_target.index(int64_t{box.x} + box.width - 1, int64_t{box.y} + box.height - 1);
    m_lies_inside = m_has_pixels && !m_unknown_pixel && first >= 0 && last < m_target.count;
    m_origin = m_lies_inside ? m_target.pixels + first : nullptr;
}

void text_canvas::paint(const fss_glyph *glyph, int64_t line_row, int64_t pen) {
    const auto [first, end] = rows_of_glyph(*glyph, m_baseline, m_box.height);
    if (first >= end || glyph->pitch <= 0 || (!m_has_pixels && !m_unknown_pixel))
        return;
    const uint8_t *bits = bits_of(*glyph);
    const int64_t column = pen + glyph->left;
    const bool in_row = column >= 0 && column + glyph->pitch * k_byte_bits <= m_box.width;
    if (m_lies_inside && in_row && line_row + end <= m_box.height) {
        paint_inside(m_origin + (line_row + first) * m_target.width + column, m_target.width,
                     {bits, glyph->pitch, static_cast<int>(end - first)}, m_box.ink);
        return;
    }
    for (int64_t row = first; row < end; row++, bits += glyph->pitch)
        paint_wrapped(bits, glyph->pitch, line_row + row, column);
}

// Ink beyond an end of its canvas row goes on in the next or the previous one; what leaves the
// canvas or the screen's memory is dropped.
void text_canvas::paint_wrapped(const uint8_t *bits, int bytes, int64_t row, int64_t column) {
    const int64_t canvas_count = int64_t{m_box.width} * m_box.height;
    const int64_t start = row * m_box.width + column;
    for (int i = 0; i < bytes; i++)
        for_each_bit(bits[i], [&](int bit) {
            if (m_unknown_pixel) {
                report_unknown_pixel();
                return;
            }
            const int64_t ink = start + int64_t{i} * k_byte_bits + bit;
            if (ink < 0 || ink >= canvas_count)
                return;
            const int64_t element =
                m_target.index(m_box.x + ink % m_box.width, m_box.y + ink / m_box.width);
            if (element >= 0 && element < m_target.count)
                m_target.pixels[element] = m_box.ink;
        });
}

} // namespace ux
