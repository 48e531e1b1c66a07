// SPDX-License-Identifier: MIT
// Save areas; see save_area.h. The size of an area is the heap's own knowledge: the records have no
// room for it, and hosts may free an area.

#include "core/save_area.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <malloc.h>

namespace ux {
namespace {

// A rectangle of the screen in bytes; empty when a side is not positive.
struct area_size {
    size_t row_bytes;
    size_t rows;
};

area_size size_of(int width, int height, int pixel_bytes) {
    if (width <= 0 || height <= 0 || pixel_bytes <= 0)
        return {0, 0};
    return {static_cast<size_t>(width) * static_cast<size_t>(pixel_bytes),
            static_cast<size_t>(height)};
}

// What ux_draw_image_buff() reads for a pixel: more than a device of small pixels has.
int drawn_pixel_bytes() {
    return main_screen.color_mode == UX_COLOR_MODE_ARGB8888 ? int{sizeof(uint32_t)}
                                                            : main_screen.bytes_per_pixel;
}

bool reserve(void **area, const area_size &size) {
    size_t bytes = 0;
    if (__builtin_mul_overflow(size.row_bytes, size.rows, &bytes))
        return false;
    bytes = std::max<size_t>(bytes, 1);
    if (*area && malloc_usable_size(*area) >= bytes)
        return true;
    void *larger = malloc(bytes);
    if (!larger)
        return false;
    free(*area);
    *area = larger;
    return true;
}

// Copies `bytes` bytes at byte `offset` of the drawing buffer, zeros where there is none.
void copy_row(uint8_t *to, int64_t offset, int64_t bytes, int64_t screen_bytes) {
    const int64_t skipped = std::clamp<int64_t>(-offset, 0, bytes);
    const int64_t end = std::clamp<int64_t>(screen_bytes - offset, skipped, bytes);
    memset(to, 0, static_cast<size_t>(skipped));
    if (skipped < end)
        memcpy(to + skipped, main_screen.buf + offset + skipped,
               static_cast<size_t>(end - skipped));
    memset(to + end, 0, static_cast<size_t>(bytes - end));
}

} // namespace

bool save_screen(void **area, const ux_obj *obj) {
    const area_size size = size_of(obj->width, obj->height, main_screen.bytes_per_pixel);
    if (!reserve(area, size))
        return false;
    const int64_t bpp = main_screen.bytes_per_pixel;
    const bool empty = !main_screen.buf || main_screen.width <= 0 || main_screen.height <= 0;
    const int64_t screen_bytes = empty ? 0 : int64_t{main_screen.width} * main_screen.height * bpp;
    const int64_t row_bytes = static_cast<int64_t>(size.row_bytes);
    auto *row = static_cast<uint8_t *>(*area);
    for (size_t r = 0; r < size.rows; r++) {
        const int64_t y = obj->y + static_cast<int64_t>(r);
        copy_row(row, (y * main_screen.width + obj->x) * bpp, row_bytes, screen_bytes);
        row += row_bytes;
    }
    return true;
}

int save_area_rows(void *area, int width, int height) {
    const area_size size = size_of(width, height, drawn_pixel_bytes());
    if (size.row_bytes == 0)
        return 0;
    const size_t fitting = malloc_usable_size(area) / size.row_bytes;
    return static_cast<int>(std::min(fitting, size.rows));
}

} // namespace ux
