// SPDX-License-Identifier: MIT
// A small software canvas with smooth edges: shapes are given by their signed distance (negative
// inside), in units of the caller's choice.
#pragma once

#include "sim/remote_layout.h"

#include <cstdint>
#include <span>
#include <vector>

namespace ux::sim {

struct colour {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
};

struct line_segment {
    point from;
    point to;
};

// From `top` to `bottom` over the height of what is filled.
struct shade {
    colour top;
    colour bottom;
};

class canvas {
  public:
    // `scale`: pixels per unit.
    canvas(int width, int height, double scale, colour background);

    int width() const { return m_width; }
    int height() const { return m_height; }
    // 0xFFrrggbb, rows packed.
    std::span<const uint32_t> pixels() const { return m_pixels; }

    void fill_rounded(const rect &area, double radius, const shade &fill);
    // A shadow that fades over `softness` units around the area; `strength` 0..1.
    void fill_shadow(const rect &area, double radius, double softness, double strength);
    void fill_disc(point centre, double radius, const shade &fill);
    // The quarter of a ring around the direction (dx, dy), one of them 0, the other 1 or -1.
    void fill_ring_quarter(point centre, double inner, double outer, int dx, int dy,
                           const shade &fill);
    void draw_lines(std::span<const line_segment> lines, double thickness, colour ink);

  private:
    template <class Distance, class Ink>
    void paint(const rect &area, double softness, double strength, Distance distance, Ink ink);
    template <class Distance>
    void paint_shaded(const rect &area, const shade &fill, Distance distance);
    void blend(int x, int y, colour ink, double coverage);

    int m_width;
    int m_height;
    double m_scale;
    std::vector<uint32_t> m_pixels;
};

} // namespace ux::sim
