// SPDX-License-Identifier: MIT
// Lines, filled boxes and rectangle outlines in the drawing buffer.

#include "graphics/fill.h"
#include "graphics/line.h"
#include "graphics/surface.h"

#include <algorithm>

namespace ux {
namespace {

// Fills the elements first..last, as far as they exist.
template <class Pixel>
void fill_elements(const surface<Pixel> &target, int64_t first, int64_t last,
                   typename Pixel::word value) {
    first = std::max<int64_t>(first, 0);
    last = std::min(last, target.count - 1);
    if (first <= last)
        fill(target.pixels + first, last - first + 1, value);
}

// The largest integer that is not above a / b; b > 0.
int64_t floor_divided(int64_t a, int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

// Rows that are as long as the screen's touch each other: they are one run. Of narrower boxes only
// the rows with an element in the memory are walked, wherever their columns lie.
template <class Pixel>
void draw_box(const surface<Pixel> &target, int x0, int y0, int x1, int y1,
              typename Pixel::word value) {
    if (x1 < x0 || y1 < y0 || target.count == 0)
        return;
    if (int64_t{x1} - x0 + 1 >= target.width) {
        fill_elements(target, target.index(x0, y0), target.index(x1, y1), value);
        return;
    }
    const int64_t first = std::max<int64_t>(y0, -floor_divided(x1, target.width));
    const int64_t last = std::min<int64_t>(y1, floor_divided(target.count - 1 - x0, target.width));
    for (int64_t y = first; y <= last; y++)
        fill_elements(target, target.index(x0, y), target.index(x1, y), value);
}

// Plots the steps first..last of a walk that lies inside the target.
template <class Pixel>
void plot_inside(const surface<Pixel> &target, const line_walk &walk, int64_t first, int64_t last,
                 typename Pixel::word value) {
    typename Pixel::word *pixel = target.pixels + walk.element(first);
    int64_t error = walk.error(first);
    for (int64_t k = first;; k++) {
        *pixel = value;
        if (k == last)
            return;
        pixel += walk.major_step;
        error -= walk.deltay;
        if (error < 0) {
            pixel += walk.minor_step;
            error += walk.deltax;
        }
    }
}

// Plots the steps first..last as far as they lie inside the target: halves of the walk that lie
// wholly outside are skipped.
template <class Pixel>
void plot(const surface<Pixel> &target, const line_walk &walk, int64_t first, int64_t last,
          typename Pixel::word value) {
    const int64_t minor_first = walk.minor_count(first) * walk.minor_step;
    const int64_t minor_last = walk.minor_count(last) * walk.minor_step;
    const int64_t lowest = walk.start + first * walk.major_step + std::min(minor_first, minor_last);
    const int64_t highest = walk.start + last * walk.major_step + std::max(minor_first, minor_last);
    if (highest < 0 || lowest >= target.count)
        return;
    if (lowest >= 0 && highest < target.count) {
        plot_inside(target, walk, first, last, value);
        return;
    }
    if (first == last)
        return;
    const int64_t middle = first + (last - first) / 2;
    plot(target, walk, first, middle, value);
    plot(target, walk, middle + 1, last, value);
}

template <class Pixel>
void draw_line(const surface<Pixel> &target, int x0, int y0, int x1, int y1,
               typename Pixel::word value) {
    if (target.count == 0)
        return;
    if (y0 == y1) {
        fill_elements(target, target.index(std::min(x0, x1), y0),
                      target.index(std::max(x0, x1), y0), value);
        return;
    }
    const line_walk walk = make_line_walk(x0, y0, x1, y1, target.width);
    plot(target, walk, 0, walk.deltax, value);
}

} // namespace
} // namespace ux

int uxDrawLine(int x0, int y0, int x1, int y1, uint32_t color) noexcept {
    ux::with_pixel(main_screen.color_mode, [=]<class Pixel>(Pixel) {
        ux::draw_line(ux::drawing_surface<Pixel>(main_screen), x0, y0, x1, y1,
                      Pixel::from_color(color));
    });
    return 0;
}

int uxDrawBox(int x0, int y0, int x1, int y1, uint32_t color) noexcept {
    ux::with_pixel(main_screen.color_mode, [=]<class Pixel>(Pixel) {
        ux::draw_box(ux::drawing_surface<Pixel>(main_screen), x0, y0, x1, y1,
                     Pixel::from_color(color));
    });
    return 0;
}

int uxDrawRect(int x0, int y0, int x1, int y1, uint32_t color) noexcept {
    uxDrawLine(x0, y0, x1, y0, color);
    uxDrawLine(x0, y1, x1, y1, color);
    uxDrawLine(x0, y0, x0, y1, color);
    uxDrawLine(x1, y0, x1, y1, color);
    return 0;
}
