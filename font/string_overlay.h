// SPDX-License-Identifier: MIT
// Laying a row of a rendered string over a row of the screen: pixels of value 0 are transparent.
#ifndef UX_FONT_STRING_OVERLAY_H
#define UX_FONT_STRING_OVERLAY_H

#include <cstdint>

namespace ux {

template <class Word>
inline void lay_over(Word *screen, const Word *string, uint32_t count) {
    for (uint32_t i = 0; i < count; i++)
        if (string[i] != 0)
            screen[i] = string[i];
}

} // namespace ux

#endif
