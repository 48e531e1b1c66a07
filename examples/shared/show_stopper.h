// SPDX-License-Identifier: MIT
// Events that arrive while an effect goes on.
#ifndef UX_EXAMPLES_SHOW_STOPPER_H
#define UX_EXAMPLES_SHOW_STOPPER_H

#include <atomic>
#include <chrono>
#include <thread>

#include <ux.h>

// While an effect reveals a picture the main loop stands still and no handler runs. For that time
// this thread takes the events instead; `take` tells the effect to stop by raising a flag.
class show_stopper {
  public:
    using taker = void (*)(const ux_event &event);

    explicit show_stopper(taker take) : m_take(take), m_thread([this] { watch(); }) {}
    ~show_stopper() {
        m_is_over = true;
        m_thread.join();
    }
    show_stopper(const show_stopper &) = delete;
    show_stopper &operator=(const show_stopper &) = delete;

  private:
    void watch() {
        constexpr std::chrono::milliseconds nap(5);
        while (!m_is_over) {
            ux_event event;
            while (ux_event_get(&event) == 0)
                m_take(event);
            std::this_thread::sleep_for(nap);
        }
    }

    taker m_take;
    std::atomic<bool> m_is_over = false;
    std::thread m_thread;
};

#endif
