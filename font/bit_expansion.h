// SPDX-License-Identifier: MIT
// From one bit to one pixel: rows of bits, most significant bit leftmost, to rows of two colours.
#ifndef UX_FONT_BIT_EXPANSION_H
#define UX_FONT_BIT_EXPANSION_H

#include <cstdint>
#include <cstring>

namespace ux {

constexpr uint32_t k_bits_per_byte = 8;

// Eight pixels at once, leftmost first.
template <class Word>
struct eight_pixels {
    using lanes [[gnu::vector_size(k_bits_per_byte * sizeof(Word))]] = Word;
    lanes pixels;

    void expand(uint8_t byte, Word fg, Word bg) {
        constexpr lanes k_bit = {0x80, 0x40, 0x20, 0x10, 8, 4, 2, 1};
        pixels = ((static_cast<Word>(byte) - lanes{}) & k_bit) != 0 ? fg - lanes{} : bg - lanes{};
    }
};

// Stores `columns` pixels: `fg` for a set bit, `bg` for a clear one. Of the last byte only the bits
// inside are stored.
template <class Word>
inline void expand_row(Word *pixels, const uint8_t *bits, uint32_t columns, Word fg, Word bg) {
    eight_pixels<Word> eight = {};
    for (; columns >= k_bits_per_byte; columns -= k_bits_per_byte) {
        eight.expand(*bits++, fg, bg);
        memcpy(pixels, &eight.pixels, sizeof eight.pixels);
        pixels += k_bits_per_byte;
    }
    if (columns == 0)
        return;
    eight.expand(*bits, fg, bg);
    memcpy(pixels, &eight.pixels, columns * sizeof(Word));
}

} // namespace ux

#endif
