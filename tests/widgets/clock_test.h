// SPDX-License-Identifier: MIT
// What tests of the clock share: a small clock on a controlled time, handlers that note their calls
// and do what the test says.
#ifndef UX_TESTS_WIDGETS_CLOCK_TEST_H
#define UX_TESTS_WIDGETS_CLOCK_TEST_H

#include "tests/widgets/picture_widget_test.h"

#include <functional>

namespace clock_tests {

// What the handlers do; they are plain functions.
struct script {
    std::vector<std::string> log;
    std::function<void(ux_clock *)> on_sync;
    std::function<void(ux_clock *)> on_tick;
};

inline script s_script;

inline int note_sync(ux_clock *clock, intptr_t a, intptr_t b, intptr_t c) {
    s_script.log.push_back("sync " + std::to_string(a) + " " + std::to_string(b) + " " +
                           std::to_string(c));
    if (s_script.on_sync)
        s_script.on_sync(clock);
    return 77;
}

inline int note_tick(ux_clock *clock, int hours, int minutes, int seconds) {
    s_script.log.push_back("tick " + std::to_string(hours) + ":" + std::to_string(minutes) + ":" +
                           std::to_string(seconds));
    if (s_script.on_tick)
        s_script.on_tick(clock);
    return 77;
}

} // namespace clock_tests

class ClockTest : public PictureWidgetTest {
  protected:
    using log = std::vector<std::string>;

    void SetUp() override {
        PictureWidgetTest::SetUp();
        clock_tests::s_script = {};
        hooks::get().now = {1000, 0};
    }
    void TearDown() override {
        clock_tests::s_script = {};
        PictureWidgetTest::TearDown();
    }

    // A clock of 7 x 7 pixels at (1, 1), radius 3, on a blue face.
    ux_clock *make() {
        ux_clock *clock =
            ux_clock_new(root(), 1, 1, 7, 7, 3, 3, 3, blue.c_str(), red.c_str(), green.c_str());
        take_calls();
        return clock;
    }

    // The same with both handlers noting.
    ux_clock *make_noting() {
        ux_clock *clock = make();
        ux_clock_set_sync_cb(clock, clock_tests::note_sync);
        ux_clock_set_tick_cb(clock, clock_tests::note_tick);
        return clock;
    }

    static log take_log() { return std::exchange(clock_tests::s_script.log, {}); }

    // Lets time pass and the due timeouts fire.
    static void pass(int seconds, int us = 0) {
        timeval &now = hooks::get().now;
        now.tv_sec += seconds;
        now.tv_usec += us;
        ux_check_timeout();
    }

    static int pending() {
        int count = 0;
        for (const ux_timeout *timer = ux_timeout_list; timer; timer = timer->next)
            count++;
        return count;
    }

    static std::string time_of(const ux_clock *clock) {
        return std::to_string(clock->hours) + ":" + std::to_string(clock->minutes) + ":" +
               std::to_string(clock->seconds);
    }
};

#endif
