// SPDX-License-Identifier: MIT
// The signals that end a program, taken between two steps of its work.
#pragma once

#include <csignal>

namespace ux::sim {

// Blocks SIGINT, SIGTERM and SIGHUP; the result is the mask under which to wait, in which they
// are never blocked. A broken pipe is an error of its writer from here on, and no signal.
sigset_t hold_end_signals();

// The signal that came, or 0.
int end_signal();

} // namespace ux::sim
