// SPDX-License-Identifier: MIT
// Key symbols to codes, and the pace of messages.
#include "tools/view_input.h"

#include "sim/failure.h"
#include "sim/keys.h"
#include "tools/remote_options.h"

#include <cstdio>

#include <rfb/keysym.h>

namespace ux::view {

namespace {

constexpr size_t k_most_waiting = 32;
constexpr std::chrono::seconds k_patience{5}; // with a host that takes nothing

} // namespace

std::optional<int> key_of_symbol(uint32_t symbol) {
    if (symbol >= XK_0 && symbol <= XK_9) {
        return sim::k_key_digit0 + static_cast<int>(symbol - XK_0);
    }
    if (symbol >= XK_KP_0 && symbol <= XK_KP_9) {
        return sim::k_key_digit0 + static_cast<int>(symbol - XK_KP_0);
    }
    switch (symbol) {
    case XK_Up:
    case XK_KP_Up:
        return sim::k_key_up;
    case XK_Down:
    case XK_KP_Down:
        return sim::k_key_down;
    case XK_Left:
    case XK_KP_Left:
        return sim::k_key_left;
    case XK_Right:
    case XK_KP_Right:
        return sim::k_key_right;
    case XK_Return:
    case XK_KP_Enter:
        return sim::k_key_ok;
    case XK_BackSpace:
    case XK_Delete:
    case XK_KP_Delete:
        return sim::k_key_delete;
    case XK_Shift_L:
    case XK_Shift_R:
        return sim::k_key_shift;
    case XK_period:
    case XK_KP_Decimal:
        return sim::k_key_punctuation;
    default:
        return std::nullopt;
    }
}

void view_input::post(const sim::input_message &message) {
    if (m_waiting.empty()) {
        m_waiting_since = sim::steady::now();
    }
    if (m_waiting.size() < k_most_waiting) {
        m_waiting.push_back(message);
    }
}

void view_input::step(sim::steady::time_point now) {
    if (m_waiting.empty() || now - m_last_sent < sim::k_default_pace) {
        return;
    }
    try {
        if (send(m_waiting.front())) {
            m_waiting.pop_front();
            m_last_sent = now;
            m_waiting_since = now;
            m_complaint.clear();
        } else if (now - m_waiting_since > k_patience) {
            throw sim::failure("nobody takes the input from the queue for " + m_queue_path +
                               "; is the host running?");
        }
    } catch (const sim::failure &error) {
        m_waiting.clear();
        complain(error.what());
    }
}

// False while the host has not taken the message before.
bool view_input::send(const sim::input_message &message) const {
    const auto queue = sim::find_queue(sim::queue_key(m_queue_path));
    if (!queue) {
        throw sim::failure("there is no input queue for " + m_queue_path +
                           "; is the host running?");
    }
    return sim::waiting_messages(*queue) == 0 &&
           sim::send_message(*queue, message) == sim::send_result::sent;
}

void view_input::complain(const std::string &text) {
    if (text != m_complaint) {
        std::fprintf(stderr, "ux-view: %s\n", text.c_str());
        m_complaint = text;
    }
}

} // namespace ux::view
