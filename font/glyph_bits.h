// SPDX-License-Identifier: MIT
// Reading a glyph's bitmap: which of its rows show in a line, and which of its bits are ink.
#ifndef UX_FONT_GLYPH_BITS_H
#define UX_FONT_GLYPH_BITS_H

#include "platform/em862x.h"
#include "ux.h"

#include <algorithm>
#include <bit>
#include <cstdio>

namespace ux {

constexpr int k_byte_bits = 8;

// The bits of `byte` from the leftmost on: calls store(column) for each that is set.
template <class Store>
inline void for_each_bit(uint8_t byte, Store store) {
    uint32_t bits = uint32_t{byte} << 24;
    while (bits != 0) {
        const int column = std::countl_zero(bits);
        store(column);
        bits ^= 0x80000000u >> column;
    }
}

inline const uint8_t *bits_of(const fss_glyph &glyph) {
    return reinterpret_cast<const uint8_t *>(&glyph + 1);
}

// Where a line's baseline lies, in rows from the line's top.
constexpr int64_t baseline_of(int64_t line_height) {
    return line_height * 4 / 5;
}

// Rows from a line's top, `end` exclusive.
struct glyph_rows {
    int64_t first, end;
};

// Where the glyph's bitmap lies, cut at `height`. One that begins above the line is shown from its
// first bitmap row on, moved down, and loses its last rows.
inline glyph_rows rows_of_glyph(const fss_glyph &glyph, int64_t baseline, int64_t height) {
    const int64_t top = baseline - glyph.top;
    return {std::max<int64_t>(top, 0), std::min<int64_t>(top + glyph.rows, height)};
}

// Told for each bit of ink when the screen's pixels are not 32-bit.
inline void report_unknown_pixel() {
    fprintf(stderr, "Unknown bpp : %d\n", main_screen.bytes_per_pixel);
}

} // namespace ux

#endif
