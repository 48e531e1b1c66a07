// SPDX-License-Identifier: MIT
// Whether two memories share a byte: loops over groups of pixels must keep away from those, since
// there the order of single loads and stores shows.
#ifndef UX_GRAPHICS_OVERLAP_H
#define UX_GRAPHICS_OVERLAP_H

#include <cstdint>

namespace ux {

inline bool overlap(const void *a, int64_t a_bytes, const void *b, int64_t b_bytes) {
    const auto a_start = reinterpret_cast<uintptr_t>(a);
    const auto b_start = reinterpret_cast<uintptr_t>(b);
    return a_start < b_start + static_cast<uintptr_t>(b_bytes) &&
           b_start < a_start + static_cast<uintptr_t>(a_bytes);
}

} // namespace ux

#endif
