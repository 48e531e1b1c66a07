// SPDX-License-Identifier: MIT
// The command line of ux-sim: what a run is asked to be.
#pragma once

#include "sim/screen.h"
#include "sim/virtual_clock.h"

#include <optional>
#include <string>
#include <vector>

namespace ux::sim {

enum class display_choice { automatic, headless, window };

struct options {
    screen_shape shape;
    display_choice display = display_choice::automatic;
    bool web = false;            // shown in browsers, too
    std::optional<int> web_port; // of the page, 0 = any free one; none = ux-view chooses
    std::string script;          // file, "-" = standard input, empty = none
    std::string shots = ".";     // folder for the pictures
    std::string expect;          // folder of reference pictures; empty = none
    std::string record;          // file to write a session's script to; empty = none
    std::string root;            // stands in for the device's folders; empty = none
    std::string queue_path;      // names the queue; empty = the run's own folder
    int timeout_s = 0;           // of the whole run; 0 = none
    bool verbose = false;
    bool virtual_time = false;
    int64_t first_second = k_first_second; // virtual time begins there, seconds since 1970
    int stall_s = 10;                      // real time for which virtual time may stand still
    std::vector<std::string> host;         // program and arguments
};

// What the command line asks for: either a run, or only a text on standard output.
struct command_line {
    std::optional<options> run;
    std::string text;
};

// Throws usage_failure.
command_line parse_command_line(int argc, char **argv);

} // namespace ux::sim
