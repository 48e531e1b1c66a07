// SPDX-License-Identifier: MIT
// Keys and touches of viewers on their way to the host's queue.
#pragma once

#include "sim/input_queue.h"
#include "sim/screen.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace ux::view {

// The remote control's key for a key symbol of the X window system, as VNC sends them.
std::optional<int> key_of_symbol(uint32_t symbol);

// Sends messages one by one, each when the one before has been taken and some time has passed: a
// host loses what arrives while it still reads.
class view_input {
  public:
    explicit view_input(const std::string &queue_path) : m_queue_path(queue_path) {}

    // Dropped when too many wait already.
    void post(const sim::input_message &message);

    // To be called often. The queue is looked up anew for each message, since hosts come and go;
    // while there is none, or nobody takes anything from it for seconds, messages are dropped.
    // Never throws failure: its text goes to standard error, once for a row of equal ones.
    void step(sim::steady::time_point now);

    bool idle() const { return m_waiting.empty(); }

  private:
    bool send(const sim::input_message &message) const;
    void complain(const std::string &text);

    std::string m_queue_path;
    std::deque<sim::input_message> m_waiting;
    sim::steady::time_point m_last_sent;
    sim::steady::time_point m_waiting_since; // for the first of them to be sent
    std::string m_complaint;                 // the last one
};

} // namespace ux::view
