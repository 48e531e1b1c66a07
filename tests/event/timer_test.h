// SPDX-License-Identifier: MIT
// What tests of timers stand on: a clock that stands until it is told, and callbacks that note
// their calls and do what the test says.
#ifndef UX_TESTS_EVENT_TIMER_TEST_H
#define UX_TESTS_EVENT_TIMER_TEST_H

#include "tests/event/event_test.h"

#include <climits>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace timer_tests {

// What the callbacks do; they are plain functions.
struct script {
    std::vector<std::string> fired; // names, in order
    std::vector<ux_event> events;
    std::function<void(const std::string &name)> then; // runs inside each callback
};

inline script s_script;

inline int note(ux_event *event) {
    const std::string name = event->data ? static_cast<const char *>(event->data) : "null";
    s_script.fired.push_back(name);
    s_script.events.push_back(*event);
    if (s_script.then)
        s_script.then(name);
    return 77;
}

inline char k_a[] = "a";
inline char k_b[] = "b";
inline char k_c[] = "c";

using names = std::vector<std::string>;

} // namespace timer_tests

class TimerTest : public EventTest {
  protected:
    void SetUp() override {
        EventTest::SetUp();
        hooks::get().fake_clock = true;
        at(1000, 0);
        timer_tests::s_script = {};
        ux_timeout_count = 0;
        ux_atimer_count = 0;
    }
    void TearDown() override {
        while (ux_timeout_list)
            ux_delete_timeout(ux_timeout_list->id);
        while (ux_atimer_list)
            ux_delete_atimer(ux_atimer_list->id);
        hooks::get().fake_clock = false;
        EventTest::TearDown();
    }
    static void at(time_t sec, int usec) { hooks::get().now = {sec, usec}; }
    static timer_tests::names fired() { return timer_tests::s_script.fired; }

    // What a check at this time fires.
    static timer_tests::names check_at(time_t sec, int usec) {
        at(sec, usec);
        timer_tests::s_script.fired.clear();
        ux_check_timeout();
        return timer_tests::s_script.fired;
    }
    static timer_tests::names check_alarms_at(time_t sec) {
        at(sec, 999999);
        timer_tests::s_script.fired.clear();
        ux_check_atimer();
        return timer_tests::s_script.fired;
    }
    // The broken-down local time of `sec`.
    static struct tm local(time_t sec) {
        struct tm when = {};
        localtime_r(&sec, &when);
        return when;
    }
    static int set_alarm(time_t sec, void *data) {
        struct tm when = local(sec);
        return ux_set_atimer(&when, timer_tests::note, data);
    }
};

#endif
