/* SPDX-License-Identifier: MIT */
/*
 * The graphics engine's commands about glyphs as they cross the interface, and the size of the cell
 * that they mean. All cells of a font are equally high at one scale: the ascender's rows, then the
 * descender's; the baseline lies between them. The width is the advance, to the nearest pixel.
 */
#ifndef UX_PLATFORM_HOST_GLYPH_COMMAND_H
#define UX_PLATFORM_HOST_GLYPH_COMMAND_H

#include <cstdint>
#include <optional>

namespace em862x {

struct glyph_request {
    std::uint32_t font;     /* of the outline; not looked at in a size query, as all up to scale */
    std::uint32_t outline;  /* the font's number of it */
    std::uint32_t scratch;  /* DRAM address of the bits */
    std::uint32_t scale;    /* pixels per font unit, 11 fractional bits */
    std::uint16_t advance;  /* font units */
    std::int16_t bearing;   /* the ink's left edge; outlines bring it along */
    std::int16_t ascender;  /* font units above the baseline */
    std::int16_t descender; /* font units above the baseline, thus negative */
};
static_assert(sizeof(glyph_request) == 24);

struct glyph_cell {
    std::uint32_t width;
    std::uint32_t height;
};
static_assert(sizeof(glyph_cell) == 8);

/* The largest side of a cell, pixels. */
constexpr std::uint32_t k_cell_side_max = 8192;

constexpr int k_scale_bits = 11;

struct cell_rows {
    std::uint32_t above; /* the baseline */
    std::uint32_t below;
};

/* Nothing when a side would be negative or above k_cell_side_max. */
std::optional<cell_rows> rows_of(const glyph_request &request) noexcept;
std::optional<glyph_cell> cell_of(const glyph_request &request) noexcept;

/* Bytes per row of bits in the scratch area. */
constexpr std::uint32_t pitch_of(const glyph_cell &cell) noexcept {
    return (cell.width + 63) / 64 * 8;
}

} // namespace em862x

#endif
