// SPDX-License-Identifier: MIT
// The command line of ux-view.
#pragma once

#include "tools/view_listener.h"

#include <optional>
#include <string>
#include <vector>

namespace ux::view {

struct view_request {
    std::string source = "/dev/fb0";    // a framebuffer device or a simulator's folder
    std::string queue_path;             // names the input queue; empty = as the source has it
    std::vector<std::string> addresses; // to listen at, at most two; empty = both loopbacks
    std::string password;               // empty = none is asked for
    port_choice port = {5900, 100};     // of VNC and of the page's WebSocket
    port_choice web_port = {5800, 100}; // of the browser page
    std::string web_root = "/usr/share/novnc"; // the page's files; empty = no page
    bool web_wanted = false; // asked for: it is an error when the page is not there
};

// Either a request or only a text for standard output.
struct view_command {
    std::optional<view_request> request;
    std::string text;
};

// Throws usage_failure, or failure for a password file that cannot be read.
view_command parse_view_command(int argc, char **argv);

} // namespace ux::view
