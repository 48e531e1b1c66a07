/* SPDX-License-Identifier: MIT */
/*
 * Drawing the hollow box.
 */
#include "platform/host/fss_box.h"

#include <algorithm>

namespace em862x {

namespace {

/* numerator / denominator of a 16.16 size in whole pixels, at least one. */
int share(std::int32_t size, int numerator, int denominator) noexcept {
    const std::int64_t scaled = std::int64_t{size} * numerator / denominator;
    return std::max(1, static_cast<int>(scaled >> 16));
}

void set_pixel(glyph_record &record, int x, int y) noexcept {
    record.bitmap()[y * record.glyph.pitch + x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
}

} // namespace

record_handle make_box(const glyph_scale &scale) noexcept {
    const int width = share(scale.xx, 1, 2);
    const int height = share(scale.yy, 3, 4);
    const int side = share(scale.xx, 1, 16); /* of the upright strokes, and the room beside them */
    const int bar = share(scale.yy, 1, 16);  /* of the level strokes */
    record_handle record = make_record(width, height);
    if (!record)
        return nullptr;
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++)
            if (x < side || x >= width - side || y < bar || y >= height - bar)
                set_pixel(*record, x, y);
    set_metrics(*record, side, height, width + 2 * side);
    return record;
}

} // namespace em862x
