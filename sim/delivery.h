// SPDX-License-Identifier: MIT
// Handing keys and touches to the host one by one, no faster than it can take them.
//
// A message is safe once the host has read its text from the event pipe and closed the pipe again:
// a text that meets the still open pipe is thrown away. So the next message is held back until the
// queue is empty and the reader's close has been seen.
#pragma once

#include "sim/input_queue.h"
#include "sim/screen.h"

#include <deque>

namespace ux::sim {

class run_folder;

class delivery {
  public:
    explicit delivery(const run_folder &folder); // throws failure
    delivery(const delivery &) = delete;
    delivery &operator=(const delivery &) = delete;
    ~delivery();

    // False when too many wait already; the message is dropped then.
    bool post(const input_message &message);

    // To be called often. Throws failure when the queue is gone.
    void step(steady::time_point now);

    // Everything posted has been taken by the host.
    bool idle() const { return m_state == state::ready && m_waiting.empty(); }

    // The host has taken the last posted message from the queue, if not yet from the pipe.
    bool taken() const;

    // The host has made its event pipe: it receives, or is about to.
    bool host_receives() const { return m_pipe_made; }

    // Becomes readable when the pipe is used; -1 if that cannot be watched.
    int watch_fd() const { return m_watch; }

  private:
    enum class state { ready, in_queue, in_pipe, settling };

    void read_watch();
    void enter(state next, steady::time_point now);
    bool waited(std::chrono::milliseconds time, steady::time_point now) const;

    int m_queue;
    int m_watch = -1;
    std::deque<input_message> m_waiting;
    state m_state = state::ready;
    steady::time_point m_since; // of m_state
    bool m_pipe_made = false;
    bool m_pipe_closed = false; // by the reader, since the last message was sent
};

} // namespace ux::sim
