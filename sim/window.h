// SPDX-License-Identifier: MIT
// The window of a run: the host's screen beside a clickable remote control.
#pragma once

#include "sim/runner.h"

#include <memory>
#include <string>

namespace ux::sim {

// `name` becomes part of the title. The screen outlives the window. Throws failure when there is no
// display.
std::unique_ptr<viewer> open_window(const shared_screen &screen, const std::string &name);

} // namespace ux::sim
