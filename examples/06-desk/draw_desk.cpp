// SPDX-License-Identifier: MIT
// Draws pictures into a folder, laid out as the examples': the clock's face, the tile of a
// calendar's day, what lies behind a message. Every run gives the same bytes.
#include <cstdio>
#include <cstdlib>

#include "picture_file.h"

namespace {

const color k_panel = hex(0x16233A); // what the face stands on
const color k_paper = hex(0xF7F4EC);
const color k_ink = hex(0x1E2F4A);

// `shape` over `behind` where `outside` is negative; edges are soft by `edge`.
color filled(const color &behind, const color &shape, double outside, double edge) {
    return mix(shape, behind, smooth(-edge, edge, outside));
}

// How far a place is from a stroke that runs from `inner` to `outer` of the middle, `half_width` to
// both sides, in the direction (sine, cosine) clockwise from the top.
double outside_stroke(const point &from_middle, const point &direction, double inner, double outer,
                      double half_width) {
    const double along = from_middle.x * direction.x - from_middle.y * direction.y;
    const double across = from_middle.x * direction.y + from_middle.y * direction.x;
    return std::max({inner - along, along - outer, std::abs(across) - half_width});
}

// The direction one minute further: turned by 6 degrees.
point next_minute(const point &direction) {
    constexpr double k_sine = 0.10452846326765347;
    constexpr double k_cosine = 0.99452189536827333;
    return {direction.x * k_cosine + direction.y * k_sine,
            direction.y * k_cosine - direction.x * k_sine};
}

// Opaque to its corners: the clock lays it over its own last picture.
color clock_face(point at) {
    constexpr double edge = 0.002;
    constexpr double radius = 0.47;
    const point middle = {0.5, 0.5};
    const double away = distance(at, middle);
    color seen = filled(k_panel, mix(hex(0x5B7CB0), hex(0x34507A), at.y), away - 0.497, edge);
    seen = filled(seen, mix(k_paper, hex(0xE4DFD2), at.y), away - radius, edge);
    const point from_middle = {at.x - middle.x, at.y - middle.y};
    point direction = {0, 1};
    for (int minute = 0; minute < 60; minute++, direction = next_minute(direction)) {
        const bool is_hour = minute % 5 == 0;
        const bool is_quarter = minute % 15 == 0;
        const double inner = is_quarter ? 0.365 : is_hour ? 0.395 : 0.43;
        const double half_width = is_quarter ? 0.011 : is_hour ? 0.007 : 0.003;
        seen = filled(seen, k_ink, outside_stroke(from_middle, direction, inner, 0.45, half_width),
                      edge);
    }
    return filled(seen, k_ink, away - 0.022, edge);
}

// A white tile with a soft shadow, a little wider than high.
color day_tile(point at) {
    constexpr double edge = 0.012;
    const point middle = {94.0 / 88 / 2, 0.49};
    const point half = {94.0 / 88 / 2 - 0.02, 0.465};
    const double shadow = outside_box(at, {middle.x, middle.y + 0.025}, half, 0.10);
    const double outside = outside_box(at, middle, half, 0.10);
    color seen = filled(hex(0x8C97A8), mix(hex(0xFFFFFF), hex(0xE9EEF6), at.y), outside, edge);
    seen.alpha = outside < edge ? 1 - smooth(-edge, edge, outside) : 0;
    seen.alpha = std::max(seen.alpha, 0.35 * (1 - smooth(-edge, 2 * edge, shadow)));
    return seen;
}

// A dark sheet that is lighter at its top, with a yellow stripe.
color message(point at) {
    const color sheet = mix(hex(0x27416B), hex(0x16233A), at.y);
    return filled(sheet, hex(0xFFD54A), std::abs(at.x - 0.05) - 0.0125, 0.002);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: %s folder\n", argv[0]);
        return EXIT_FAILURE;
    }
    const std::filesystem::path folder = std::filesystem::path(argv[1]) / "device/orbo/images";
    write_png(folder / "clock-face.png", paint(clock_face, 360, 360, 3));
    write_png(folder / "black.png", paint(day_tile, 94, 88, 4));
    write_png(folder / "MSGbgimage.png", paint(message, 640, 320, 3));
    return EXIT_SUCCESS;
}
