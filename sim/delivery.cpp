// SPDX-License-Identifier: MIT
// The pace of messages, driven by what the host does with its event pipe.
#include "sim/delivery.h"

#include "sim/failure.h"
#include "sim/run_folder.h"

#include <array>
#include <cstring>

#include <sys/inotify.h>
#include <unistd.h>

namespace ux::sim {

namespace {

using std::chrono::milliseconds;

constexpr size_t k_most_waiting = 32;

// For hosts that take messages without the pipe, or when the pipe cannot be watched.
constexpr milliseconds k_longest_in_pipe{100};

// A main loop takes one event every 10 ms; closer ones would only pile up before it.
constexpr milliseconds k_settle{12};

} // namespace

delivery::delivery(const run_folder &folder) : m_queue(folder.queue()) {
    m_watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_watch != -1) {
        inotify_add_watch(m_watch, folder.path().c_str(), IN_CREATE | IN_CLOSE_NOWRITE);
    }
}

delivery::~delivery() {
    if (m_watch != -1) {
        close(m_watch);
    }
}

bool delivery::post(const input_message &message) {
    if (m_waiting.size() >= k_most_waiting) {
        return false;
    }
    m_waiting.push_back(message);
    return true;
}

void delivery::step(steady::time_point now) {
    read_watch();
    switch (m_state) {
    case state::ready:
        m_pipe_closed = false;
        if (!m_waiting.empty() && send_message(m_queue, m_waiting.front()) == send_result::sent) {
            m_waiting.pop_front();
            enter(state::in_queue, now);
        }
        return;
    case state::in_queue:
        if (waiting_messages(m_queue) == 0) {
            enter(state::in_pipe, now);
        }
        return;
    case state::in_pipe:
        if (m_pipe_closed || waited(k_longest_in_pipe, now)) {
            enter(state::settling, now);
        }
        return;
    case state::settling:
        if (waited(k_settle, now)) {
            enter(state::ready, now);
        }
        return;
    }
}

// The host may have taken it since the last step, and may have removed the queue when it ended.
bool delivery::taken() const {
    if (!m_waiting.empty()) {
        return false;
    }
    try {
        return m_state != state::in_queue || waiting_messages(m_queue) == 0;
    } catch (const failure &) {
        return true;
    }
}

void delivery::read_watch() {
    alignas(inotify_event) std::array<char, 4096> events{};
    ssize_t bytes = 0;
    while (m_watch != -1 && (bytes = read(m_watch, events.data(), events.size())) > 0) {
        for (ssize_t at = 0; at < bytes;) {
            inotify_event event{};
            std::memcpy(&event, events.data() + at, sizeof event);
            const char *name = events.data() + at + sizeof event;
            if (event.len > 0 && std::strcmp(name, "event") == 0) {
                m_pipe_made = m_pipe_made || (event.mask & IN_CREATE) != 0;
                m_pipe_closed = m_pipe_closed || (event.mask & IN_CLOSE_NOWRITE) != 0;
            }
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

void delivery::enter(state next, steady::time_point now) {
    m_state = next;
    m_since = now;
}

bool delivery::waited(milliseconds time, steady::time_point now) const {
    return now - m_since >= time;
}

} // namespace ux::sim
