/* SPDX-License-Identifier: MIT */
/*
 * The arithmetic of cells.
 */
#include "platform/host/glyph_command.h"

namespace em862x {

namespace {

/* A scale of 32 bits times a length of 16 fits. */
std::int64_t scaled(std::uint32_t scale, std::int64_t units) noexcept {
    return std::int64_t{scale} * units;
}

std::int64_t rounded_up(std::int64_t length) noexcept {
    return (length + (1 << k_scale_bits) - 1) >> k_scale_bits;
}

std::int64_t to_nearest(std::int64_t length) noexcept {
    return (length + (1 << (k_scale_bits - 1))) >> k_scale_bits;
}

} // namespace

std::optional<cell_rows> rows_of(const glyph_request &request) noexcept {
    const std::int64_t above = rounded_up(scaled(request.scale, request.ascender));
    const std::int64_t below = rounded_up(scaled(request.scale, -std::int64_t{request.descender}));
    if (above < 0 || below < 0 || above + below > k_cell_side_max)
        return std::nullopt;
    return cell_rows{static_cast<std::uint32_t>(above), static_cast<std::uint32_t>(below)};
}

std::optional<glyph_cell> cell_of(const glyph_request &request) noexcept {
    const std::optional<cell_rows> rows = rows_of(request);
    const std::int64_t width = to_nearest(scaled(request.scale, request.advance));
    if (!rows || width > k_cell_side_max)
        return std::nullopt;
    return glyph_cell{static_cast<std::uint32_t>(width), rows->above + rows->below};
}

} // namespace em862x
