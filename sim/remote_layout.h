// SPDX-License-Identifier: MIT
// The geometry of the window: where screen and remote control lie, which button holds a point,
// which pixel of the screen a point shows. Pure arithmetic; painting is elsewhere.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace ux::sim {

struct point {
    double x = 0;
    double y = 0;
};

// Right and bottom edges are exclusive.
struct rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool holds(point at) const {
        return at.x >= x && at.x < x + width && at.y >= y && at.y < y + height;
    }
    point centre() const { return {x + width / 2, y + height / 2}; }
};

// The remote control in its own units.
constexpr double k_remote_width = 240;
constexpr double k_remote_height = 600;

// The wheel: OK in the middle, four arrows in the ring around it.
constexpr point k_wheel_centre = {120, 136};
constexpr double k_wheel_radius = 88;
constexpr double k_wheel_inner_radius = 40; // of the ring
constexpr double k_ok_radius = 34;

enum class button_shape { ok, arrow, pill };

struct remote_button {
    int key;
    button_shape shape;
    rect area;              // bounding box; what counts is button_at
    std::string_view label; // empty for arrows
    std::string_view hint;  // second, smaller line; may be empty
};

std::span<const remote_button> remote_buttons();

// The button at a point of the remote control, or null.
const remote_button *button_at(point at);

// Where the parts lie in a window, in window pixels.
struct window_layout {
    rect screen;             // keeps the screen's proportions
    rect remote;             // keeps the remote's proportions
    double remote_scale = 1; // window pixels per remote unit

    point in_remote(point window) const;
};

// The window that shows everything at full size, made smaller to fit `largest_*` if it must.
struct window_size {
    int width;
    int height;
};
window_size preferred_window(int screen_width, int screen_height, int largest_width,
                             int largest_height);

window_layout layout_for(window_size window, int screen_width, int screen_height);

struct pixel_position {
    int x;
    int y;
};

// The screen pixel under a point of the window, or nothing beside the picture.
std::optional<pixel_position> screen_pixel_at(const window_layout &layout, point window,
                                              int screen_width, int screen_height);

} // namespace ux::sim
