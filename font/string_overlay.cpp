// SPDX-License-Identifier: MIT
// Laying rows over rows, several pixels at once; see string_overlay.h.

#include "font/string_overlay.h"
#include "graphics/simd.h"

#include <cstring>

namespace ux {
namespace {

// Inline, since it is compiled into each version of a function. Without a branch: where the string
// is 0 the screen's pixel is stored again.
template <class Word>
inline __attribute__((always_inline)) void lay_lanes(uint8_t *screen, const uint8_t *string) {
    using lanes [[gnu::vector_size(32)]] = Word;
    lanes above;
    lanes below;
    memcpy(&above, string, sizeof above);
    memcpy(&below, screen, sizeof below);
    const lanes laid = above | (below & reinterpret_cast<lanes>(above == 0));
    memcpy(screen, &laid, sizeof laid);
}

template <class Word>
inline __attribute__((always_inline)) void lay_pixels(uint8_t *screen, const uint8_t *string,
                                                      uint32_t count) {
    for (uint32_t i = 0; i < count; i++) {
        Word pixel;
        memcpy(&pixel, string + i * sizeof pixel, sizeof pixel);
        if (pixel != 0)
            memcpy(screen + i * sizeof pixel, &pixel, sizeof pixel);
    }
}

// The last lanes of a row overlap those before: laying a pixel twice is laying it once.
template <class Word>
inline __attribute__((always_inline)) void lay_rows(const pixel_rows &screen,
                                                    const const_pixel_rows &string,
                                                    uint32_t columns, uint32_t rows) {
    constexpr uint64_t k_step = 32;
    const uint64_t bytes = uint64_t{columns} * sizeof(Word);
    uint8_t *below = screen.first;
    const uint8_t *above = string.first;
    for (uint32_t r = 0; r < rows; r++) {
        if (bytes < k_step) {
            lay_pixels<Word>(below, above, columns);
        } else {
            for (uint64_t at = 0; at + k_step < bytes; at += k_step)
                lay_lanes<Word>(below + at, above + at);
            lay_lanes<Word>(below + bytes - k_step, above + bytes - k_step);
        }
        below += screen.pitch_bytes;
        above += string.pitch_bytes;
    }
}

UX_MULTIVERSION void lay_rows_32(const pixel_rows &screen, const const_pixel_rows &string,
                                 uint32_t columns, uint32_t rows) {
    lay_rows<uint32_t>(screen, string, columns, rows);
}

UX_MULTIVERSION void lay_rows_16(const pixel_rows &screen, const const_pixel_rows &string,
                                 uint32_t columns, uint32_t rows) {
    lay_rows<uint16_t>(screen, string, columns, rows);
}

UX_MULTIVERSION void lay_rows_8(const pixel_rows &screen, const const_pixel_rows &string,
                                uint32_t columns, uint32_t rows) {
    lay_rows<uint8_t>(screen, string, columns, rows);
}

} // namespace

void lay_over(const pixel_rows &screen, const const_pixel_rows &string, uint32_t columns,
              uint32_t rows, uint32_t pixel_bytes) {
    if (pixel_bytes == sizeof(uint32_t))
        lay_rows_32(screen, string, columns, rows);
    else if (pixel_bytes == sizeof(uint16_t))
        lay_rows_16(screen, string, columns, rows);
    else if (pixel_bytes == sizeof(uint8_t))
        lay_rows_8(screen, string, columns, rows);
}

} // namespace ux
