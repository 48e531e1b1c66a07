// SPDX-License-Identifier: MIT
// The eight orders of the reveal effects. Each is a number of steps and what one step blends;
// pauses and stops are the same for all.

#include "graphics/effect.h"

#include "graphics/host_flags.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

namespace ux {
namespace {

constexpr unsigned k_pause_us = 3000;
constexpr int64_t k_blinds = 7;
constexpr int64_t k_tiles = 8;

// One order: step s of `steps` blends its pixels by step(block, s).
struct order {
    int64_t (*steps)(const placed_block &block);
    void (*step)(const placed_block &block, int64_t s);
};

void blend_whole_row(const placed_block &block, int64_t row) {
    blend_run(block, row, 0, block.drawn_width);
}

// Columns run over the whole block, whatever the screen shows of it.
void blend_column(const placed_block &block, int64_t column) {
    for (int64_t row = 0; row < block.height; row++)
        blend_pixel_of(block, row, column);
}

int64_t rows(const placed_block &block) {
    return block.drawn_height;
}

int64_t columns(const placed_block &block) {
    return block.width;
}

void from_top(const placed_block &block, int64_t s) {
    blend_whole_row(block, s);
}

void from_bottom(const placed_block &block, int64_t s) {
    blend_whole_row(block, block.drawn_height - 1 - s);
}

void from_left(const placed_block &block, int64_t s) {
    blend_column(block, s);
}

void from_right(const placed_block &block, int64_t s) {
    blend_column(block, block.width - 1 - s);
}

// The last diagonal stays unpainted: players know it so.
int64_t diagonals(const placed_block &block) {
    return block.width + block.height - 2;
}

void diagonal(const placed_block &block, int64_t s) {
    const int64_t first = std::max<int64_t>(0, s - block.width + 1);
    const int64_t last = std::min(s, block.height - 1);
    for (int64_t row = first; row <= last; row++)
        blend_pixel_of(block, row, s - row);
}

// Up to and including the middle: where the halves meet, rows are blended twice.
int64_t half_rows(const placed_block &block) {
    return block.height / 2 + 1;
}

void to_middle(const placed_block &block, int64_t s) {
    if (s < block.height)
        blend_whole_row(block, s);
    const int64_t mirrored = block.height - 1 - s;
    if (mirrored >= 0)
        blend_whole_row(block, mirrored);
}

int64_t band(const placed_block &block) {
    return block.height / k_blinds + (block.height % k_blinds != 0 ? 1 : 0);
}

void blinds(const placed_block &block, int64_t s) {
    for (int64_t row = s; row < block.drawn_height; row += band(block))
        blend_whole_row(block, row);
}

int64_t tile_side(const placed_block &block) {
    return std::max<int64_t>(1, block.width / k_tiles);
}

int64_t tiles_over(int64_t size, int64_t side) {
    return (size + side - 1) / side;
}

// A block higher than wide comes in bands from the top; any other in a spiral of square tiles.
int64_t spiral_steps(const placed_block &block) {
    const int64_t side = tile_side(block);
    const int64_t down = tiles_over(block.drawn_height, side);
    return block.height > block.width ? down : down * tiles_over(block.drawn_width, side);
}

struct tile {
    int64_t column, row;
};

// Tile number s of a spiral over columns x rows tiles: from the top left corner right, down, left
// and up, ring by ring.
tile spiral_tile(int64_t columns, int64_t rows, int64_t s) {
    int64_t ring = 0;
    for (;; ring++, columns -= 2, rows -= 2) {
        const int64_t around =
            columns == 1 || rows == 1 ? columns * rows : 2 * (columns + rows) - 4;
        if (s < around)
            break;
        s -= around;
    }
    if (s < columns)
        return {ring + s, ring};
    s -= columns - 1;
    if (s < rows)
        return {ring + columns - 1, ring + s};
    s -= rows - 1;
    if (s < columns)
        return {ring + columns - 1 - s, ring + rows - 1};
    s -= columns - 1;
    return {ring, ring + rows - 1 - s};
}

void blend_rect(const placed_block &block, int64_t x, int64_t y, int64_t w, int64_t h) {
    const int64_t width = std::min(w, block.drawn_width - x);
    const int64_t end = std::min(y + h, block.drawn_height);
    for (int64_t row = y; row < end; row++)
        blend_run(block, row, x, width);
}

void spiral(const placed_block &block, int64_t s) {
    const int64_t side = tile_side(block);
    if (block.height > block.width) {
        blend_rect(block, 0, s * side, block.drawn_width, side);
        return;
    }
    const tile at =
        spiral_tile(tiles_over(block.drawn_width, side), tiles_over(block.drawn_height, side), s);
    blend_rect(block, at.column * side, at.row * side, side, side);
}

constexpr order k_orders[] = {
    {rows, from_top},      {rows, from_bottom},    {columns, from_left}, {columns, from_right},
    {diagonals, diagonal}, {half_rows, to_middle}, {band, blinds},       {spiral_steps, spiral},
};

constexpr int k_blinds_effect = 7;

// The blinds pause after every second step, the others after every pace-th.
int64_t pace_of(const placed_block &block, int effect) {
    if (effect == k_blinds_effect)
        return 2;
    return std::max<int64_t>(1, main_screen.height / block.height);
}

// Other parts of the player may raise a flag at any time: they are read after each step, the second
// only if the first does not stop the effect.
bool host_stops() {
    if (!host_goes_to_menu() && !host_shows_message())
        return false;
    setenv("PHOTO_PLAYING", "NO", 1);
    return true;
}

} // namespace

void draw_effect(const placed_block &block, int effect) {
    const order &chosen = k_orders[effect - k_first_effect];
    const int64_t pace = pace_of(block, effect);
    const int64_t steps = chosen.steps(block);
    for (int64_t s = 0; s < steps; s++) {
        chosen.step(block, s);
        if (s % pace == 0)
            usleep(k_pause_us);
        if (host_stops())
            return;
    }
}

} // namespace ux
