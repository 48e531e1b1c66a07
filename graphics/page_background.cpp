// SPDX-License-Identifier: MIT
// Page backgrounds: a translucent colour over a rectangle, the background picture inside a
// rectangle, and the whole picture around one. The cost is the pixels blended.

#include "graphics/blend.h"
#include "graphics/surface.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

// Columns left..right - 1, rows top..bottom - 1 of the screen.
struct area {
    int64_t left, top, right, bottom;
};

area on_screen(int x, int y, int width, int height) {
    return {std::max<int64_t>(x, 0), std::max<int64_t>(y, 0),
            std::min<int64_t>(int64_t{x} + width, main_screen.width),
            std::min<int64_t>(int64_t{y} + height, main_screen.height)};
}

// A picture whose pixel (column, row) belongs there on the screen: its rows are as long as the
// screen's, whatever the picture's size.
struct screen_picture {
    word32 *pixels;
    int64_t count; // pixels that it has
};

void blend_area(const screen_picture &picture, const area &part) {
    const surface<argb8888> target = drawing_surface<argb8888>(main_screen);
    const int64_t count = std::min(target.count, picture.count);
    for (int64_t row = part.top; row < part.bottom; row++) {
        const int64_t first = target.index(part.left, row);
        const int64_t end = std::min(target.index(part.right, row), count);
        if (first < end)
            blend_row(target.pixels + first, picture.pixels + first, end - first);
    }
}

// Everything but the hole: above, left, right, below.
void blend_around(const screen_picture &picture, const area &hole) {
    const int64_t width = main_screen.width;
    const int64_t height = main_screen.height;
    if (hole.left >= hole.right || hole.top >= hole.bottom) {
        blend_area(picture, {0, 0, width, height});
        return;
    }
    blend_area(picture, {0, 0, width, hole.top});
    blend_area(picture, {0, hole.top, hole.left, hole.bottom});
    blend_area(picture, {hole.right, hole.top, width, hole.bottom});
    blend_area(picture, {0, hole.bottom, width, height});
}

// The picture's bytes as they lie, as many as the screen has.
void copy_all(const screen_picture &picture) {
    const int64_t screen_bytes =
        main_screen.buf ? element_count(main_screen) * main_screen.bytes_per_pixel : 0;
    const int64_t bytes = std::min(screen_bytes, picture.count * int64_t{sizeof(word32)});
    if (bytes > 0)
        memcpy(main_screen.buf, picture.pixels, static_cast<size_t>(bytes));
}

// Loads the picture and calls paint(picture), if the screen has a place (x, y).
template <class Paint>
void with_picture(const char *path, int x, int y, int width, int height, Paint paint) {
    if (x < 0 || x >= main_screen.width || y < 0 || y >= main_screen.height)
        return;
    void *block = ux_load_image(path, width, height);
    if (!block)
        return;
    const int64_t count = width > 0 && height > 0 ? int64_t{width} * height : 0;
    paint(screen_picture{static_cast<word32 *>(block), count});
    free(block);
}

} // namespace
} // namespace ux

int ux_update_BGcolor(int x, int y, int width, int height, uint32_t color) noexcept {
    if (main_screen.width < 1 || main_screen.height < 1)
        return -1;
    if (main_screen.color_mode != UX_COLOR_MODE_ARGB8888)
        return 0;
    const ux::area part = ux::on_screen(x, y, width, height);
    const auto target = ux::drawing_surface<ux::argb8888>(main_screen);
    for (int64_t row = part.top; row < part.bottom; row++) {
        const int64_t first = target.index(part.left, row);
        const int64_t end = std::min(target.index(part.right, row), target.count);
        if (first < end)
            ux::blend_color(target.pixels + first, color, end - first);
    }
    return 0;
}

int ux_update_BGimage(const char *path, int x, int y, int image_width, int image_height, int rect_x,
                      int rect_y, int rect_width, int rect_height) noexcept {
    ux::with_picture(path, x, y, image_width, image_height, [&](const ux::screen_picture &picture) {
        if (main_screen.color_mode == UX_COLOR_MODE_ARGB8888)
            ux::blend_area(picture, ux::on_screen(rect_x, rect_y, rect_width, rect_height));
    });
    return 0;
}

// A 16-bit screen gets the whole picture, without the hole.
int ux_draw_BGimage(const char *path, int x, int y, int image_width, int image_height, int rect_x,
                    int rect_y, int rect_width, int rect_height) noexcept {
    ux::with_picture(path, x, y, image_width, image_height, [&](const ux::screen_picture &picture) {
        if (main_screen.color_mode == UX_COLOR_MODE_RGB565)
            ux::copy_all(picture);
        else if (main_screen.color_mode == UX_COLOR_MODE_ARGB8888)
            ux::blend_around(picture, ux::on_screen(rect_x, rect_y, rect_width, rect_height));
    });
    return 0;
}
