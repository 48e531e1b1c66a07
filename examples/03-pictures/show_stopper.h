// SPDX-License-Identifier: MIT
// Keys that stop an effect.
#ifndef UX_EXAMPLES_SHOW_STOPPER_H
#define UX_EXAMPLES_SHOW_STOPPER_H

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <ux.h>

// While an effect reveals a picture the main loop stands still and no handler runs. For that time
// this thread takes the events instead, and tells the effect through its two variables to stop.
// Both exist from the start, so that setting them only exchanges their values.
class show_stopper {
  public:
    show_stopper() : m_thread([this] { watch(); }) {}
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
                take(event);
            std::this_thread::sleep_for(nap);
        }
    }

    static void take(const ux_event &event) {
        if (event.type != UX_EVENT_KEY)
            return;
        if (event.value == UX_KEY_0)
            setenv("STATUS", "gotoMenu", 1);
        else if (event.value == UX_KEY_OK)
            setenv("ShowMSG", "YES", 1);
    }

    std::atomic<bool> m_is_over = false;
    std::thread m_thread;
};

#endif
