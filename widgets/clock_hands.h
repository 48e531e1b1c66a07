// SPDX-License-Identifier: MIT
// Where a clock's three hands are: a pure function of the time and the radius.
#ifndef UX_WIDGETS_CLOCK_HANDS_H
#define UX_WIDGETS_CLOCK_HANDS_H

#include "ux.h"

#include <array>

namespace ux {

// A line of one pixel, in screen pixels.
struct clock_hand {
    int x0, y0, x1, y1;
    uint32_t color;
};

// The hands in the order they are painted: hour, minute, second.
std::array<clock_hand, 3> clock_hands(const ux_clock *clock);

} // namespace ux

#endif
