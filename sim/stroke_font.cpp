// SPDX-License-Identifier: MIT
// Glyphs as paths on a grid 6 units tall: M moves, L draws a line, A draws a quarter of an ellipse
// given by its corner and its end.
#include "sim/stroke_font.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <sstream>
#include <string>

namespace ux::sim {

namespace {

constexpr double k_grid_height = 6;
constexpr double k_letter_gap = 2;
constexpr double k_space = 2.4;
constexpr int k_arc_steps = 8;

struct glyph {
    char letter;
    double width;
    const char *path;
};

constexpr std::array k_glyphs = {
    glyph{'A', 4.2, "M 0 6 L 2.1 0 L 4.2 6 M .75 4.1 L 3.45 4.1"},
    glyph{'B', 3.7,
          "M 0 0 L 1.9 0 A 3.4 0 3.4 1.45 A 3.4 2.9 1.9 2.9 L 0 2.9 M 1.9 2.9 "
          "A 3.7 2.9 3.7 4.45 A 3.7 6 1.9 6 L 0 6 L 0 0"},
    glyph{'C', 4.0, "M 4 1.5 A 3.6 0 2.1 0 A 0 0 0 3 A 0 6 2.1 6 A 3.6 6 4 4.5"},
    glyph{'D', 4.0, "M 0 0 L 1.6 0 A 4 0 4 3 A 4 6 1.6 6 L 0 6 L 0 0"},
    glyph{'E', 3.2, "M 3.2 0 L 0 0 L 0 6 L 3.2 6 M 0 2.9 L 2.8 2.9"},
    glyph{'F', 3.2, "M 3.2 0 L 0 0 L 0 6 M 0 2.9 L 2.8 2.9"},
    glyph{'G', 4.2,
          "M 4 1.5 A 3.6 0 2.1 0 A 0 0 0 3 A 0 6 2.1 6 A 4.2 6 4.2 3.9 L 4.2 3.2 "
          "L 2.5 3.2"},
    glyph{'H', 4.0, "M 0 0 L 0 6 M 4 0 L 4 6 M 0 2.9 L 4 2.9"},
    glyph{'I', 0.0, "M 0 0 L 0 6"},
    glyph{'J', 2.8, "M 2.8 0 L 2.8 4.4 A 2.8 6 1.4 6 A 0 6 0 4.6"},
    glyph{'K', 3.8, "M 0 0 L 0 6 M 3.6 0 L 0 3.7 M 1.4 2.4 L 3.8 6"},
    glyph{'L', 3.0, "M 0 0 L 0 6 L 3 6"},
    glyph{'M', 4.8, "M 0 6 L 0 0 L 2.4 4 L 4.8 0 L 4.8 6"},
    glyph{'N', 4.0, "M 0 6 L 0 0 L 4 6 L 4 0"},
    glyph{'O', 4.6, "M 2.3 0 A 4.6 0 4.6 3 A 4.6 6 2.3 6 A 0 6 0 3 A 0 0 2.3 0"},
    glyph{'P', 3.7, "M 0 6 L 0 0 L 1.9 0 A 3.7 0 3.7 1.7 A 3.7 3.4 1.9 3.4 L 0 3.4"},
    glyph{'Q', 4.6,
          "M 2.3 0 A 4.6 0 4.6 3 A 4.6 6 2.3 6 A 0 6 0 3 A 0 0 2.3 0 M 2.9 4.3 L 4.6 6.2"},
    glyph{'R', 3.8,
          "M 0 6 L 0 0 L 1.9 0 A 3.6 0 3.6 1.6 A 3.6 3.2 1.9 3.2 L 0 3.2 M 2 3.2 L 3.8 6"},
    glyph{'S', 3.8,
          "M 3.6 1.3 A 3.6 0 1.9 0 A .2 0 .2 1.5 A .2 2.9 1.9 2.95 A 3.8 3.05 3.8 4.5 "
          "A 3.8 6 1.9 6 A 0 6 0 4.6"},
    glyph{'T', 4.0, "M 0 0 L 4 0 M 2 0 L 2 6"},
    glyph{'U', 4.0, "M 0 0 L 0 4 A 0 6 2 6 A 4 6 4 4 L 4 0"},
    glyph{'V', 4.2, "M 0 0 L 2.1 6 L 4.2 0"},
    glyph{'W', 5.8, "M 0 0 L 1.45 6 L 2.9 .9 L 4.35 6 L 5.8 0"},
    glyph{'X', 4.0, "M 0 0 L 4 6 M 4 0 L 0 6"},
    glyph{'Y', 4.0, "M 0 0 L 2 3 L 4 0 M 2 3 L 2 6"},
    glyph{'Z', 3.8, "M 0 0 L 3.8 0 L 0 6 L 3.8 6"},
    glyph{'0', 3.8, "M 1.9 0 A 3.8 0 3.8 3 A 3.8 6 1.9 6 A 0 6 0 3 A 0 0 1.9 0"},
    glyph{'1', 1.6, "M 0 1.3 L 1.6 0 L 1.6 6"},
    glyph{'2', 3.8, "M .1 1.7 A .1 0 1.9 0 A 3.6 0 3.6 1.7 A 3.6 2.7 2.7 3.5 L 0 6 L 3.8 6"},
    glyph{'3', 3.8,
          "M .2 1.3 A .3 0 1.9 0 A 3.5 0 3.5 1.45 A 3.5 2.9 1.9 2.9 L 1.4 2.9 L 1.9 2.9 "
          "A 3.8 2.9 3.8 4.45 A 3.8 6 1.9 6 A .1 6 0 4.6"},
    glyph{'4', 3.9, "M 2.9 6 L 2.9 0 L 0 4.2 L 3.9 4.2"},
    glyph{'5', 3.8,
          "M 3.4 0 L .6 0 L .3 2.9 A .9 2.2 1.9 2.2 A 3.8 2.2 3.8 4.1 A 3.8 6 1.9 6 "
          "A .2 6 0 4.7"},
    glyph{'6', 3.8,
          "M 3.4 1 A 3 0 2.1 0 A 0 0 0 3.4 L 0 4.1 A 0 6 1.9 6 A 3.8 6 3.8 4.1 "
          "A 3.8 2.3 1.9 2.3 A 0 2.3 0 4.1"},
    glyph{'7', 3.8, "M 0 0 L 3.8 0 L 1.4 6"},
    glyph{'8', 3.8,
          "M 1.9 0 A 3.5 0 3.5 1.45 A 3.5 2.9 1.9 2.9 A .3 2.9 .3 1.45 A .3 0 1.9 0 "
          "M 1.9 2.9 A 3.8 2.9 3.8 4.45 A 3.8 6 1.9 6 A 0 6 0 4.45 A 0 2.9 1.9 2.9"},
    glyph{'9', 3.8,
          "M .4 5 A .8 6 1.7 6 A 3.8 6 3.8 2.6 L 3.8 1.9 A 3.8 0 1.9 0 A 0 0 0 1.9 "
          "A 0 3.7 1.9 3.7 A 3.8 3.7 3.8 1.9"},
    glyph{'.', 0.0, "M 0 5.9 L 0 6"},
    glyph{':', 0.0, "M 0 2.2 L 0 2.3 M 0 5.9 L 0 6"},
    glyph{'/', 2.6, "M 0 6.4 L 2.6 -.4"},
    glyph{'_', 3.2, "M 0 6.4 L 3.2 6.4"},
    glyph{'^', 5.0, "M 0 3 L 2.5 0 L 5 3 L 3.6 3 L 3.6 6 L 1.4 6 L 1.4 3 L 0 3"},
};

// From `from` to `to`, leaving towards `corner` and arriving from it.
void add_arc(std::vector<line_segment> &strokes, point from, point corner, point to) {
    point centre = {from.x + to.x - corner.x, from.y + to.y - corner.y};
    point last = from;
    for (int step = 1; step <= k_arc_steps; ++step) {
        double angle = step * std::numbers::pi / 2 / k_arc_steps;
        double towards_from = std::cos(angle);
        double towards_to = std::sin(angle);
        point next = {
            centre.x + (from.x - centre.x) * towards_from + (to.x - centre.x) * towards_to,
            centre.y + (from.y - centre.y) * towards_from + (to.y - centre.y) * towards_to};
        strokes.push_back({last, next});
        last = next;
    }
}

std::vector<line_segment> strokes_of(const glyph &shape) {
    std::vector<line_segment> strokes;
    std::istringstream path{std::string(shape.path)};
    point pen;
    for (char command = 0; path >> command;) {
        point corner;
        point next;
        if (command == 'A') {
            path >> corner.x >> corner.y;
        }
        path >> next.x >> next.y;
        if (command == 'L') {
            strokes.push_back({pen, next});
        } else if (command == 'A') {
            add_arc(strokes, pen, corner, next);
        }
        pen = next;
    }
    return strokes;
}

} // namespace

lettering strokes_for(std::string_view text, double height) {
    const double scale = height / k_grid_height;
    lettering result;
    double pen = 0;
    for (char letter : text) {
        auto shape = std::ranges::find(k_glyphs, letter, &glyph::letter);
        if (shape == k_glyphs.end()) {
            pen += letter == ' ' ? k_space * scale : 0;
            continue;
        }
        for (const line_segment &line : strokes_of(*shape)) {
            result.strokes.push_back({{pen + line.from.x * scale, line.from.y * scale},
                                      {pen + line.to.x * scale, line.to.y * scale}});
        }
        pen += shape->width * scale;
        result.width = pen;
        pen += k_letter_gap * scale;
    }
    return result;
}

void write_from(canvas &on, point left, std::string_view text, const pen &with) {
    lettering letters = strokes_for(text, with.height);
    for (line_segment &line : letters.strokes) {
        for (point *end : {&line.from, &line.to}) {
            end->x += left.x;
            end->y += left.y - with.height / 2;
        }
    }
    on.draw_lines(letters.strokes, with.thickness, with.ink);
}

void write_centred(canvas &on, point centre, std::string_view text, const pen &with) {
    const double width = strokes_for(text, with.height).width;
    write_from(on, {centre.x - width / 2, centre.y}, text, with);
}

} // namespace ux::sim
