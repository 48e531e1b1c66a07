// SPDX-License-Identifier: MIT
// The rows of the keyboard map, painted as key caps with their meanings.
#include "sim/key_map.h"

#include "sim/stroke_font.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace ux::sim {

namespace {

constexpr shade k_edge = {{0x5a, 0x60, 0x6b}, {0x3c, 0x40, 0x49}};
constexpr shade k_panel = {{0x2b, 0x2f, 0x36}, {0x1d, 0x20, 0x25}};
constexpr shade k_cap = {{0x52, 0x58, 0x63}, {0x40, 0x45, 0x4e}};
constexpr colour k_ink = {0xf2, 0xf4, 0xf8};
constexpr colour k_meaning_ink = {0xc4, 0xca, 0xd4};

constexpr double k_margin = 28;
constexpr double k_title_middle = 38;
constexpr double k_first_row = 66;
constexpr double k_row = 36; // from row to row
constexpr double k_cap_width = 150;
constexpr double k_cap_height = 27;
constexpr double k_meaning_left = k_margin + k_cap_width + 24;

struct row {
    std::string_view key;
    std::string_view meaning;
};

constexpr std::array k_rows = {
    row{"ARROWS", "UP DOWN LEFT RIGHT"},
    row{"ENTER", "OK"},
    row{"0 TO 9", "DIGITS"},
    row{"BACKSPACE", "DELETE"},
    row{"SHIFT", "SHIFT"},
    row{"PERIOD", "PUNCTUATION"},
    row{"MOUSE", "TOUCH OR BUTTON"},
    row{"F1", "SHOW OR HIDE THIS"},
};

} // namespace

key_map_place place_key_map(window_size window, double remote_scale) {
    constexpr double k_share = 0.94; // of the window, at most
    const double scale = std::min({remote_scale, k_share * window.width / k_key_map_width,
                                   k_share * window.height / k_key_map_height});
    key_map_place place;
    place.width = std::max(static_cast<int>(std::floor(k_key_map_width * scale)), 1);
    place.height = std::max(static_cast<int>(std::floor(k_key_map_height * scale)), 1);
    place.x = (window.width - place.width) / 2;
    place.y = (window.height - place.height) / 2;
    place.scale = scale;
    return place;
}

void paint_key_map(canvas &on) {
    constexpr double k_border = 1.5;
    constexpr rect k_all = {0, 0, k_key_map_width, k_key_map_height};
    constexpr rect k_inside = {k_border, k_border, k_key_map_width - 2 * k_border,
                               k_key_map_height - 2 * k_border};
    on.fill_rounded(k_all, 0, k_edge);
    on.fill_rounded(k_inside, 0, k_panel);
    write_from(on, {k_margin, k_title_middle}, "KEYBOARD", {17, 2.4, k_ink});
    double top = k_first_row;
    for (const row &one : k_rows) {
        const rect cap = {k_margin, top, k_cap_width, k_cap_height};
        on.fill_rounded(cap, 7, k_cap);
        write_centred(on, cap.centre(), one.key, {11, 1.8, k_ink});
        write_from(on, {k_meaning_left, cap.centre().y}, one.meaning, {11, 1.7, k_meaning_ink});
        top += k_row;
    }
}

} // namespace ux::sim
