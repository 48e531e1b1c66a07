// SPDX-License-Identifier: MIT
// ux-view: shows a screen over VNC and sends keys and touches back.
#include "sim/failure.h"
#include "tools/view_options.h"
#include "tools/view_server.h"

#include <csignal>
#include <cstdio>

namespace {

using namespace ux::view;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using ux::sim::steady;

constexpr microseconds k_look_interval{16667}; // 60 a second
constexpr milliseconds k_idle_interval{500};   // nobody looks

volatile std::sig_atomic_t s_end_signal = 0;

void on_signal(int number) {
    s_end_signal = number;
}

// Blocks the signals that end the program; the result is the mask under which they arrive.
sigset_t hold_signals() {
    sigset_t ending;
    sigset_t before;
    sigemptyset(&ending);
    struct sigaction action {};
    action.sa_handler = on_signal;
    for (int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&ending, number);
        sigaction(number, &action, nullptr);
    }
    sigprocmask(SIG_BLOCK, &ending, &before);
    std::signal(SIGPIPE, SIG_IGN);
    return before;
}

timespec time_until(steady::time_point then) {
    const auto left = std::max(then - steady::now(), steady::duration::zero());
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(left).count();
    constexpr long k_second = 1000000000;
    return {.tv_sec = nanoseconds / k_second, .tv_nsec = nanoseconds % k_second};
}

// Until somebody wants something or the time has come.
void wait(const view_server &server, steady::time_point until, const sigset_t &mask) {
    fd_set wanted;
    FD_ZERO(&wanted);
    const int highest = server.add_to(wanted);
    const timespec time = time_until(until);
    pselect(highest + 1, &wanted, nullptr, nullptr, &time, &mask);
}

int show(frame_source &source, view_input &input, view_server &server, const sigset_t &mask) {
    steady::time_point next = steady::now();
    while (s_end_signal == 0) {
        const auto now = steady::now();
        if (now >= next) {
            const bool busy = server.watched() || !input.idle();
            next = now + (busy ? steady::duration(k_look_interval) : k_idle_interval);
            source.check();
            input.step(now);
            if (server.watched()) {
                server.look();
            }
        }
        server.serve();
        if (server.watched()) {
            next = std::min(next, now + k_look_interval);
        }
        wait(server, next, mask);
    }
    return ux::sim::k_status_signal_base + s_end_signal;
}

void announce(const std::vector<listener> &sockets) {
    for (const listener &socket : sockets) {
        std::printf("vnc %s\n", address_with_port(socket.address(), socket.port()).c_str());
    }
    if (std::fflush(stdout) != 0) {
        throw ux::sim::failure(ux::sim::system_reason("cannot write to standard output"));
    }
}

int run_view(int argc, char **argv) {
    const view_command asked = parse_view_command(argc, argv);
    if (!asked.request) {
        std::fputs(asked.text.c_str(), stdout);
        return std::fflush(stdout) == 0 ? ux::sim::k_status_ok : ux::sim::k_status_failed;
    }
    const view_request &request = *asked.request;
    const sigset_t mask = hold_signals();
    const auto source = open_source(request.source);
    view_input input(request.queue_path.empty() ? source->queue_path() : request.queue_path);
    auto sockets = listen_at(request.addresses, request.port);
    announce(sockets);
    view_server server(*source, input, std::move(sockets), request.source, request.password);
    return show(*source, input, server, mask);
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
