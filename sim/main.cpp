// SPDX-License-Identifier: MIT
// ux-sim: reads the command line and the script, then hands over to the run.
#include "sim/failure.h"
#include "sim/options.h"
#include "sim/runner.h"
#include "sim/script.h"
#include "sim/window.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

using namespace ux::sim;

bool is_set(const char *variable) {
    const char *value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// Nobody could follow virtual time that no script holds up.
bool wants_window(const options &run) {
    bool display = is_set("DISPLAY") || is_set("WAYLAND_DISPLAY");
    bool followed = !run.virtual_time || !run.script.empty();
    return run.display == display_choice::window ||
           (run.display == display_choice::automatic && display && followed && !run.web);
}

int run_simulator(int argc, char **argv) {
    command_line asked = parse_command_line(argc, argv);
    if (!asked.run) {
        std::fputs(asked.text.c_str(), stdout);
        return std::fflush(stdout) == 0 ? k_status_ok : k_status_failed;
    }
    const options &run = *asked.run;
    std::optional<script> steps;
    if (!run.script.empty()) {
        steps = read_script(run.script);
    }
    viewer_maker window;
    if (wants_window(run)) {
        window = [&run](const shared_screen &screen) {
            return open_window(screen, std::filesystem::path(run.host.front()).filename());
        };
    }
    return carry_out(run, steps ? &*steps : nullptr, window);
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run_simulator(argc, argv);
    } catch (const failure &error) {
        std::fprintf(stderr, "ux-sim: %s\n", error.what());
        return error.status();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ux-sim: %s\n", error.what());
        return k_status_failed;
    }
}
