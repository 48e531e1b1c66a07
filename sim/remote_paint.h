// SPDX-License-Identifier: MIT
// The look of the remote control.
#pragma once

#include "sim/canvas.h"

namespace ux::sim {

constexpr colour k_backdrop = {0x12, 0x14, 0x18};     // behind everything
constexpr colour k_screen_frame = {0x3a, 0x3f, 0x48}; // around the screen

// Paints the remote control in its own units; `pressed` is the key shown as pressed, -1 = none.
void paint_remote(canvas &on, int pressed);

} // namespace ux::sim
