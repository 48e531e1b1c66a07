// SPDX-License-Identifier: MIT
// The command line of ux-inputd.
#pragma once

#include "sim/input_queue.h"
#include "tools/inputd_events.h"
#include "tools/inputd_keys.h"

#include <optional>
#include <string>
#include <vector>

namespace ux::inputd {

struct inputd_request {
    std::string queue_path = sim::k_queue_default_path; // names the input queue
    key_table keys;
    std::optional<screen_size> screen; // nothing = that of /dev/fb0
    bool grab = false;                 // nobody else gets the devices' events
    bool verbose = false;
    std::vector<std::string> devices; // empty = all, those that come later too
};

// Either a request or only a text for standard output.
struct inputd_command {
    std::optional<inputd_request> request;
    std::string text;
};

// Throws usage_failure.
inputd_command parse_inputd_command(int argc, char **argv);

} // namespace ux::inputd
