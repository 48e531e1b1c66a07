// SPDX-License-Identifier: MIT
// ux-remote: sends keys and touches to a host's input queue.
#include "sim/failure.h"
#include "tools/remote_options.h"

#include <cstdio>
#include <thread>

namespace {

using namespace ux::sim;
using std::chrono::milliseconds;

constexpr milliseconds k_look_again{2};
constexpr milliseconds k_longest_in_queue{5000};

// A message that still waits in the queue would reach the host together with the next one.
void wait_until_taken(int queue) {
    const auto deadline = std::chrono::steady_clock::now() + k_longest_in_queue;
    while (waiting_messages(queue) > 0) {
        if (std::chrono::steady_clock::now() >= deadline) {
            throw failure("nobody takes the messages from the input queue");
        }
        std::this_thread::sleep_for(k_look_again);
    }
}

void send_all(const remote_request &request) {
    const auto queue = find_queue(queue_key(request.queue_path));
    if (!queue) {
        throw failure("there is no input queue for " + request.queue_path +
                      "; is the host running?");
    }
    bool first = true;
    for (const timed_message &next : request.messages) {
        if (!first) {
            wait_until_taken(*queue);
            std::this_thread::sleep_for(next.pause);
        }
        first = false;
        if (send_message(*queue, next.message) == send_result::full) {
            throw failure("the input queue is full: nobody takes the messages");
        }
    }
}

int run_remote(int argc, char **argv) {
    remote_command asked = parse_remote_command(argc, argv);
    if (!asked.request) {
        std::fputs(asked.text.c_str(), stdout);
        return std::fflush(stdout) == 0 ? k_status_ok : k_status_failed;
    }
    send_all(*asked.request);
    return k_status_ok;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run_remote(argc, argv);
    } catch (const failure &error) {
        std::fprintf(stderr, "ux-remote: %s\n", error.what());
        return error.status();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ux-remote: %s\n", error.what());
        return k_status_failed;
    }
}
