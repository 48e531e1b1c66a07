// SPDX-License-Identifier: MIT
// The lettering of the remote control: capitals, digits and a few signs as strokes of a round pen.
#pragma once

#include "sim/canvas.h"

#include <string_view>
#include <vector>

namespace ux::sim {

struct lettering {
    std::vector<line_segment> strokes; // top left of the text at (0, 0)
    double width = 0;
};

// The strokes of `text` with capitals `height` units tall. Letters the font lacks are left out;
// '^' is an upward arrow.
lettering strokes_for(std::string_view text, double height);

struct pen {
    double height;    // of capitals
    double thickness; // of strokes
    colour ink;
};

// Text with its middle at `centre`.
void write_centred(canvas &on, point centre, std::string_view text, const pen &with);

// Text that begins at `left`, half of its height above it.
void write_from(canvas &on, point left, std::string_view text, const pen &with);

} // namespace ux::sim
