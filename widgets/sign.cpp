// SPDX-License-Identifier: MIT
// Measuring of signs; see sign.h.

#include "widgets/sign.h"

#include "ux.h"

#include <algorithm>

namespace ux {
namespace {

constexpr int k_largest_size = 8192; // keeps the search short in a widget of any height

} // namespace

// What can not be measured takes no room: the engine has told why.
sign_cell measure_sign(char16_t sign, int size) {
    sign_cell cell = {size, 0, 0};
    if (ux_get_char_size(sign, size, &cell.width, &cell.height) != 0)
        return {size, 0, 0};
    return cell;
}

sign_cell fit_sign(int height) {
    sign_cell cell = {};
    for (int size = std::min(height, k_largest_size); size >= 1; size--) {
        cell = measure_sign(u'<', size);
        if (cell.height <= static_cast<uint32_t>(height))
            break;
    }
    return cell;
}

} // namespace ux
