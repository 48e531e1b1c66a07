// SPDX-License-Identifier: MIT
// Reading ux-inputd's command line.
#include "tools/inputd_options.h"

#include "sim/command_options.h"
#include "sim/failure.h"
#include "sim/number.h"

#include <array>

namespace ux::inputd {

namespace {

constexpr int k_largest_side = 16384; // pixels

constexpr const char *k_help = R"(Usage: ux-inputd [options] [DEVICE...]

Sends the keys and touches of Linux input devices to a host, as the driver of a remote control and
touch panel does. Without a DEVICE: of all below /dev/input, those that come later too.

  --queue-path PATH    the queue named by PATH (default /tmp; see ux-sim --verbose)
  --key NAME=KEY       what a key sends: NAME as the kernel has it, KEY as ux-remote has it;
                       may be given often, as in --key KEY_MENU=ok
  --size WxH           screen size in pixels, for touches (default: that of /dev/fb0)
  --grab               nobody else, such as a console, gets the devices' events
  --verbose            tell devices and messages on standard error
  --help, --version
)";

enum option_code {
    o_queue_path = sim::k_first_option,
    o_key,
    o_size,
    o_grab,
    o_verbose,
};

constexpr std::array<option, 5> k_options = {{
    {"queue-path", required_argument, nullptr, o_queue_path},
    {"key", required_argument, nullptr, o_key},
    {"size", required_argument, nullptr, o_size},
    {"grab", no_argument, nullptr, o_grab},
    {"verbose", no_argument, nullptr, o_verbose},
}};

[[noreturn]] void refuse(const std::string &text) {
    throw sim::usage_failure(text + "; see ux-inputd --help");
}

screen_size read_size(const std::string &text) {
    if (const auto size = sim::size_in(text, k_largest_side)) {
        return {size->width, size->height};
    }
    refuse("--size wants WIDTHxHEIGHT, each 1 to " + std::to_string(k_largest_side) + ", not '" +
           text + "'");
}

void apply(int code, const std::string &argument, inputd_request &request) {
    switch (code) {
    case o_queue_path:
        request.queue_path = argument;
        return;
    case o_key:
        return request.keys.assign(argument);
    case o_size:
        request.screen = read_size(argument);
        return;
    case o_grab:
        request.grab = true;
        return;
    case o_verbose:
        request.verbose = true;
        return;
    default:
        break;
    }
}

} // namespace

inputd_command parse_inputd_command(int argc, char **argv) {
    inputd_request request;
    const auto text = sim::scan_options(
        {"ux-inputd", k_help, UX_VERSION}, k_options, sim::option_places::anywhere, argc, argv,
        [&request](int code, const std::string &argument) { apply(code, argument, request); });
    if (text) {
        return {.request = std::nullopt, .text = *text};
    }
    request.devices.assign(argv + optind, argv + argc);
    return {.request = request, .text = {}};
}

} // namespace ux::inputd
