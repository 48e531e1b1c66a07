// SPDX-License-Identifier: MIT
// Messages on their way to a host's queue, at the pace at which it can take them.
#pragma once

#include "sim/input_queue.h"

#include <chrono>
#include <deque>
#include <string>

namespace ux::sim {

// Sends messages one by one, each when the one before has been taken and some time has passed: a
// host loses what arrives while it still reads.
class paced_sender {
  public:
    using clock = std::chrono::steady_clock;

    // `program` begins the lines on standard error.
    paced_sender(const std::string &program, const std::string &queue_path)
        : m_program(program), m_queue_path(queue_path) {}

    // Dropped when too many wait already.
    void post(const input_message &message);

    // To be called often. The queue is looked up anew for each message, since hosts come and go;
    // while there is none, or nobody takes anything from it for seconds, messages are dropped.
    // Never throws failure: its text goes to standard error, once for a row of equal ones.
    void step(clock::time_point now);

    bool idle() const { return m_waiting.empty(); }

  private:
    bool send(const input_message &message) const;
    void complain(const std::string &text);

    std::string m_program;
    std::string m_queue_path;
    std::deque<input_message> m_waiting;
    clock::time_point m_last_sent;
    clock::time_point m_waiting_since; // for the first of them to be sent
    std::string m_complaint;           // the last one
};

} // namespace ux::sim
