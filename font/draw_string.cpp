// SPDX-License-Identifier: MIT
// Strings of the engine on the screen: fitted to a box, aligned in it, laid over what is there.

#include "graphics/surface.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace ux {
namespace {

constexpr int k_alignments = 9; // three columns of places times three rows
constexpr int k_places = 3;

enum place { k_near, k_middle, k_far }; // left or top, centre, right or bottom

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

// Pixels of value 0 are transparent.
template <class Word>
void lay_over(Word *screen, const Word *string, uint32_t count) {
    for (uint32_t i = 0; i < count; i++)
        if (string[i] != 0)
            screen[i] = string[i];
}

template <class Word>
void lay_rows(const void *string, uint32_t width, const span &across, const span &down) {
    const uint32_t columns = visible_count(across, main_screen.width);
    const uint32_t rows = visible_count(down, main_screen.height);
    if (columns == 0 || !main_screen.buf)
        return;
    auto *screen = reinterpret_cast<Word *>(main_screen.buf);
    const auto *source = static_cast<const Word *>(string);
    for (uint32_t r = 0; r < rows; r++)
        lay_over(screen + (int64_t{down.target} + r) * main_screen.width + across.target,
                 source + (uint64_t{down.source} + r) * width + across.source, columns);
}

void lay_string(const void *string, uint32_t width, const span &across, const span &down) {
    if (main_screen.bytes_per_pixel == sizeof(word32))
        lay_rows<word32>(string, width, across, down);
    else if (main_screen.bytes_per_pixel == sizeof(word16))
        lay_rows<word16>(string, width, across, down);
    else if (main_screen.bytes_per_pixel == sizeof(uint8_t))
        lay_rows<uint8_t>(string, width, across, down);
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
    ux::lay_string(string, width, ux::place_along(x, w, width, align % ux::k_places),
                   ux::place_along(y, h, height, align / ux::k_places));
    free(string);
    return 0;
}
