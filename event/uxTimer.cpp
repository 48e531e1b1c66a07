// SPDX-License-Identifier: MIT
// One-shot timers polled by the main loop: timeouts in microseconds, alarms at a calendar time.

#include "core/object_kit.h"

#include <cstdlib>
#include <sys/time.h>

ux_timeout *ux_timeout_list;
int ux_timeout_count;
ux_atimer *ux_atimer_list;
int ux_atimer_count;

namespace ux {
namespace {

constexpr int k_second_us = 1000000;

// What is left of a timer when it fires.
struct due_call {
    ux_handler callback;
    void *data;
};

// Unlinks and releases the newest timer for which test(timer) holds; false when there is none.
template <class Timer, class Test>
bool take_first(Timer **list, Test test, due_call *call) {
    for (Timer **link = list; *link; link = &(*link)->next) {
        Timer *timer = *link;
        if (!test(timer))
            continue;
        *link = timer->next;
        *call = {timer->callback, timer->data};
        free(timer);
        return true;
    }
    return false;
}

// Fires all that are due. A callback may change the list, so each search starts at its head again.
template <class Timer, class Test>
void fire(Timer **list, int32_t event_type, Test is_due) {
    due_call call;
    while (take_first(list, is_due, &call)) {
        ux_event event = {};
        event.type = event_type;
        event.data = call.data;
        if (call.callback)
            call.callback(&event);
    }
}

template <class Timer>
void remove(Timer **list, int id) {
    due_call unused;
    take_first(
        list, [id](const Timer *timer) { return timer->id == id; }, &unused);
}

} // namespace
} // namespace ux

// The sum wraps in 32 bits; a negative one is cut toward zero and due at once.
int ux_set_timeout(int delay_us, ux_handler callback, void *data) noexcept {
    auto *timer = ux::allocate<ux_timeout>("Not enough memory space for timeout!\n");
    if (!timer)
        return -2;
    timeval now;
    gettimeofday(&now, nullptr);
    const auto t =
        static_cast<int32_t>(static_cast<uint32_t>(delay_us) + static_cast<uint32_t>(now.tv_usec));
    timer->delay = delay_us;
    timer->callback = callback;
    timer->data = data;
    timer->start_sec = static_cast<int32_t>(now.tv_sec);
    timer->start_usec = static_cast<int32_t>(now.tv_usec);
    timer->due_sec = static_cast<int32_t>(now.tv_sec + t / ux::k_second_us);
    timer->due_usec = t % ux::k_second_us;
    timer->id = ux_timeout_count++;
    timer->next = ux_timeout_list;
    ux_timeout_list = timer;
    return timer->id;
}

void ux_delete_timeout(int id) noexcept {
    ux::remove(&ux_timeout_list, id);
}

void ux_check_timeout() noexcept {
    timeval now;
    gettimeofday(&now, nullptr);
    ux::fire(&ux_timeout_list, UX_EVENT_TIMEOUT, [&now](const ux_timeout *timer) {
        const auto sec = static_cast<int32_t>(now.tv_sec);
        return timer->due_sec < sec || (timer->due_sec == sec && now.tv_usec >= timer->due_usec);
    });
}

int ux_set_atimer(struct tm *when, ux_handler callback, void *data) noexcept {
    auto *timer = ux::allocate<ux_atimer>("Not enough memory space for atimer!\n");
    if (!timer)
        return -2;
    timer->callback = callback;
    timer->data = data;
    timer->created = time(nullptr);
    timer->due = mktime(when);
    timer->id = ux_atimer_count++;
    timer->next = ux_atimer_list;
    ux_atimer_list = timer;
    return timer->id;
}

void ux_delete_atimer(int id) noexcept {
    ux::remove(&ux_atimer_list, id);
}

void ux_check_atimer() noexcept {
    const time_t now = time(nullptr);
    ux::fire(&ux_atimer_list, UX_EVENT_ATIMER,
             [now](const ux_atimer *timer) { return timer->due <= now; });
}
