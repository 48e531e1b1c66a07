// SPDX-License-Identifier: MIT
// Distance functions and their coverage of pixels.
#include "sim/canvas.h"

#include <algorithm>
#include <cmath>

namespace ux::sim {

namespace {

double rounded_distance(point at, const rect &area, double radius) {
    point centre = area.centre();
    double dx = std::abs(at.x - centre.x) - (area.width / 2 - radius);
    double dy = std::abs(at.y - centre.y) - (area.height / 2 - radius);
    double outside = std::hypot(std::max(dx, 0.0), std::max(dy, 0.0));
    return outside + std::min(std::max(dx, dy), 0.0) - radius;
}

double segment_distance(point at, const line_segment &line) {
    double lx = line.to.x - line.from.x;
    double ly = line.to.y - line.from.y;
    double px = at.x - line.from.x;
    double py = at.y - line.from.y;
    double length = lx * lx + ly * ly;
    double along = length > 0 ? std::clamp((px * lx + py * ly) / length, 0.0, 1.0) : 0;
    return std::hypot(px - along * lx, py - along * ly);
}

uint8_t mix(double from, double to, double part) {
    return static_cast<uint8_t>(std::lround(from + (to - from) * part));
}

colour mix(colour from, colour to, double part) {
    return {mix(from.red, to.red, part), mix(from.green, to.green, part),
            mix(from.blue, to.blue, part)};
}

uint32_t word_of(colour ink) {
    return 0xff000000u | static_cast<uint32_t>(ink.red) << 16 |
           static_cast<uint32_t>(ink.green) << 8 | ink.blue;
}

rect grown(const rect &area, double by) {
    return {area.x - by, area.y - by, area.width + 2 * by, area.height + 2 * by};
}

rect bounds_of(std::span<const line_segment> lines) {
    point low = lines.front().from;
    point high = low;
    for (const line_segment &line : lines) {
        low = {std::min({low.x, line.from.x, line.to.x}),
               std::min({low.y, line.from.y, line.to.y})};
        high = {std::max({high.x, line.from.x, line.to.x}),
                std::max({high.y, line.from.y, line.to.y})};
    }
    return {low.x, low.y, high.x - low.x, high.y - low.y};
}

} // namespace

canvas::canvas(int width, int height, double scale, colour background)
    : m_width(width), m_height(height), m_scale(scale),
      m_pixels(static_cast<size_t>(width) * height, word_of(background)) {}

void canvas::blend(int x, int y, colour ink, double coverage) {
    uint32_t &pixel = m_pixels[static_cast<size_t>(y) * m_width + x];
    colour below = {static_cast<uint8_t>(pixel >> 16), static_cast<uint8_t>(pixel >> 8),
                    static_cast<uint8_t>(pixel)};
    pixel = word_of(mix(below, ink, coverage));
}

// An edge is one pixel wide, or `softness` units for shadows: coverage falls from 1 to 0 over it.
template <class Distance, class Ink>
void canvas::paint(const rect &area, double softness, double strength, Distance distance, Ink ink) {
    double edge = std::max(softness * m_scale, 1.0);
    rect touched = grown(area, edge / m_scale);
    int left = std::max(static_cast<int>(std::floor(touched.x * m_scale)), 0);
    int top = std::max(static_cast<int>(std::floor(touched.y * m_scale)), 0);
    int right =
        std::min(static_cast<int>(std::ceil((touched.x + touched.width) * m_scale)), m_width);
    int bottom =
        std::min(static_cast<int>(std::ceil((touched.y + touched.height) * m_scale)), m_height);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            point at = {(x + 0.5) / m_scale, (y + 0.5) / m_scale};
            double coverage = std::clamp(0.5 - distance(at) * m_scale / edge, 0.0, 1.0);
            if (coverage > 0) {
                blend(x, y, ink(at), coverage * strength);
            }
        }
    }
}

template <class Distance>
void canvas::paint_shaded(const rect &area, const shade &fill, Distance distance) {
    paint(area, 0, 1, distance, [&](point at) {
        return mix(fill.top, fill.bottom, std::clamp((at.y - area.y) / area.height, 0.0, 1.0));
    });
}

void canvas::fill_rounded(const rect &area, double radius, const shade &fill) {
    paint_shaded(area, fill, [&](point at) { return rounded_distance(at, area, radius); });
}

void canvas::fill_shadow(const rect &area, double radius, double softness, double strength) {
    paint(
        area, softness, strength, [&](point at) { return rounded_distance(at, area, radius); },
        [](point) { return colour{}; });
}

void canvas::fill_disc(point centre, double radius, const shade &fill) {
    rect area = {centre.x - radius, centre.y - radius, 2 * radius, 2 * radius};
    paint_shaded(area, fill,
                 [&](point at) { return std::hypot(at.x - centre.x, at.y - centre.y) - radius; });
}

void canvas::fill_ring_quarter(point centre, double inner, double outer, int dx, int dy,
                               const shade &fill) {
    rect area = {centre.x - outer, centre.y - outer, 2 * outer, 2 * outer};
    paint_shaded(area, fill, [&](point at) {
        double x = at.x - centre.x;
        double y = at.y - centre.y;
        double radius = std::hypot(x, y);
        // The two diagonals: how far the point lies beyond the nearer one.
        double along = x * dx + y * dy;
        double across = std::abs(x * dy) + std::abs(y * dx);
        double beyond = (across - along) / std::sqrt(2.0);
        return std::max({inner - radius, radius - outer, beyond});
    });
}

void canvas::draw_lines(std::span<const line_segment> lines, double thickness, colour ink) {
    if (lines.empty()) {
        return;
    }
    paint(
        grown(bounds_of(lines), thickness / 2), 0, 1,
        [&](point at) {
            double nearest = segment_distance(at, lines.front());
            for (const line_segment &line : lines) {
                nearest = std::min(nearest, segment_distance(at, line));
            }
            return nearest - thickness / 2;
        },
        [ink](point) { return ink; });
}

} // namespace ux::sim
