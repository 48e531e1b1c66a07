// SPDX-License-Identifier: MIT
// The screen's memory as one row of elements. Everything painted is bounded by element index, not
// by column, so a run past the row's end goes on in the next row and nothing outside is touched.
#ifndef UX_GRAPHICS_SURFACE_H
#define UX_GRAPHICS_SURFACE_H

#include "graphics/pixel.h"

namespace ux {

// Elements that `screen` has in each of its two memories; 0 for an empty screen.
inline int64_t element_count(const ux_screen &screen) {
    if (screen.width <= 0 || screen.height <= 0)
        return 0;
    return int64_t{screen.width} * screen.height;
}

// Elements of `word_bytes` bytes that fit into each memory: fewer than pixels when the device's
// pixels are smaller than the format's.
inline int64_t elements_that_fit(const ux_screen &screen, int64_t word_bytes) {
    const int64_t count = element_count(screen);
    return screen.bytes_per_pixel < word_bytes ? count * screen.bytes_per_pixel / word_bytes
                                               : count;
}

template <class Pixel>
struct surface {
    typename Pixel::word *pixels; // element 0
    int64_t width;                // elements per row
    int64_t count;                // elements in all; 0 = nothing may be touched

    int64_t index(int64_t x, int64_t y) const { return y * width + x; }
};

// The memory that boxes, lines and pictures are painted to.
template <class Pixel>
inline surface<Pixel> drawing_surface(const ux_screen &screen) {
    return {reinterpret_cast<typename Pixel::word *>(screen.buf), screen.width,
            screen.buf ? elements_that_fit(screen, sizeof(typename Pixel::word)) : 0};
}

// The memory that software text is painted to.
template <class Pixel>
inline surface<Pixel> text_surface(const ux_screen &screen) {
    return {reinterpret_cast<typename Pixel::word *>(screen.fb), screen.width,
            screen.fb ? elements_that_fit(screen, sizeof(typename Pixel::word)) : 0};
}

} // namespace ux

#endif
