// SPDX-License-Identifier: MIT
// The command line of ux-remote.
#pragma once

#include "sim/input_queue.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace ux::sim {

// A host loses a message that arrives while it still reads the one before, and looks at its input
// every 10 ms.
constexpr std::chrono::milliseconds k_default_pace{50};

struct timed_message {
    input_message message;
    std::chrono::milliseconds pause; // before it, when another one went before
};

struct remote_request {
    std::string queue_path = k_queue_default_path;
    std::vector<timed_message> messages;
};

// Either messages to send or only a text for standard output.
struct remote_command {
    std::optional<remote_request> request;
    std::string text;
};

// Throws usage_failure, or failure for a text that cannot be typed.
remote_command parse_remote_command(int argc, char **argv);

} // namespace ux::sim
