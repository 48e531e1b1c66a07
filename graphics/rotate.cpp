// SPDX-License-Identifier: MIT
// Quarter turns: the literal loops, and a transposition of small squares held in vectors.

#include "graphics/rotate.h"

#include "graphics/simd.h"

#include <algorithm>
#include <cstring>

namespace ux {
namespace {

// Side of a block whose source rows and destination rows all stay in the first-level cache.
constexpr int64_t k_block = 32;

template <class Pixel>
void rotate_plain(typename Pixel::word *to, const typename Pixel::word *from, int64_t pitch,
                  const quarter_turn &turn, const pixel_rect &rect) {
    for (int64_t row = rect.y; row < rect.y + rect.height; row++)
        for (int64_t column = rect.x; column < rect.x + rect.width; column++)
            to[turn.origin + column * turn.column_step + row * turn.row_step] =
                from[row * pitch + column];
}

// A square of 4 x 4 pixels: four rows are read, four columns are written as rows.
using quad [[gnu::vector_size(16)]] = uint32_t;
constexpr int64_t k_square = 4;

inline __attribute__((always_inline)) quad load_quad(const word32 *from) {
    quad value;
    memcpy(&value, from, sizeof value);
    return value;
}

// Device rows run along screen columns: forwards for 90 degrees, backwards for 270.
template <bool backwards>
inline __attribute__((always_inline)) void rotate_square(word32 *to, const word32 *from,
                                                         int64_t pitch, int64_t column_step) {
    const word32 *first = backwards ? from + (k_square - 1) * pitch : from;
    const int64_t step = backwards ? -pitch : pitch;
    const quad a = load_quad(first);
    const quad b = load_quad(first + step);
    const quad c = load_quad(first + 2 * step);
    const quad d = load_quad(first + 3 * step);
    const quad ab_low = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const quad ab_high = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const quad cd_low = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const quad cd_high = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    const quad columns[k_square] = {
        __builtin_shufflevector(ab_low, cd_low, 0, 1, 4, 5),
        __builtin_shufflevector(ab_low, cd_low, 2, 3, 6, 7),
        __builtin_shufflevector(ab_high, cd_high, 0, 1, 4, 5),
        __builtin_shufflevector(ab_high, cd_high, 2, 3, 6, 7),
    };
    word32 *device_row = backwards ? to - (k_square - 1) : to;
    for (const quad &column : columns) {
        memcpy(device_row, &column, sizeof column);
        device_row += column_step;
    }
}

// Tiles of 8 columns by 16 rows, measured the fastest: a tile writes whole cache lines of a few
// device rows, and reads whole halves of lines.
constexpr int64_t k_tile_columns = 8;
constexpr int64_t k_tile_rows = 16;

template <bool backwards>
inline __attribute__((always_inline)) void rotate_tiles(word32 *to, const word32 *from,
                                                        int64_t pitch, const quarter_turn &turn,
                                                        const pixel_rect &rect) {
    for (int64_t y = rect.y; y < rect.y + rect.height; y += k_tile_rows)
        for (int64_t x = rect.x; x < rect.x + rect.width; x += k_tile_columns)
            for (int64_t column = x; column < x + k_tile_columns; column += k_square)
                for (int64_t row = y; row < y + k_tile_rows; row += k_square)
                    rotate_square<backwards>(to + turn.origin + column * turn.column_step +
                                                 row * turn.row_step,
                                             from + row * pitch + column, pitch, turn.column_step);
}

template <class Pixel>
void rotate_blocks(typename Pixel::word *to, const typename Pixel::word *from, int64_t pitch,
                   const quarter_turn &turn, const pixel_rect &rect) {
    const int64_t right = rect.x + rect.width;
    const int64_t bottom = rect.y + rect.height;
    for (int64_t y = rect.y; y < bottom; y += k_block)
        for (int64_t x = rect.x; x < right; x += k_block)
            rotate_plain<Pixel>(
                to, from, pitch, turn,
                {x, y, std::min(k_block, right - x), std::min(k_block, bottom - y)});
}

} // namespace

void rotate_in_order(word32 *to, const word32 *from, int64_t pitch, const quarter_turn &turn,
                     const pixel_rect &rect) {
    rotate_plain<argb8888>(to, from, pitch, turn, rect);
}

void rotate_in_order(word16 *to, const word16 *from, int64_t pitch, const quarter_turn &turn,
                     const pixel_rect &rect) {
    rotate_plain<rgb565>(to, from, pitch, turn, rect);
}

void rotate_in_order(uint8_t *to, const uint8_t *from, int64_t pixel_bytes, int64_t pitch,
                     const quarter_turn &turn, const pixel_rect &rect) {
    for (int64_t row = rect.y; row < rect.y + rect.height; row++)
        for (int64_t column = rect.x; column < rect.x + rect.width; column++) {
            const int64_t element = turn.origin + column * turn.column_step + row * turn.row_step;
            memmove(to + element * pixel_bytes, from + (row * pitch + column) * pixel_bytes,
                    static_cast<size_t>(pixel_bytes));
        }
}

UX_MULTIVERSION void rotate_apart(word32 *to, const word32 *from, int64_t pitch,
                                  const quarter_turn &turn, const pixel_rect &rect) {
    const int64_t whole_width = rect.width / k_tile_columns * k_tile_columns;
    const int64_t whole_height = rect.height / k_tile_rows * k_tile_rows;
    const pixel_rect whole = {rect.x, rect.y, whole_width, whole_height};
    if (turn.row_step < 0)
        rotate_tiles<true>(to, from, pitch, turn, whole);
    else
        rotate_tiles<false>(to, from, pitch, turn, whole);
    rotate_plain<argb8888>(to, from, pitch, turn,
                           {rect.x + whole_width, rect.y, rect.width - whole_width, whole_height});
    rotate_plain<argb8888>(to, from, pitch, turn,
                           {rect.x, rect.y + whole_height, rect.width, rect.height - whole_height});
}

void rotate_apart(word16 *to, const word16 *from, int64_t pitch, const quarter_turn &turn,
                  const pixel_rect &rect) {
    rotate_blocks<rgb565>(to, from, pitch, turn, rect);
}

} // namespace ux
