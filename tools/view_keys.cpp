// SPDX-License-Identifier: MIT
// Key symbols to codes.
#include "tools/view_keys.h"

#include "sim/keys.h"

#include <rfb/keysym.h>

namespace ux::view {

std::optional<int> key_of_symbol(uint32_t symbol) {
    if (symbol >= XK_0 && symbol <= XK_9) {
        return sim::k_key_digit0 + static_cast<int>(symbol - XK_0);
    }
    if (symbol >= XK_KP_0 && symbol <= XK_KP_9) {
        return sim::k_key_digit0 + static_cast<int>(symbol - XK_KP_0);
    }
    switch (symbol) {
    case XK_Up:
    case XK_KP_Up:
        return sim::k_key_up;
    case XK_Down:
    case XK_KP_Down:
        return sim::k_key_down;
    case XK_Left:
    case XK_KP_Left:
        return sim::k_key_left;
    case XK_Right:
    case XK_KP_Right:
        return sim::k_key_right;
    case XK_Return:
    case XK_KP_Enter:
        return sim::k_key_ok;
    case XK_BackSpace:
    case XK_Delete:
    case XK_KP_Delete:
        return sim::k_key_delete;
    case XK_Shift_L:
    case XK_Shift_R:
        return sim::k_key_shift;
    case XK_period:
    case XK_KP_Decimal:
        return sim::k_key_punctuation;
    default:
        return std::nullopt;
    }
}

} // namespace ux::view
