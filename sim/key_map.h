// SPDX-License-Identifier: MIT
// The panel that tells which keys of the keyboard stand in for the remote control.
#pragma once

#include "sim/canvas.h"

namespace ux::sim {

// In its own units, those of the remote control.
constexpr double k_key_map_width = 440;
constexpr double k_key_map_height = 372;

// Where the panel lies in a window: in the middle, in the remote control's scale unless that is too
// large. Whole window pixels.
struct key_map_place {
    int x = 0;
    int y = 0;
    int width = 1;
    int height = 1;
    double scale = 1; // window pixels per unit
};
key_map_place place_key_map(window_size window, double remote_scale);

// Paints the panel onto a canvas of its size.
void paint_key_map(canvas &on);

} // namespace ux::sim
