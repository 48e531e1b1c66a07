// SPDX-License-Identifier: MIT
// Filling runs of elements with one word, as fast as the C library fills memory.
#ifndef UX_GRAPHICS_FILL_H
#define UX_GRAPHICS_FILL_H

#include "graphics/pixel.h"

#include <cwchar>

namespace ux {

static_assert(sizeof(wchar_t) == sizeof(uint32_t), "wmemset() fills 32-bit words");

// Stores `value` in `count` elements; the caller clips.
inline void fill(word32 *first, int64_t count, uint32_t value) {
    if (reinterpret_cast<uintptr_t>(first) % alignof(wchar_t) == 0) {
        wmemset(reinterpret_cast<wchar_t *>(first), static_cast<wchar_t>(value),
                static_cast<size_t>(count));
        return;
    }
    for (int64_t i = 0; i < count; i++)
        first[i] = value;
}

inline void fill(word16 *first, int64_t count, uint16_t value) {
    if (count > 0 && reinterpret_cast<uintptr_t>(first) % sizeof(uint32_t) != 0) {
        *first++ = value;
        count--;
    }
    fill(reinterpret_cast<word32 *>(first), count / 2, value * 0x10001u);
    if (count % 2 > 0)
        first[count - 1] = value;
}

} // namespace ux

#endif
