// SPDX-License-Identifier: MIT
// ux-view: shows a screen over VNC and in browsers, and sends keys and touches back.
#include "sim/failure.h"
#include "tools/end_signals.h"
#include "tools/paced_sender.h"
#include "tools/view_options.h"
#include "tools/view_server.h"
#include "tools/view_web.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>

namespace {

using namespace ux::view;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using ux::sim::steady;

constexpr microseconds k_look_interval{16667}; // 60 a second
constexpr milliseconds k_idle_interval{500};   // nobody looks

timespec time_until(steady::time_point then) {
    const auto left = std::max(then - steady::now(), steady::duration::zero());
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(left).count();
    constexpr long k_second = 1000000000;
    return {.tv_sec = nanoseconds / k_second, .tv_nsec = nanoseconds % k_second};
}

struct services {
    frame_source &source;
    ux::sim::paced_sender &input;
    view_server &vnc;
    std::optional<web_server> &web;
};

// Until somebody wants something or the time has come.
void wait(const services &all, steady::time_point until, const sigset_t &mask) {
    fd_set reading;
    fd_set writing;
    FD_ZERO(&reading);
    FD_ZERO(&writing);
    int highest = all.vnc.add_to(reading);
    if (all.web) {
        highest = std::max(highest, all.web->add_to(reading, writing));
    }
    const timespec time = time_until(until);
    pselect(highest + 1, &reading, &writing, nullptr, &time, &mask);
}

int show(const services &all, const sigset_t &mask) {
    steady::time_point next = steady::now();
    while (ux::sim::end_signal() == 0) {
        const auto now = steady::now();
        if (now >= next) {
            all.source.check();
            all.input.step(now);
            if (all.vnc.watched()) {
                all.vnc.look();
            }
            next = now + k_idle_interval;
        }
        all.vnc.serve();
        if (all.web) {
            all.web->serve(now);
        }
        if (all.vnc.watched() || !all.input.idle()) {
            next = std::min(next, now + k_look_interval);
        }
        wait(all, next, mask);
    }
    return ux::sim::k_status_signal_base + ux::sim::end_signal();
}

std::optional<web_server> serve_page(const view_request &request, int vnc_port) {
    if (request.web_root.empty()) {
        return std::nullopt;
    }
    const std::string needed = request.web_root + "/core/rfb.js";
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(needed, ignored)) {
        const std::string text = "no browser page: there is no " + needed + " (package novnc)";
        if (request.web_wanted) {
            throw ux::sim::failure(text);
        }
        std::fprintf(stderr, "ux-view: %s\n", text.c_str());
        return std::nullopt;
    }
    auto sockets = listen_at(request.addresses, request.web_port);
    for (const listener &socket : sockets) {
        std::printf("web http://%s/\n", address_with_port(socket.address(), socket.port()).c_str());
    }
    return std::make_optional<web_server>(std::move(sockets), request.web_root, vnc_port);
}

int run_view(int argc, char **argv) {
    const view_command asked = parse_view_command(argc, argv);
    if (!asked.request) {
        std::fputs(asked.text.c_str(), stdout);
        return std::fflush(stdout) == 0 ? ux::sim::k_status_ok : ux::sim::k_status_failed;
    }
    const view_request &request = *asked.request;
    const sigset_t mask = ux::sim::hold_end_signals();
    const auto source = open_source(request.source);
    ux::sim::paced_sender input("ux-view", request.queue_path.empty() ? source->queue_path()
                                                                      : request.queue_path);
    auto sockets = listen_at(request.addresses, request.port);
    for (const listener &socket : sockets) {
        std::printf("vnc %s\n", address_with_port(socket.address(), socket.port()).c_str());
    }
    auto web = serve_page(request, sockets.front().port());
    if (std::fflush(stdout) != 0) {
        throw ux::sim::failure(ux::sim::system_reason("cannot write to standard output"));
    }
    view_server vnc(*source, input, std::move(sockets), request.source, request.password);
    return show({*source, input, vnc, web}, mask);
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run_view(argc, argv);
    } catch (const ux::sim::failure &error) {
        std::fprintf(stderr, "ux-view: %s\n", error.what());
        return error.status();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ux-view: %s\n", error.what());
        return ux::sim::k_status_failed;
    }
}
