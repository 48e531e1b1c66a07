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

template <class Word>
bool has_zero(const uint8_t *pixels, uint32_t columns) {
    Word found = 0; // not left early and as wide as a pixel: several are looked at at once
    for (uint32_t i = 0; i < columns; i++) {
        Word pixel;
        memcpy(&pixel, pixels + i * sizeof pixel, sizeof pixel);
        found = static_cast<Word>(found | static_cast<Word>(pixel == 0));
    }
    return found != 0;
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

void copy_over(const pixel_rows &screen, const const_pixel_rows &string, uint32_t columns,
               uint32_t rows, uint32_t pixel_bytes) {
    const size_t bytes = size_t{columns} * pixel_bytes;
    for (int64_t r = 0; r < rows; r++)
        memcpy(screen.first + r * screen.pitch_bytes, string.first + r * string.pitch_bytes, bytes);
}

bool has_transparent(const uint8_t *pixels, uint32_t columns, uint32_t pixel_bytes) {
    if (pixel_bytes == sizeof(uint32_t))
        return has_zero<uint32_t>(pixels, columns);
    if (pixel_bytes == sizeof(uint16_t))
        return has_zero<uint16_t>(pixels, columns);
    return has_zero<uint8_t>(pixels, columns);
}

} // namespace ux
