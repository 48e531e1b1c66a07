// SPDX-License-Identifier: MIT
// Reading ux-remote's command line and turning it into messages.
#include "tools/remote_options.h"

#include "sim/command_options.h"
#include "sim/failure.h"
#include "sim/keys.h"
#include "sim/multitap.h"
#include "sim/number.h"

#include <array>
#include <limits>
#include <span>

namespace ux::sim {

namespace {

using std::chrono::milliseconds;

constexpr int k_longest_pace_ms = 60 * 1000;

constexpr const char *k_help = R"(Usage: ux-remote [options] key NAME|CODE...
       ux-remote [options] touch X Y
       ux-remote [options] type TEXT

Sends key presses and touches to a running host, as its input driver would.

  --queue-path PATH    the queue named by PATH (default /tmp; see ux-sim --verbose)
  --pace MS            between two messages (default 50)
  --help, --version

A number is a key code, 0 to 255. Names:
 )";

std::string help() {
    std::string text = k_help;
    for (const key_name &key : key_names()) {
        text += " ";
        text += key.name;
    }
    return text + "\n";
}

[[noreturn]] void refuse(const std::string &text) {
    throw usage_failure(text + "; see ux-remote --help");
}

using words = std::span<char *>;

std::vector<timed_message> key_presses(words names, milliseconds pace) {
    if (names.empty()) {
        refuse("'key' wants at least one key");
    }
    std::vector<timed_message> result;
    for (const char *name : names) {
        auto code = key_from_text(name);
        if (!code) {
            refuse(std::string("no key is called '") + name + "'");
        }
        result.push_back({key_message(*code), pace});
    }
    return result;
}

int coordinate(const char *text) {
    auto value = number_in(text, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    if (!value) {
        refuse(std::string("'") + text + "' is no coordinate");
    }
    return *value;
}

std::vector<timed_message> touch(words position) {
    if (position.size() != 2) {
        refuse("'touch' wants X and Y");
    }
    return {{touch_message(coordinate(position[0]), coordinate(position[1])), milliseconds(0)}};
}

std::vector<timed_message> typed(words text, milliseconds pace) {
    if (text.size() != 1) {
        refuse("'type' wants one text; put it in quotes");
    }
    if (pace >= k_letter_timeout) {
        refuse("'type' wants a pace below " + std::to_string(k_letter_timeout.count()) +
               " ms: slower taps are letters of their own");
    }
    std::vector<timed_message> result;
    for (const tap &press : taps_for(text[0], pace)) {
        result.push_back({key_message(press.key), press.pause});
    }
    return result;
}

std::vector<timed_message> messages_for(words command, milliseconds pace) {
    if (command.empty()) {
        refuse("nothing to send");
    }
    const std::string verb = command[0];
    if (verb == "key") {
        return key_presses(command.subspan(1), pace);
    }
    if (verb == "touch") {
        return touch(command.subspan(1));
    }
    if (verb != "type") {
        refuse("unknown command '" + verb + "'");
    }
    return typed(command.subspan(1), pace);
}

enum option_code { o_queue_path = k_first_option, o_pace };

constexpr std::array<option, 2> k_options = {{
    {"queue-path", required_argument, nullptr, o_queue_path},
    {"pace", required_argument, nullptr, o_pace},
}};

milliseconds read_pace(const std::string &text) {
    auto pace = number_in(text, 0, k_longest_pace_ms);
    if (!pace) {
        refuse("--pace wants 0 to " + std::to_string(k_longest_pace_ms) + " ms, not '" + text +
               "'");
    }
    return milliseconds(*pace);
}

} // namespace

// Options come first, so that a negative coordinate is none.
remote_command parse_remote_command(int argc, char **argv) {
    remote_request request;
    milliseconds pace = k_default_pace;
    const auto text =
        scan_options({"ux-remote", help(), UX_VERSION}, k_options, option_places::first, argc, argv,
                     [&](int code, const std::string &argument) {
                         if (code == o_queue_path) {
                             request.queue_path = argument;
                         } else {
                             pace = read_pace(argument);
                         }
                     });
    if (text) {
        return {.request = std::nullopt, .text = *text};
    }
    request.messages = messages_for(words(argv + optind, static_cast<size_t>(argc - optind)), pace);
    return {.request = request, .text = {}};
}

} // namespace ux::sim
