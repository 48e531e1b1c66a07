// SPDX-License-Identifier: MIT
// The event ring and the two threads that fill it: the state they share.
#ifndef UX_EVENT_UXEVENT_H
#define UX_EVENT_UXEVENT_H

#include "ux.h"

#include <atomic>
#include <pthread.h>

namespace ux {

constexpr int k_event_slots = 1024; // one always stays empty
constexpr const char *k_event_pipe = "/tmp/event";

// The ring. The event thread alone writes `rear` and the slot there, the main loop alone writes
// `front`; a slot is written before `rear` moves past it.
extern ux_event events[k_event_slots];
extern std::atomic<int> front; // next slot to read
extern std::atomic<int> rear;  // next slot to write

extern pthread_t event_thread;
extern std::atomic<int> event_running;      // the event thread goes on while not 0
extern std::atomic<int> event_task_running; // the bridge thread goes on while not 0

// Openings of the pipe that the event thread has closed again: what was written into one of them is
// out of the pipe. The count wraps.
extern std::atomic<unsigned> openings_ended;

// A helper thread that ux_event_init() may have started.
class helper_thread {
  public:
    // Starts `task` with all signals blocked: a host's handlers run on the host's threads. False
    // when that fails or when it runs already.
    bool start(pthread_t *handle, void *(*task)(void *));

    // Waits for the end of a started thread; does nothing otherwise.
    void join();

    void mark_begun() { m_ended.store(false, std::memory_order_release); }
    bool is_started() const { return m_handle != nullptr; }
    void mark_ended() { m_ended.store(true, std::memory_order_release); }
    bool has_ended() const { return m_ended.load(std::memory_order_acquire); }

  private:
    pthread_t *m_handle = nullptr;    // null = not started
    std::atomic<bool> m_ended{false}; // the task is about to return, or has
};

// The two of them.
extern helper_thread s_reader;
extern helper_thread s_bridge;

} // namespace ux

#endif
