// SPDX-License-Identifier: MIT
// The pictures of the buttons: a tile with round corners and a white sign.
#include "scene.h"

namespace {

constexpr double k_edge = 0.006; // half the width of a soft edge

// `shape` over `behind` where `outside` is negative.
color filled(const color &behind, const color &shape, double outside) {
    return mix(shape, behind, smooth(-k_edge, k_edge, outside));
}

const color k_white = hex(0xFFFFFF);

color tile(point at, bool focused) {
    const double outside = outside_box(at, {0.5, 0.5}, {0.48, 0.48}, 0.14);
    const color face =
        focused ? mix(hex(0x3C7BE0), hex(0x1D4CA0), at.y) : mix(hex(0x2A3F60), hex(0x1A2941), at.y);
    const color line = focused ? hex(0xFFD54A) : hex(0x4A6894);
    color seen = filled(line, face, outside + (focused ? 0.045 : 0.02));
    seen.alpha = 1 - smooth(-k_edge, k_edge, outside);
    return seen;
}

// `sign` laid over a tile, which keeps its outline.
color on_tile(const color &tile_color, color sign) {
    sign.alpha = tile_color.alpha;
    return sign;
}

} // namespace

color show_icon(point at, bool focused) {
    const color behind = tile(at, focused);
    color seen = behind;
    const double back = outside_box(at, {0.56, 0.40}, {0.25, 0.18}, 0.03);
    seen = filled(seen, mix(behind, k_white, 0.55), std::abs(back) - 0.018);
    const point middle = {0.46, 0.54};
    const double front = outside_box(at, middle, {0.27, 0.20}, 0.03);
    seen = filled(seen, behind, front - 0.05);
    if (front < 0) {
        const double hill = std::min(at.y - 0.72 + 1.1 * (0.16 - std::abs(at.x - 0.38)),
                                     at.y - 0.70 + 0.9 * (0.13 - std::abs(at.x - 0.60)) + 0.02);
        const double left = at.y - (0.74 - 1.1 * (0.20 - std::abs(at.x - 0.38)));
        const double right = at.y - (0.74 - 0.9 * (0.15 - std::abs(at.x - 0.60)));
        seen = filled(seen, k_white, -std::max({left, right, hill}));
        seen = filled(seen, k_white, distance(at, {0.60, 0.44}) - 0.045);
    }
    seen = filled(seen, k_white, std::abs(front) - 0.02);
    return on_tile(behind, seen);
}

color tv_icon(point at, bool focused) {
    const color behind = tile(at, focused);
    const double screen = outside_box(at, {0.5, 0.44}, {0.32, 0.21}, 0.04);
    color seen = filled(behind, k_white, std::abs(screen) - 0.022);
    seen = filled(seen, k_white, outside_box(at, {0.5, 0.76}, {0.18, 0.022}, 0.02));
    seen = filled(seen, k_white, outside_box(at, {0.5, 0.71}, {0.03, 0.05}, 0.005));
    const double arrow = std::max(0.43 - at.x, std::abs(at.y - 0.44) - (0.60 - at.x) * 0.65);
    return on_tile(behind, filled(seen, k_white, arrow));
}

color leave_icon(point at, bool focused) {
    const color behind = tile(at, focused);
    const point middle = {0.5, 0.53};
    const double ring = std::abs(distance(at, middle) - 0.24) - 0.032;
    const double gap = std::max(std::abs(at.x - middle.x) - 0.09, at.y - middle.y);
    color seen = filled(behind, k_white, std::max(ring, -gap));
    seen = filled(seen, k_white, outside_box(at, {0.5, 0.38}, {0.032, 0.16}, 0.03));
    return on_tile(behind, seen);
}
