// SPDX-License-Identifier: MIT
// The walk of a line over element indexes: which elements, in closed form at any step, so that the
// parts of a line outside the memory are skipped and never change the pixels of the parts inside.
#ifndef UX_GRAPHICS_LINE_H
#define UX_GRAPHICS_LINE_H

#include <cstdint>

namespace ux {

// Bresenham's walk along the longer axis. At step k the element is
//   start + k * major_step + n(k) * minor_step,
// n(k) being the times that error = (deltax >> 1) - deltay - deltay ... fell below 0 in k steps.
struct line_walk {
    int64_t start;      // element of step 0
    int64_t major_step; // elements to the next step
    int64_t minor_step; // elements more when the error falls below 0
    int64_t deltax;     // last step
    int64_t deltay;     // 0..deltax

    // n(k): ceil((k * deltay - (deltax >> 1)) / deltax). Both factors are below 2^32.
    int64_t minor_count(int64_t k) const {
        const uint64_t travelled = static_cast<uint64_t>(k) * static_cast<uint64_t>(deltay);
        const uint64_t first_error = static_cast<uint64_t>(deltax >> 1);
        if (travelled <= first_error)
            return 0;
        const uint64_t divisor = static_cast<uint64_t>(deltax);
        return static_cast<int64_t>((travelled - first_error - 1) / divisor + 1);
    }

    int64_t error(int64_t k) const {
        const uint64_t value =
            static_cast<uint64_t>(deltax >> 1) -
            static_cast<uint64_t>(k) * static_cast<uint64_t>(deltay) +
            static_cast<uint64_t>(minor_count(k)) * static_cast<uint64_t>(deltax);
        return static_cast<int64_t>(value);
    }

    int64_t element(int64_t k) const {
        return start + k * major_step + minor_count(k) * minor_step;
    }
};

inline int64_t distance(int a, int b) {
    const int64_t d = int64_t{b} - a;
    return d < 0 ? -d : d;
}

// The walk of the line (x0, y0)-(x1, y1) on rows of `width` elements.
inline line_walk make_line_walk(int x0, int y0, int x1, int y1, int64_t width) {
    const bool steep = distance(x0, x1) < distance(y0, y1);
    struct point {
        int major, minor;
    };
    point from = steep ? point{y0, x0} : point{x0, y0};
    point to = steep ? point{y1, x1} : point{x1, y1};
    if (to.major < from.major) {
        const point swapped = from;
        from = to;
        to = swapped;
    }
    const int64_t major_step = steep ? width : 1;
    const int64_t minor_step = steep ? 1 : width;
    return {from.major * major_step + from.minor * minor_step, major_step,
            from.minor < to.minor ? minor_step : -minor_step, distance(from.major, to.major),
            distance(from.minor, to.minor)};
}

} // namespace ux

#endif
