// SPDX-License-Identifier: MIT
// The note in a run's folder by which a viewer finds the simulated screen: a file of three lines,
// "<width>x<height>x<bits per pixel>", the path of the screen's memory, the path of the queue.
#pragma once

#include "sim/screen.h"

#include <string>

namespace ux::sim {

constexpr const char *k_screen_note = "screen";         // the file's name
constexpr const char *k_new_screen_note = "screen.new"; // while it is written

struct screen_note {
    screen_shape shape;
    std::string memory; // "/proc/<process>/fd/<number>"
    int process = 0;    // the simulator's
    std::string queue_path;
};

// "<width>x<height>x<bits per pixel>".
std::string shape_text(const screen_shape &shape);

// Throws failure.
void write_screen_note(const std::string &folder, const screen_note &note);

// Throws failure when there is none or it is not well-formed.
screen_note read_screen_note(const std::string &folder);

} // namespace ux::sim
