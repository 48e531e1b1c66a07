// SPDX-License-Identifier: MIT
// Pictures of the screen as PNG files.
#pragma once

#include "sim/screen.h"

#include <string>

namespace ux::sim {

// Writes the screen to `path`; an existing file is replaced at once or, on failure, stays.
// Throws failure.
void write_shot(const shared_screen &screen, const std::string &path);

} // namespace ux::sim
