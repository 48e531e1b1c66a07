// SPDX-License-Identifier: MIT
// Button table and the arithmetic of places.
#include "sim/remote_layout.h"

#include "sim/keys.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ux::sim {

namespace {

constexpr double k_margin = 24;           // around screen and remote, window pixels
constexpr double k_smallest_picture = 64; // room that the remote control leaves it, window pixels
constexpr double k_smallest_window = 160;

constexpr double k_pad_left = 22; // the digits' first column
constexpr double k_pad_top = 264; // their first row
constexpr double k_pill_width = 58;
constexpr double k_pill_height = 50;
constexpr double k_column_step = 69; // 58 wide, 11 apart
constexpr double k_row_step = 62;

constexpr rect circle_box(double radius) {
    return {k_wheel_centre.x - radius, k_wheel_centre.y - radius, 2 * radius, 2 * radius};
}

// An arrow's box: the outer strip of the ring on its side.
constexpr rect arrow_box(int dx, int dy) {
    constexpr double k_depth = k_wheel_radius - k_wheel_inner_radius;
    rect all = circle_box(k_wheel_radius);
    if (dx != 0) {
        return {dx < 0 ? all.x : all.x + all.width - k_depth, all.y, k_depth, all.height};
    }
    return {all.x, dy < 0 ? all.y : all.y + all.height - k_depth, all.width, k_depth};
}

constexpr rect pad_box(int column, int row) {
    return {k_pad_left + column * k_column_step, k_pad_top + row * k_row_step, k_pill_width,
            k_pill_height};
}

constexpr rect wide_box(int row) {
    return {k_pad_left, k_pad_top + row * k_row_step, 2 * k_column_step + k_pill_width,
            k_pill_height};
}

constexpr remote_button digit(int value, int column, int row, std::string_view label,
                              std::string_view hint) {
    return {k_key_digit0 + value, button_shape::pill, pad_box(column, row), label, hint};
}

constexpr std::array k_buttons = {
    remote_button{k_key_ok, button_shape::ok, circle_box(k_ok_radius), "OK", ""},
    remote_button{k_key_up, button_shape::arrow, arrow_box(0, -1), "", ""},
    remote_button{k_key_down, button_shape::arrow, arrow_box(0, 1), "", ""},
    remote_button{k_key_left, button_shape::arrow, arrow_box(-1, 0), "", ""},
    remote_button{k_key_right, button_shape::arrow, arrow_box(1, 0), "", ""},
    digit(1, 0, 0, "1", ""),
    digit(2, 1, 0, "2", "ABC"),
    digit(3, 2, 0, "3", "DEF"),
    digit(4, 0, 1, "4", "GHI"),
    digit(5, 1, 1, "5", "JKL"),
    digit(6, 2, 1, "6", "MNO"),
    digit(7, 0, 2, "7", "PQRS"),
    digit(8, 1, 2, "8", "TUV"),
    digit(9, 2, 2, "9", "WXYZ"),
    remote_button{k_key_shift, button_shape::pill, pad_box(0, 3), "^", "SHIFT"},
    digit(0, 1, 3, "0", ""),
    remote_button{k_key_punctuation, button_shape::pill, pad_box(2, 3), ".:/_", "SPACE"},
    remote_button{k_key_delete, button_shape::pill, wide_box(4), "DELETE", ""},
};

double distance(point a, point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

// The arrow whose quarter of the ring holds the point. The diagonals belong to left and right.
int arrow_at(point at) {
    double dx = at.x - k_wheel_centre.x;
    double dy = at.y - k_wheel_centre.y;
    if (std::abs(dx) >= std::abs(dy)) {
        return dx < 0 ? k_key_left : k_key_right;
    }
    return dy < 0 ? k_key_up : k_key_down;
}

const remote_button *button_of(int key) {
    auto found = std::ranges::find(k_buttons, key, &remote_button::key);
    return found == k_buttons.end() ? nullptr : &*found;
}

// The largest rectangle of the given proportions inside `room`, centred.
rect fitted(rect room, double width, double height) {
    double scale = std::min(room.width / width, room.height / height);
    point centre = room.centre();
    return {centre.x - width * scale / 2, centre.y - height * scale / 2, width * scale,
            height * scale};
}

} // namespace

std::span<const remote_button> remote_buttons() {
    return k_buttons;
}

const remote_button *button_at(point at) {
    double radius = distance(at, k_wheel_centre);
    if (radius <= k_ok_radius) {
        return button_of(k_key_ok);
    }
    if (radius >= k_wheel_inner_radius && radius <= k_wheel_radius) {
        return button_of(arrow_at(at));
    }
    for (const remote_button &button : k_buttons) {
        if (button.shape == button_shape::pill && button.area.holds(at)) {
            return &button;
        }
    }
    return nullptr;
}

point window_layout::in_remote(point window) const {
    return {(window.x - remote.x) / remote_scale, (window.y - remote.y) / remote_scale};
}

window_size preferred_window(int screen_width, int screen_height, int largest_width,
                             int largest_height) {
    double full_height = std::max<double>(screen_height, k_remote_height);
    double room_height = std::max(std::min(full_height, largest_height - 2 * k_margin), 1.0);
    double remote_scale = std::min(1.0, room_height / k_remote_height);
    double beside = 3 * k_margin + k_remote_width * remote_scale;
    double room_width = std::max(largest_width - beside, 1.0);
    double picture_scale = std::min({1.0, room_width / screen_width, room_height / screen_height});

    double width = std::max(screen_width * picture_scale, k_smallest_picture) + beside;
    double height = std::max(screen_height * picture_scale, k_remote_height * remote_scale);
    return {static_cast<int>(std::max(std::floor(width), k_smallest_window)),
            static_cast<int>(std::max(std::floor(height + 2 * k_margin), k_smallest_window))};
}

window_layout layout_for(window_size window, int screen_width, int screen_height) {
    double height = std::max<double>(window.height - 2 * k_margin, 1);
    double width = std::max(window.width - 3 * k_margin - k_smallest_picture, 1.0);
    double scale = std::min({height / k_remote_height, width / k_remote_width, 1.0});
    double remote_width = k_remote_width * scale;
    rect remote_room = {window.width - k_margin - remote_width, k_margin, remote_width, height};
    double picture_width = std::max(remote_room.x - 2 * k_margin, 1.0);
    rect picture_room = {k_margin, k_margin, picture_width, height};
    return {
        .screen = fitted(picture_room, screen_width, screen_height),
        .remote = {remote_room.x, k_margin + (height - k_remote_height * scale) / 2, remote_width,
                   k_remote_height * scale},
        .remote_scale = scale,
    };
}

std::optional<pixel_position> screen_pixel_at(const window_layout &layout, point window,
                                              int screen_width, int screen_height) {
    const rect &shown = layout.screen;
    if (!shown.holds(window)) {
        return std::nullopt;
    }
    double x = std::floor((window.x - shown.x) * screen_width / shown.width);
    double y = std::floor((window.y - shown.y) * screen_height / shown.height);
    return pixel_position{std::clamp(static_cast<int>(x), 0, screen_width - 1),
                          std::clamp(static_cast<int>(y), 0, screen_height - 1)};
}

} // namespace ux::sim
