// SPDX-License-Identifier: MIT
// What the drawn pictures are made of: colours, noise that is the same everywhere, soft shapes.
// Only + - * / and square roots are used, so that every machine draws the same bytes.
#ifndef UX_EXAMPLES_SCENE_H
#define UX_EXAMPLES_SCENE_H

#include <algorithm>
#include <cmath>
#include <cstdint>

struct color {
    double red = 0, green = 0, blue = 0; // 0..1
    double alpha = 1;
};

// A place in a picture: x from 0 at the left edge, y from 0 at the top to 1 at the bottom; x is as
// long as y.
struct point {
    double x = 0, y = 0;
};

inline color hex(uint32_t rgb) {
    constexpr double full = 255;
    return {(rgb >> 16 & 0xFF) / full, (rgb >> 8 & 0xFF) / full, (rgb & 0xFF) / full};
}

// `from` at t = 0, `to` at t = 1.
inline color mix(const color &from, const color &to, double t) {
    const double s = std::clamp(t, 0.0, 1.0);
    return {from.red + (to.red - from.red) * s, from.green + (to.green - from.green) * s,
            from.blue + (to.blue - from.blue) * s, from.alpha + (to.alpha - from.alpha) * s};
}

// 0 up to `low`, 1 from `high` on, a smooth step between.
inline double smooth(double low, double high, double x) {
    const double t = std::clamp((x - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

// A number from 0 to 1 for a pair of integers.
inline double hash(int n, uint32_t seed) {
    uint32_t h = static_cast<uint32_t>(n) * 0x9E3779B1u ^ seed * 0x85EBCA77u;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    h = (h ^ h >> 12) * 0x297A2D39u;
    return (h >> 8) / 16777216.0;
}

// Smooth hills of height 0..1, one for each whole x.
inline double noise(double x, uint32_t seed) {
    const double whole = std::floor(x);
    const int n = static_cast<int>(whole);
    return hash(n, seed) + (hash(n + 1, seed) - hash(n, seed)) * smooth(0, 1, x - whole);
}

// Hills upon hills, 0..1.
inline double ridge(double x, uint32_t seed) {
    return (noise(x, seed) * 8 + noise(x * 2.1, seed + 1) * 4 + noise(x * 4.3, seed + 2) * 2 +
            noise(x * 9.7, seed + 3)) /
           15;
}

inline double distance(const point &a, const point &b) {
    return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

// How far a place is outside a box with round corners; negative inside.
inline double outside_box(const point &at, const point &middle, const point &half, double corner) {
    const double x = std::abs(at.x - middle.x) - half.x + corner;
    const double y = std::abs(at.y - middle.y) - half.y + corner;
    const double beyond_x = std::max(x, 0.0);
    const double beyond_y = std::max(y, 0.0);
    return std::sqrt(beyond_x * beyond_x + beyond_y * beyond_y) + std::min(std::max(x, y), 0.0) -
           corner;
}

// The landscapes; each gives the colour of a place. Pictures are 16:9, so x goes up to 1.78.
color lake(point at);
color dunes(point at);
color coast(point at);
color night(point at);
color backdrop(point at);

// The button pictures, square. A focused one is brighter and has a bright border.
color show_icon(point at, bool focused);
color tv_icon(point at, bool focused);
color leave_icon(point at, bool focused);

#endif
