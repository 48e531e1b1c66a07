// SPDX-License-Identifier: MIT
// Reading ux-view's command line, the password's file included.
#include "tools/view_options.h"

#include "sim/command_options.h"
#include "sim/failure.h"
#include "sim/number.h"
#include "tools/view_listener.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace ux::view {

using sim::failure;
using sim::usage_failure;

namespace {

constexpr size_t k_longest_password = 8; // the protocol drops what follows
constexpr size_t k_most_addresses = 2;   // the VNC library's limit
constexpr int k_highest_port = 65535;

constexpr const char *k_help = R"(Usage: ux-view [options] [DEVICE|FOLDER]

Shows a screen over VNC and in browsers, and sends keys and touches back: the framebuffer of a device
(default /dev/fb0), or the screen of a simulator by its folder, which ux-sim --verbose tells.

  --port PORT            for VNC (default the first free one from 5900 on; 0 = any free one)
  --web-port PORT        for the browser page (default the first free one from 5800 on)
  --web-root DIR         noVNC's files (default /usr/share/novnc)
  --web, --no-web        the browser page is a must, or is not wanted
  --listen ADDRESS       instead of 127.0.0.1 and ::1; may be given twice.
                         Any address but the loopback's wants a password
  --password-file FILE   ask viewers for the first line of FILE, 1 to 8 ASCII characters
  --queue-path PATH      the input queue named by PATH (default: the simulator's; /tmp on a device)
  --help, --version
)";

enum option_code {
    o_port = sim::k_first_option,
    o_web_port,
    o_web_root,
    o_web,
    o_no_web,
    o_listen,
    o_password_file,
    o_queue_path,
};

constexpr std::array<option, 8> k_options = {{
    {"port", required_argument, nullptr, o_port},
    {"web-port", required_argument, nullptr, o_web_port},
    {"web-root", required_argument, nullptr, o_web_root},
    {"web", no_argument, nullptr, o_web},
    {"no-web", no_argument, nullptr, o_no_web},
    {"listen", required_argument, nullptr, o_listen},
    {"password-file", required_argument, nullptr, o_password_file},
    {"queue-path", required_argument, nullptr, o_queue_path},
}};

[[noreturn]] void refuse(const std::string &text) {
    throw usage_failure(text + "; see ux-view --help");
}

port_choice read_port(const std::string &name, const std::string &text) {
    auto port = sim::number_in(text, 0, k_highest_port);
    if (!port) {
        refuse("--" + name + " wants 0 to " + std::to_string(k_highest_port) + ", not '" + text +
               "'");
    }
    return {.first = *port};
}

std::string read_path(const std::string &name, const std::string &text) {
    if (text.empty()) {
        refuse("--" + name + " wants a path");
    }
    return text;
}

std::string read_password(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::string password;
    if (!file || (!std::getline(file, password) && file.bad())) {
        throw failure(sim::system_reason("cannot read " + path));
    }
    if (password.ends_with('\r')) { // of editors that end lines so
        password.pop_back();
    }
    // Viewers disagree about the bytes of other characters.
    const bool typed = std::ranges::all_of(password, [](char c) { return c >= ' ' && c <= '~'; });
    if (password.empty() || password.size() > k_longest_password || !typed) {
        throw usage_failure("the password in " + path + " must have 1 to " +
                            std::to_string(k_longest_password) + " printable ASCII characters");
    }
    std::error_code ignored;
    using std::filesystem::perms;
    if ((std::filesystem::status(path, ignored).permissions() & perms::others_read) !=
        perms::none) {
        std::fprintf(stderr, "ux-view: every user may read %s\n", path.c_str());
    }
    return password;
}

void add_address(const std::string &text, view_request &request) {
    if (!address_kind_of(text)) {
        refuse("--listen wants an IPv4 or IPv6 address in numbers, not '" + text + "'");
    }
    if (request.addresses.size() == k_most_addresses) {
        refuse("--listen may be given " + std::to_string(k_most_addresses) + " times");
    }
    request.addresses.push_back(text);
}

void check(const view_request &request) {
    for (const std::string &address : request.addresses) {
        if (address_kind_of(address) == address_kind::open && request.password.empty()) {
            refuse("listening at " + address + " wants a --password-file");
        }
    }
}

void apply(int code, const std::string &argument, view_request &request) {
    switch (code) {
    case o_port:
        request.port = read_port("port", argument);
        return;
    case o_web_port:
        request.web_port = read_port("web-port", argument);
        request.web_wanted = true;
        return;
    case o_web_root:
        request.web_root = read_path("web-root", argument);
        request.web_wanted = true;
        return;
    case o_web:
        request.web_wanted = true;
        return;
    case o_no_web:
        request.web_root.clear();
        return;
    case o_listen:
        return add_address(argument, request);
    case o_password_file:
        request.password = read_password(read_path("password-file", argument));
        return;
    case o_queue_path:
        request.queue_path = read_path("queue-path", argument);
        return;
    default:
        break;
    }
}

void read_source(int argc, char **argv, view_request &request) {
    if (argc - optind > 1) {
        refuse(std::string("only one source can be shown, not '") + argv[optind + 1] + "' too");
    }
    if (argc > optind) {
        request.source = argv[optind];
    }
    if (request.source.empty()) {
        refuse("the source wants a path");
    }
}

} // namespace

view_command parse_view_command(int argc, char **argv) {
    view_request request;
    const auto text = sim::scan_options(
        {"ux-view", k_help, UX_VERSION}, k_options, sim::option_places::anywhere, argc, argv,
        [&request](int code, const std::string &argument) { apply(code, argument, request); });
    if (text) {
        return {.request = std::nullopt, .text = *text};
    }
    read_source(argc, argv, request);
    check(request);
    return {.request = request, .text = {}};
}

} // namespace ux::view
