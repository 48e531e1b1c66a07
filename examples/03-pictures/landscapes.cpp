// SPDX-License-Identifier: MIT
// The five landscapes.
#include "scene.h"

namespace {

constexpr double k_width = 16.0 / 9;

// Three colours from the top (0) over the middle to the bottom (1).
color three(const color &top, const color &middle, const color &bottom, double t) {
    return t < 0.5 ? mix(top, middle, t * 2) : mix(middle, bottom, t * 2 - 1);
}

// A light and its glow over the sky.
color with_light(const color &sky, const point &at, const point &place, double radius,
                 const color &light, double glow) {
    const double far = distance(at, place);
    const double t = std::max(0.0, 1 - far / glow);
    const color hazy = mix(sky, light, t * t * 0.6);
    return mix(light, hazy, smooth(radius - 0.002, radius + 0.002, far));
}

constexpr double k_shore = 0.60;

color evening(point at) {
    const color sky =
        three(hex(0x27265A), hex(0xB2607F), hex(0xFFB469), std::clamp(at.y / k_shore, 0.0, 1.0));
    color seen = with_light(sky, at, {1.16, 0.44}, 0.05, hex(0xFFF0C8), 0.7);
    constexpr int ranges = 4;
    for (int i = 0; i < ranges; i++) {
        const double height = 0.34 - 0.075 * i;
        const double top =
            k_shore - height * (0.25 + ridge(at.x * (2.2 + i) + i * 5, 11u + 7u * i)) + 0.02;
        const color haze = mix(hex(0xC07A86), hex(0x1C1A38), (i + 0.6) / ranges);
        const color mountain = mix(haze, mix(haze, hex(0xFFB080), 0.35), (at.y - top) / height);
        seen = mix(seen, mountain, smooth(top - 0.0012, top + 0.0012, at.y));
    }
    return seen;
}

// How dark the spruces at the shore are here: 1 = all.
double spruces(point at) {
    constexpr int count = 13;
    double dark = smooth(0, 0.02, at.y - 0.95 - 0.02 * noise(at.x * 6, 77));
    for (int i = 0; i < count; i++) {
        const bool left = i < 8;
        const double x = left ? 0.02 + 0.075 * i + 0.03 * hash(i, 5) : 1.4 + 0.075 * (i - 8);
        const double height = (left ? 0.46 - 0.035 * i : 0.16 + 0.045 * (i - 8)) * //
                              (0.8 + 0.4 * hash(i, 6));
        const double down = (at.y - (0.98 - height)) / height;
        if (down < 0 || down > 1)
            continue;
        const double branch = down * 9 - std::floor(down * 9);
        const double half = 0.085 * height / 0.4 * down * (0.55 + 0.45 * branch) + 0.001;
        dark = std::max(dark, smooth(half + 0.0015, half - 0.0015, std::abs(at.x - x)));
    }
    return dark;
}

} // namespace

color lake(point at) {
    color seen = evening(at);
    if (at.y > k_shore) {
        const double depth = at.y - k_shore;
        const double wave = noise(at.y * 130, 3) - 0.5 + 0.6 * (noise(at.y * 310, 4) - 0.5);
        seen = evening({at.x + wave * depth * 0.09, k_shore - depth * 1.25});
        seen = mix(seen, hex(0x1B2148), 0.22 + depth);
        seen = mix(seen, hex(0xFFD9A0), 0.25 * smooth(0.02, 0, depth));
    }
    return mix(seen, hex(0x0C0D1E), spruces(at));
}

color dunes(point at) {
    color seen = three(hex(0x3E7CB4), hex(0x9CC4DA), hex(0xF6E3BE), at.y / 0.55);
    seen = with_light(seen, at, {0.36, 0.17}, 0.042, hex(0xFFFBEA), 0.5);
    constexpr int count = 5;
    for (int i = 0; i < count; i++) {
        const auto crest = [i](double x) {
            return 0.40 + 0.115 * i - 0.16 * noise(x * (1.1 + 0.25 * i) + 3.3 * i, 40u + i) -
                   0.02 * noise(x * 5 + i, 60u + i);
        };
        const double top = crest(at.x);
        if (at.y < top - 0.002)
            continue;
        // A dune is lit where it rises towards the right, away from the sun, and darker below.
        const double slope = (crest(at.x - 0.02) - crest(at.x + 0.02)) / 0.04;
        const double lit = smooth(-0.25, 0.2, slope - 0.5 * (at.y - top));
        const double near = static_cast<double>(i) / count;
        color sand = mix(mix(hex(0xC08A5C), hex(0x8A4B2C), near),
                         mix(hex(0xF5D49A), hex(0xF0AE5A), near), lit);
        const double bend = at.x * 2 + 0.3 * noise(at.x * 7, 90u + i);
        const double ripple = noise((at.y - top) * (130 - 16 * i) + bend * 4, 70u + i) - 0.5;
        sand = mix(sand, ripple > 0 ? hex(0xFFE2B0) : hex(0x6E3A20), std::abs(ripple) * 0.10);
        seen = mix(seen, sand, smooth(top - 0.0012, top + 0.0012, at.y));
    }
    return seen;
}

namespace {

color over_sea(point at) {
    color seen = three(hex(0x2F7FC1), hex(0x7DB9DF), hex(0xDDEFF5), at.y / 0.52);
    constexpr struct {
        double x, y, size;
    } clouds[] = {{0.30, 0.20, 0.13}, {0.43, 0.17, 0.10}, {0.55, 0.21, 0.11},
                  {1.05, 0.31, 0.08}, {1.15, 0.30, 0.10}, {0.95, 0.32, 0.06}};
    for (const auto &cloud : clouds) {
        const point flat = {cloud.x + (at.x - cloud.x) * 0.62, at.y};
        const double far = distance(flat, {cloud.x, cloud.y}) / cloud.size;
        seen = mix(seen, hex(0xFFFFFF), 0.75 * smooth(1, 0.1, far));
    }
    constexpr double horizon = 0.52;
    if (at.y > horizon) {
        const double depth = (at.y - horizon) / (1 - horizon);
        const color sea = three(hex(0x4C9FC0), hex(0x1F7C9C), hex(0x0D5570), depth);
        const double wave = noise(at.y * 160 / (0.3 + depth) + noise(at.x * 3, 21) * 2, 22);
        seen = mix(sea, hex(0xBFE6EC), 0.25 * smooth(0.75, 1, wave) * (1 - 0.5 * depth));
    }
    return seen;
}

// A tower with stripes on the cliff.
color with_tower(const color &behind, point at) {
    constexpr double middle = 1.42;
    constexpr double top = 0.20;
    constexpr double foot = 0.66;
    const double down = (at.y - top) / (foot - top);
    const double from_middle = at.x - middle;
    color seen = behind;
    if (down > 0 && down < 1) {
        const double half = 0.028 + 0.02 * down;
        const double bands = down * 5;
        const bool red = static_cast<int>(bands) % 2 == 1;
        const color wall = mix(red ? hex(0xC8362E) : hex(0xF6F3EC), hex(0x40354A),
                               0.45 * smooth(-half, half, from_middle));
        seen = mix(seen, wall, smooth(half + 0.0015, half - 0.0015, std::abs(from_middle)));
    }
    const double gallery = outside_box(at, {middle, top}, {0.045, 0.008}, 0.004);
    const double lantern = outside_box(at, {middle, top - 0.035}, {0.022, 0.035}, 0.004);
    const double roof = std::abs(from_middle) - (at.y - (top - 0.105)) * 0.9;
    seen = mix(hex(0xFFE9A8), seen, smooth(-0.001, 0.001, lantern));
    seen = mix(hex(0x2B2B3A), seen, smooth(-0.001, 0.001, gallery));
    if (at.y > top - 0.105 && at.y < top - 0.066)
        seen = mix(hex(0xB02A26), seen, smooth(-0.001, 0.001, roof));
    return seen;
}

} // namespace

color coast(point at) {
    color seen = with_tower(over_sea(at), at);
    const double right = smooth(0.85, 1.35, at.x);
    const double top = 1.1 - 0.47 * right - 0.05 * ridge(at.x * 3, 31) * right;
    const double below = at.y - top;
    const color grass = mix(hex(0x7FA650), hex(0x3E6B34), noise(at.x * 14 + at.y * 22, 33));
    const double crack = ridge(at.x * 9 + noise(at.y * 9, 35), 36);
    const color rock = mix(hex(0xA08C78), hex(0x4A4048), 0.3 + 0.9 * crack * smooth(0, 0.4, below));
    const color land = mix(grass, rock, smooth(0.035, 0.06, below + 0.04 * noise(at.x * 12, 34)));
    const double foam = below + 0.025 + 0.012 * noise(at.x * 20, 37);
    if (at.y > 0.6)
        seen = mix(seen, hex(0xE6F6F6), 0.7 * smooth(0.62, 0.9, at.y) * smooth(0, 0.012, foam));
    return mix(seen, land, smooth(-0.0012, 0.0012, below));
}

color night(point at) {
    color seen = three(hex(0x050A1E), hex(0x122550), hex(0x34508A), at.y / 0.8);
    constexpr double cells = 26; // at most one star in each
    const int column = static_cast<int>(at.x * cells);
    const int row = static_cast<int>(at.y * cells);
    const int cell = row * 1000 + column;
    if (hash(cell, 1) < 0.42) {
        const point star = {(column + 0.2 + 0.6 * hash(cell, 2)) / cells,
                            (row + 0.2 + 0.6 * hash(cell, 3)) / cells};
        const double size = 0.0012 + 0.0022 * hash(cell, 4) * hash(cell, 5);
        seen =
            mix(seen, hex(0xF4F4FF), (1 - at.y) * smooth(size * 2, size * 0.4, distance(at, star)));
    }
    seen = with_light(seen, at, {1.3, 0.24}, 0.085, hex(0xFBF6DC), 0.6);
    seen = mix(seen, hex(0xE2DBBE), 0.8 * smooth(0.028, 0.018, distance(at, {1.28, 0.22})));
    seen = mix(seen, hex(0xE2DBBE), 0.7 * smooth(0.020, 0.012, distance(at, {1.335, 0.265})));
    constexpr int hills = 3;
    for (int i = 0; i < hills; i++) {
        const double top = 0.70 + 0.09 * i - 0.2 * ridge(at.x * (1.6 + i) + 2.0 * i, 50u + 7u * i);
        const color hill = mix(hex(0x1E3260), hex(0x060A18), (i + 1.0) / hills);
        seen = mix(seen, hill, smooth(top - 0.0015, top + 0.0015, at.y));
    }
    // Lights of a village.
    constexpr int lamps = 9;
    for (int i = 0; i < lamps; i++) {
        const point lamp = {0.42 + 0.045 * i + 0.02 * hash(i, 8), 0.83 + 0.04 * hash(i, 9)};
        const double far = distance(at, lamp);
        seen = mix(seen, hex(0xFFC86A), 0.35 * smooth(0.04, 0, far) + smooth(0.006, 0.003, far));
    }
    return seen;
}

color backdrop(point at) {
    color seen = mix(hex(0x10213F), hex(0x0A3B4E), (at.x / k_width + at.y) / 2);
    constexpr struct {
        double x, y, size;
    } rings[] = {{0.1, 1.0, 0.55}, {1.75, 0.05, 0.65}, {1.1, 1.15, 0.45}};
    for (const auto &ring : rings) {
        const double far = distance(at, {ring.x, ring.y}) / ring.size;
        seen = mix(seen, hex(0x4FA8C8), 0.16 * smooth(1.004, 0.996, far));
        seen = mix(seen, hex(0x10213F), 0.35 * smooth(0.704, 0.696, far));
    }
    return seen;
}
