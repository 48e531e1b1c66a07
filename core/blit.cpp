// SPDX-License-Identifier: MIT
// Copying rectangles of the drawing buffer to the device, turned when the display is rotated.

#include "graphics/rotate.h"
#include "graphics/surface.h"

#include <algorithm>
#include <cstring>

namespace ux {
namespace {

// Whether `buf` and `fb` share any byte.
bool memories_overlap() {
    const auto bytes = static_cast<uintptr_t>(element_count(main_screen)) *
                       static_cast<uintptr_t>(main_screen.bytes_per_pixel);
    const auto buf = reinterpret_cast<uintptr_t>(main_screen.buf);
    const auto fb = reinterpret_cast<uintptr_t>(main_screen.fb);
    return buf < fb + bytes && fb < buf + bytes;
}

template <class Pixel>
void copy_rotated(const quarter_turn &turn, const pixel_rect &rect) {
    using word = typename Pixel::word;
    auto *to = reinterpret_cast<word *>(main_screen.fb);
    const auto *from = reinterpret_cast<const word *>(main_screen.buf);
    if (memories_overlap())
        rotate_in_order(to, from, main_screen.width, turn, rect);
    else
        rotate_apart(to, from, main_screen.width, turn, rect);
}

// The part of a rectangle that lies on the screen.
pixel_rect on_screen(int x, int y, int w, int h) {
    const int64_t width = std::min<int64_t>(w, int64_t{main_screen.width} - x);
    const int64_t height = std::min<int64_t>(h, int64_t{main_screen.height} - y);
    return {x, y, width, height};
}

// Whatever the colour mode: only the size of a pixel counts.
void blit_rotated(const pixel_rect &rect) {
    const quarter_turn turn = main_screen.rotation == UX_ROTATION_90
                                  ? turn_90(main_screen.width, main_screen.height)
                                  : turn_270(main_screen.height);
    if (main_screen.bytes_per_pixel == sizeof(argb8888::word))
        copy_rotated<argb8888>(turn, rect);
    else if (main_screen.bytes_per_pixel == sizeof(rgb565::word))
        copy_rotated<rgb565>(turn, rect);
    else
        rotate_in_order(main_screen.fb, main_screen.buf, main_screen.bytes_per_pixel,
                        main_screen.width, turn, rect);
}

void blit_plain(const pixel_rect &rect) {
    if (main_screen.buf == main_screen.fb)
        return;
    const int64_t bpp = main_screen.bytes_per_pixel;
    for (int64_t row = rect.y; row < rect.y + rect.height; row++) {
        const int64_t offset = (row * main_screen.width + rect.x) * bpp;
        memmove(main_screen.fb + offset, main_screen.buf + offset,
                static_cast<size_t>(rect.width * bpp));
    }
}

} // namespace
} // namespace ux

// A rectangle that starts on the far edge, x = width or y = height, is empty and no error.
int ux_screen_blit_rect(int x, int y, int w, int h) noexcept {
    if (x < 0 || y < 0 || x > main_screen.width || y > main_screen.height)
        return -1;
    const ux::pixel_rect rect = ux::on_screen(x, y, w, h);
    if (rect.width <= 0 || rect.height <= 0 || !main_screen.buf || !main_screen.fb)
        return 0;
    if (main_screen.rotation == UX_ROTATION_90 || main_screen.rotation == UX_ROTATION_270)
        ux::blit_rotated(rect);
    else
        ux::blit_plain(rect);
    return 0;
}
