// SPDX-License-Identifier: MIT
// Pixel blocks: loading them from picture files, and drawing them into the drawing buffer: cut at
// the right and bottom edge, blended on a 32-bit screen, copied on a 16-bit one.

#include "graphics/blend.h"
#include "graphics/effect.h"
#include "graphics/image_stamp.h"
#include "graphics/placed_block.h"
#include "ux_bitmap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ux {
namespace {

constexpr uint8_t k_opaque = 255;
constexpr uint8_t k_half_transparent = 128;
constexpr int k_mode_transparent = 255;
constexpr int64_t k_decoded_pixel_bytes = 4;

// The size drawn along one axis: cut where the block reaches the screen's far edge.
int64_t drawn_size(int64_t position, int64_t size, int64_t screen_size) {
    return position + size >= screen_size ? screen_size - position : size;
}

void blend_block(const placed_block &block) {
    for (int64_t row = 0; row < block.drawn_height; row++)
        blend_run(block, row, 0, block.drawn_width);
}

// Rows as they lie. Pixels have the device's size: the format's name does not tell it.
void copy_block(const void *pixels, const placed_block &block) {
    const int64_t bpp = main_screen.bytes_per_pixel;
    const int64_t count = main_screen.buf && bpp > 0 ? element_count(main_screen) : 0;
    const auto *from = static_cast<const uint8_t *>(pixels);
    for (int64_t row = 0; row < block.drawn_height; row++) {
        const int64_t to = (block.y + row) * main_screen.width + block.x;
        const int64_t skipped = std::max<int64_t>(0, -to);
        const int64_t end = std::min(block.drawn_width, count - to);
        if (skipped < end)
            memmove(main_screen.buf + (to + skipped) * bpp,
                    from + (row * block.width + skipped) * bpp,
                    static_cast<size_t>((end - skipped) * bpp));
    }
}

// Memory for a block, zeroed: what the decoder does not reach draws nothing. The decoder writes 4
// bytes a pixel whatever the screen has. Null when out of memory or beyond it.
void *allocate_block(int width, int height) {
    if (width <= 0 || height <= 0)
        return calloc(1, k_decoded_pixel_bytes);
    const int64_t bpp = std::max<int64_t>(k_decoded_pixel_bytes, main_screen.bytes_per_pixel);
    size_t count = 0; // of 32 bits on most chips
    if (__builtin_mul_overflow(width, height, &count))
        return nullptr;
    return calloc(count, static_cast<size_t>(bpp));
}

// A path as messages tell it.
const char *name_of(const char *path) {
    return path ? path : "(null)";
}

// A block that may have been decoded in part only: the rest of it draws nothing.
struct loaded_block {
    void *pixels; // null when the file can not be opened or there is no memory
    bool is_whole;
};

loaded_block load(const char *path, int width, int height, uint8_t alpha) {
    const bool empty = width <= 0 || height <= 0;
    const RMBitmapOptions options = {alpha, empty ? 0 : static_cast<uint32_t>(width),
                                     empty ? 0 : static_cast<uint32_t>(height)};
    RMBitmapFile file;
    if (RMOpenBitmapFile(path, &file, &options) != UX_BITMAP_SUCCESS) {
        printf("RMOpenBitmapFile %s FAIL on ux_load_image\n", name_of(path));
        return {nullptr, false};
    }
    loaded_block block = {allocate_block(width, height), true};
    if (block.pixels && !empty)
        block.is_whole =
            RMBitmapToRaw(static_cast<uint8_t *>(block.pixels), &file) == UX_BITMAP_SUCCESS;
    RMCloseBitmapFile(&file);
    if (!block.pixels)
        printf("RMOpenBitmapFile %s BUF NULL on ux_load_image\n", path);
    return block;
}

bool is_on_screen(int x, int y) {
    return x >= 0 && x < main_screen.width && y >= 0 && y < main_screen.height;
}

// The line that hosts count drawn pictures by.
void announce(const char *path) {
    printf("ADV Play PHOTO %s\n", name_of(path));
}

// Draws a loaded block, which may be null, and releases it.
void draw_and_free(void *block, int x, int y, int width, int height, int effect) {
    if (!block)
        return;
    ux_draw_image_buff(block, x, y, width, height, effect);
    free(block);
}

} // namespace

image_stamp::~image_stamp() {
    free(m_block);
}

void image_stamp::draw_at(int x, int y) {
    if (!is_on_screen(x, y))
        return;
    announce(m_path);
    if (m_block) {
        ux_draw_image_buff(m_block, x, y, m_width, m_height, 0);
        return;
    }
    const loaded_block block = load(m_path, m_width, m_height, k_opaque);
    if (block.is_whole)
        m_block = block.pixels;
    if (block.pixels)
        ux_draw_image_buff(block.pixels, x, y, m_width, m_height, 0);
    if (!block.is_whole)
        free(block.pixels);
}

} // namespace ux

void *ux_load_image(const char *path, int width, int height) noexcept {
    return ux::load(path, width, height, ux::k_opaque).pixels;
}

void *ux_load_image_transparent(const char *path, int width, int height, uint8_t alpha) noexcept {
    return ux::load(path, width, height, alpha).pixels;
}

int ux_draw_image_buff(const void *block, int x, int y, int width, int height,
                       int effect) noexcept {
    const ux::placed_block placed = {static_cast<const ux::word32 *>(block),
                                     x,
                                     y,
                                     width,
                                     height,
                                     ux::drawn_size(x, width, main_screen.width),
                                     ux::drawn_size(y, height, main_screen.height)};
    if (!block || placed.drawn_width <= 0 || placed.drawn_height <= 0)
        return -1;
    if (main_screen.color_mode == UX_COLOR_MODE_RGB565) {
        ux::copy_block(block, placed);
        return 0;
    }
    if (main_screen.color_mode != UX_COLOR_MODE_ARGB8888)
        return -1;
    if (effect == 0)
        ux::blend_block(placed);
    else if (effect >= ux::k_first_effect && effect <= ux::k_last_effect)
        ux::draw_effect(placed, effect);
    return 0;
}

int ux_draw_image(const char *path, int x, int y, int width, int height, int mode) noexcept {
    if (!ux::is_on_screen(x, y))
        return 0;
    ux::announce(path);
    if (mode == ux::k_mode_transparent) {
        ux::draw_and_free(ux::load(path, width, height, ux::k_half_transparent).pixels, x, y, width,
                          height, 0);
        return 0;
    }
    const int effect = mode > ux::k_mode_transparent ? mode - ux::k_mode_transparent : mode;
    ux::draw_and_free(ux_load_image(path, width, height), x, y, width, height, effect);
    return 0;
}

int ux_draw_image_transparent(const char *path, int x, int y, int width, int height, int effect,
                              uint8_t alpha) noexcept {
    if (!ux::is_on_screen(x, y))
        return 0;
    const uint8_t wanted = alpha == 0 ? ux::k_half_transparent : alpha;
    ux::draw_and_free(ux_load_image_transparent(path, width, height, wanted), x, y, width, height,
                      effect);
    return 0;
}

// One byte stands for two pixels: positions are halved by shifts, and a run that is too wide goes
// on in the next row. What lies before the plane is left out.
void ux_set_alpha(int x, int y, int width, int height, uint8_t value) noexcept {
    if (!main_screen.alpha_plane)
        return;
    const int64_t pitch = main_screen.width >> 1;
    const int64_t plane = std::max<int64_t>(pitch * main_screen.height, 0);
    for (int64_t row = 0; row < height; row++) {
        const int64_t start = (int64_t{y} + row) * pitch + (x >> 1);
        const int64_t first = std::clamp<int64_t>(start, 0, plane);
        const int64_t end = std::clamp<int64_t>(start + (width >> 1), first, plane);
        if (start >= plane)
            return;
        memset(main_screen.alpha_plane + first, value, static_cast<size_t>(end - first));
    }
}
