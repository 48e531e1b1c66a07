// SPDX-License-Identifier: MIT
// Strings of the engine on the screen: fitted to a box, aligned in it, laid over what is there.

#include "font/string_overlay.h"
#include "ux.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace ux {
namespace {

constexpr int k_alignments = 9; // three columns of places times three rows
constexpr int k_places = 3;

enum { k_near, k_middle, k_far }; // places: left or top, centre, right or bottom

// One axis of a string in its box.
struct span {
    uint32_t source; // first pixel of the string that shows
    uint32_t target; // where it goes on the screen
    uint32_t count;  // pixels that show
};

// A string that is larger than the box is cropped on the sides that its place is away from; a
// smaller one is moved. Sizes compare unsigned: a box of negative size holds all, and has no middle
// and no far end.
span place_along(int start, int box, uint32_t string, int place) {
    if (box < 0 && place != k_near)
        return {};
    const auto room = static_cast<uint32_t>(box);
    const uint32_t excess = room < string ? string - room : 0;
    const uint32_t rest = room < string || place == k_near ? 0 : room - string;
    const uint32_t share = place == k_middle ? 2 : 1;
    return {place == k_near ? 0 : excess / share, static_cast<uint32_t>(start) + rest / share,
            std::min(string, room)};
}

// Nothing shows of a span that starts beyond the screen, and positions compare unsigned: there is
// no cut at the left and top, what would start there does not show at all.
uint32_t visible_count(const span &along, int screen) {
    const uint32_t size = screen > 0 ? static_cast<uint32_t>(screen) : 0;
    return along.target < size ? std::min(along.count, size - along.target) : 0;
}

// A rendered string: packed rows of pixels as wide as the screen's.
struct rendered_string {
    const uint8_t *pixels;
    uint32_t width, height;
    uint32_t fg, bg;

    uint32_t pixel_bytes() const { return static_cast<uint32_t>(main_screen.bytes_per_pixel); }
    int64_t pitch_bytes() const { return int64_t{width} * pixel_bytes(); }

    bool shows(uint32_t color) const { return color << (32 - 8 * pixel_bytes()) != 0; }

    // No pixel is transparent. What is below a low cell is so down to the last row.
    bool is_opaque() const {
        return height > 0 && shows(fg) && shows(bg) &&
               !has_transparent(pixels + (height - 1) * pitch_bytes(), width, pixel_bytes());
    }
};

void lay_string(const rendered_string &string, const span &across, const span &down) {
    const uint32_t columns = visible_count(across, main_screen.width);
    const uint32_t rows = visible_count(down, main_screen.height);
    if (columns == 0 || rows == 0 || !main_screen.buf)
        return;
    const int64_t pixel_bytes = string.pixel_bytes();
    const int64_t screen_pitch = main_screen.width * pixel_bytes;
    const pixel_rows target = {
        main_screen.buf + down.target * screen_pitch + across.target * pixel_bytes, screen_pitch};
    const const_pixel_rows source = {string.pixels + down.source * string.pitch_bytes() +
                                         across.source * pixel_bytes,
                                     string.pitch_bytes()};
    const auto lay = string.is_opaque() ? copy_over : lay_over;
    lay(target, source, columns, rows, string.pixel_bytes());
}

// The largest size whose space fits into `height` rows goes to `size`, which is left alone when
// there is none; false when the font cannot be measured.
bool fit_size(int height, int &size) {
    for (int s = height; s >= 1; s--) {
        uint32_t cell_width = 0;
        uint32_t cell_height = 0;
        if (ux_get_char_size(' ', s, &cell_width, &cell_height) != 0)
            return false;
        if (cell_height <= static_cast<uint32_t>(height)) {
            size = s;
            return true;
        }
    }
    return true;
}

} // namespace
} // namespace ux

int ux_draw_string(const char *text, int size, uint32_t fg, uint32_t bg, int x, int y, int w, int h,
                   int align) noexcept {
    if (size == 0 && !ux::fit_size(h, size))
        return -1;
    uint32_t width = 0;
    uint32_t height = 0;
    void *string = ux_get_string_buffer(
        text, size, fg, bg, static_cast<uint32_t>(main_screen.bytes_per_pixel), &width, &height);
    if (!string) {
        puts("Cannot get string buffer in Draw string \n");
        return -1;
    }
    if (align < 0 || align >= ux::k_alignments)
        align = 0;
    ux::lay_string({static_cast<const uint8_t *>(string), width, height, fg, bg},
                   ux::place_along(x, w, width, align % ux::k_places),
                   ux::place_along(y, h, height, align / ux::k_places));
    free(string);
    return 0;
}
