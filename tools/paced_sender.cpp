// SPDX-License-Identifier: MIT
// The pace of messages.
#include "tools/paced_sender.h"

#include "sim/failure.h"
#include "tools/remote_options.h"

#include <cstdio>

namespace ux::sim {

namespace {

constexpr size_t k_most_waiting = 32;
constexpr std::chrono::seconds k_patience{5}; // with a host that takes nothing

} // namespace

void paced_sender::post(const input_message &message) {
    if (m_waiting.empty()) {
        m_waiting_since = clock::now();
    }
    if (m_waiting.size() < k_most_waiting) {
        m_waiting.push_back(message);
    }
}

void paced_sender::step(clock::time_point now) {
    if (m_waiting.empty() || now - m_last_sent < k_default_pace) {
        return;
    }
    try {
        if (send(m_waiting.front())) {
            m_waiting.pop_front();
            m_last_sent = now;
            m_waiting_since = now;
            m_complaint.clear();
        } else if (now - m_waiting_since > k_patience) {
            throw failure("nobody takes the input from the queue for " + m_queue_path +
                          "; is the host running?");
        }
    } catch (const failure &error) {
        m_waiting.clear();
        complain(error.what());
    }
}

// False while the host has not taken the message before.
bool paced_sender::send(const input_message &message) const {
    const auto queue = find_queue(queue_key(m_queue_path));
    if (!queue) {
        throw failure("there is no input queue for " + m_queue_path + "; is the host running?");
    }
    return waiting_messages(*queue) == 0 && send_message(*queue, message) == send_result::sent;
}

void paced_sender::complain(const std::string &text) {
    if (text != m_complaint) {
        std::fprintf(stderr, "%s: %s\n", m_program.c_str(), text.c_str());
        m_complaint = text;
    }
}

} // namespace ux::sim
