// SPDX-License-Identifier: MIT
// Reading ux-sim's command line.
#include "sim/options.h"

#include "sim/command_options.h"
#include "sim/failure.h"
#include "sim/number.h"

#include <array>
#include <ctime>

namespace ux::sim {

namespace {

constexpr int k_longest_timeout_s = 86400;
constexpr int k_highest_port = 65535;

constexpr const char *k_help =
    R"(Usage: ux-sim [options] [--] host [arguments]

Runs a host program unchanged, with a screen, an event pipe and an input queue of its own.

  --size WxH           screen size in pixels (default 1280x720)
  --format FORMAT      argb8888 (default) or rgb565
  --window             show the screen and a remote control in a window
  --headless           show nothing
                       (default: a window where there is a display, unless --web is given)
  --web[=PORT]         show them in browsers by ux-view, whose address is printed
                       (PORT: default the first free one from 5800 on; 0 = any free one)
  --script FILE        send keys and touches, wait, take shots; '-' = standard input
  --shots DIR          folder for the script's shots (default: the current one)
  --expect DIR         compare each shot with the picture of its name in DIR
  --record FILE        write down keys and touches as a script for --script
  --root DIR           look for /orbo/... and /mnt/firmware/... below DIR first
  --queue-path PATH    name the input queue by PATH, for ux-remote --queue-path PATH
  --timeout SECONDS    end a run that takes longer, as a failure
  --virtual-time       let the host's time jump to whatever it waits for
  --date DATE          virtual time begins at DATE, YYYY-MM-DD[THH:MM[:SS]] (default 2025-01-01)
  --stall SECONDS      fail when virtual time stands still for so long (default 10)
  --verbose            tell the queue's path, the folder for ux-view, the shots written
  --help, --version

Script verbs, one a line; '#' starts a comment:
  key NAME|CODE        touch X Y            shot FILE.png        quit
  type TEXT            (into the focused text field)
  wait MS              wait still MS [within MS]                 wait exit [within MS]
  wait until MS        (since the run began)
)";

enum option_code {
    o_size = k_first_option,
    o_format,
    o_window,
    o_headless,
    o_web,
    o_script,
    o_shots,
    o_expect,
    o_record,
    o_root,
    o_queue_path,
    o_timeout,
    o_virtual_time,
    o_date,
    o_stall,
    o_verbose,
};

constexpr std::array<option, 16> k_options = {{
    {"size", required_argument, nullptr, o_size},
    {"format", required_argument, nullptr, o_format},
    {"window", no_argument, nullptr, o_window},
    {"headless", no_argument, nullptr, o_headless},
    {"web", optional_argument, nullptr, o_web},
    {"script", required_argument, nullptr, o_script},
    {"shots", required_argument, nullptr, o_shots},
    {"expect", required_argument, nullptr, o_expect},
    {"record", required_argument, nullptr, o_record},
    {"root", required_argument, nullptr, o_root},
    {"queue-path", required_argument, nullptr, o_queue_path},
    {"timeout", required_argument, nullptr, o_timeout},
    {"virtual-time", no_argument, nullptr, o_virtual_time},
    {"date", required_argument, nullptr, o_date},
    {"stall", required_argument, nullptr, o_stall},
    {"verbose", no_argument, nullptr, o_verbose},
}};

[[noreturn]] void refuse(const std::string &text) {
    throw usage_failure(text + "; see ux-sim --help");
}

void read_size(const std::string &text, screen_shape &shape) {
    if (const auto size = size_in(text, k_largest_side)) {
        shape.width = size->width;
        shape.height = size->height;
        return;
    }
    refuse("--size wants WIDTHxHEIGHT, each 1 to " + std::to_string(k_largest_side) + ", not '" +
           text + "'");
}

pixel_format read_format(const std::string &text) {
    if (text == "argb8888") {
        return pixel_format::argb8888;
    }
    if (text != "rgb565") {
        refuse("--format is argb8888 or rgb565, not '" + text + "'");
    }
    return pixel_format::rgb565;
}

int read_seconds(const std::string &name, const std::string &text) {
    auto seconds = number_in(text, 1, k_longest_timeout_s);
    if (!seconds) {
        refuse("--" + name + " wants 1 to " + std::to_string(k_longest_timeout_s) +
               " seconds, not '" + text + "'");
    }
    return *seconds;
}

// Without an argument ux-view chooses.
std::optional<int> read_port(const std::string &text) {
    const auto port = number_in(text, 0, k_highest_port);
    if (!port && !text.empty()) {
        refuse("--web wants a port from 0 to " + std::to_string(k_highest_port) + ", not '" + text +
               "'");
    }
    return port;
}

// A date and a time of day, UTC, as seconds since 1970.
int64_t read_date(const std::string &text) {
    for (const char *form : {"%Y-%m-%d", "%Y-%m-%dT%H:%M", "%Y-%m-%dT%H:%M:%S"}) {
        tm parts{};
        if (strptime(text.c_str(), form, &parts) == nullptr) {
            continue;
        }
        // timegm turns April 31 into May 1, and strptime passes blanks and single digits: what it
        // gives must read like the text. Years before 1980 leave no room for other clocks.
        const time_t seconds = timegm(&parts);
        std::array<char, 32> again{};
        std::strftime(again.data(), again.size(), form, &parts);
        if (text == again.data() && parts.tm_year >= 80 && parts.tm_year < 200) {
            return seconds;
        }
    }
    refuse("--date wants YYYY-MM-DD[THH:MM[:SS]], 1980 to 2099, not '" + text + "'");
}

std::string read_path(const char *name, const std::string &text) {
    if (text.empty()) {
        refuse(std::string("--") + name + " wants a path");
    }
    return text;
}

void apply(int code, const std::string &argument, options &run) {
    switch (code) {
    case o_size:
        return read_size(argument, run.shape);
    case o_format:
        run.shape.format = read_format(argument);
        return;
    case o_window:
        run.display = display_choice::window;
        return;
    case o_headless:
        run.display = display_choice::headless;
        return;
    case o_web:
        run.web = true;
        run.web_port = read_port(argument);
        return;
    case o_script:
        run.script = read_path("script", argument);
        return;
    case o_shots:
        run.shots = read_path("shots", argument);
        return;
    case o_expect:
        run.expect = read_path("expect", argument);
        return;
    case o_record:
        run.record = read_path("record", argument);
        return;
    case o_root:
        run.root = read_path("root", argument);
        return;
    case o_queue_path:
        run.queue_path = read_path("queue-path", argument);
        return;
    case o_timeout:
        run.timeout_s = read_seconds("timeout", argument);
        return;
    case o_virtual_time:
        run.virtual_time = true;
        return;
    case o_date:
        run.first_second = read_date(argument);
        return;
    case o_stall:
        run.stall_s = read_seconds("stall", argument);
        return;
    case o_verbose:
        run.verbose = true;
        return;
    default:
        break;
    }
}

} // namespace

command_line parse_command_line(int argc, char **argv) {
    options run;
    const auto text =
        scan_options({"ux-sim", k_help, UX_VERSION}, k_options, option_places::first, argc, argv,
                     [&run](int code, const std::string &argument) { apply(code, argument, run); });
    if (text) {
        return {.run = std::nullopt, .text = *text};
    }
    run.host.assign(argv + optind, argv + argc);
    if (run.virtual_time && run.script.empty() && run.display == display_choice::window) {
        refuse("--virtual-time with a window wants a script");
    }
    if (run.virtual_time && run.script.empty() && run.web) {
        refuse("--virtual-time with --web wants a script");
    }
    if (run.host.empty() || run.host.front().empty()) {
        refuse("no host program given");
    }
    return {.run = run, .text = {}};
}

} // namespace ux::sim
