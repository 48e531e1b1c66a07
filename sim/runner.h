// SPDX-License-Identifier: MIT
// One whole run: folder, queue, screen, host, script and window, from start to clean end.
#pragma once

#include "sim/options.h"
#include "sim/script.h"

#include <functional>
#include <memory>

namespace ux::sim {

class shared_screen;

// What a window does for a run. The implementation lives apart, so that a run without one needs no
// graphics library.
class viewer {
  public:
    virtual ~viewer() = default;

    // Handles what the user did; posts keys and touches. False: the window was closed.
    virtual bool handle_input(const std::function<void(const struct input_message &)> &post) = 0;

    // Shows the rows that changed, if any, and whatever input changed.
    virtual void show(const struct row_range &changed) = 0;
};

using viewer_maker = std::function<std::unique_ptr<viewer>(const shared_screen &screen)>;

// Carries out the run and returns the exit status. `make_viewer` is empty for headless runs.
// Throws failure.
int carry_out(const options &run, const script *steps, const viewer_maker &make_viewer);

} // namespace ux::sim
