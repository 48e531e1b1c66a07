// SPDX-License-Identifier: MIT
// The "<" and ">" signs at the ends of widgets that the left and right keys change: how much room
// they take, as the graphics engine's font measures it.
#ifndef UX_WIDGETS_SIGN_H
#define UX_WIDGETS_SIGN_H

#include <cstdint>

namespace ux {

// A measured sign.
struct sign_cell {
    int size;        // the size it was measured in, pixels; 0 = in none
    uint32_t width;  // pixels; 0 when it can not be measured
    uint32_t height; // pixels; 0 when it can not be measured
};

// Measures one sign.
sign_cell measure_sign(char16_t sign, int size);

// Measures "<" in sizes from `height` down to 1 until it is not higher than that. The last
// measurement, whether it fits or not. Sizes that no screen has room for are left out.
sign_cell fit_sign(int height);

} // namespace ux

#endif
