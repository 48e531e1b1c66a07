// SPDX-License-Identifier: MIT
// The main loop with the real event thread, pipe and queue: what a pass does and in which order,
// and who gets an event.

#include "core/uxWidget.h"
#include "tests/event/event_test.h"

#include <functional>
#include <vector>

namespace {

using event_tests::occurrences;
using names = std::vector<std::string>;

// What happened, in order, and what is done about it.
struct script {
    names log;
    std::vector<ux_event> events;
    std::function<void(ux_event *)> then;
};

script s_script;

void note(const char *name, ux_event *event) {
    s_script.log.emplace_back(name);
    s_script.events.push_back(*event);
    if (s_script.then)
        s_script.then(event);
}

int on_key(ux_event *event) {
    note("key", event);
    return -5;
}

int on_any_key(ux_event *event) {
    note("default", event);
    return 0;
}

int on_object(ux_event *event) {
    note("object", event);
    return 0;
}

int on_timeout(ux_event *event) {
    note("timeout", event);
    return 0;
}

int on_alarm(ux_event *event) {
    note("alarm", event);
    return 0;
}

int on_quit(ux_event *) {
    s_script.log.emplace_back("quit");
    return ux_screen_quit_main_loop();
}

// One page without screen memory: nothing is painted here.
class MainLoopRun : public EventTest {
  protected:
    void SetUp() override {
        EventTest::SetUp();
        s_script = {};
        main_screen = {};
        main_screen.width = main_screen.xres = 100;
        main_screen.height = main_screen.yres = 100;
        ASSERT_EQ(ux_page_new(), 0);
    }
    void TearDown() override {
        while (ux_timeout_list)
            ux_delete_timeout(ux_timeout_list->id);
        while (ux_atimer_list)
            ux_delete_atimer(ux_atimer_list->id);
        ux_obj_free(&main_screen.pages[0]->container.obj);
        main_screen = {};
        EventTest::TearDown();
    }
    static ux_page *page() { return main_screen.pages[0]; }
    static void put(int type, int value, int x = 0, int y = 0) {
        const ux_event event = {type, value, x, y, nullptr, nullptr};
        ASSERT_EQ(ux_event_put(&event), 0);
    }
    // Runs the loop until `passes` sleeps are over.
    static int run_passes(int passes) {
        s_passes_left = passes;
        hooks::get().on_usleep = [] {
            if (pthread_equal(pthread_self(), s_loop_thread) && --s_passes_left <= 0)
                ux_screen_quit_main_loop();
        };
        s_loop_thread = pthread_self();
        return ux_screen_main_loop();
    }
    static names log() { return s_script.log; }

    static int s_passes_left;
    static pthread_t s_loop_thread;
};

int MainLoopRun::s_passes_left;
pthread_t MainLoopRun::s_loop_thread;

TEST_F(MainLoopRun, a_pass_runs_timeouts_then_alarms_then_sleeps_then_takes_an_event) {
    ux_page_set_key_handler(page(), 23, on_key);
    put(1, 23);
    struct tm past = {};
    past.tm_year = 100;
    past.tm_mday = 1;
    ux_set_atimer(&past, on_alarm, nullptr);
    ux_set_timeout(0, on_timeout, nullptr);
    s_loop_thread = pthread_self();
    hooks::get().on_usleep = [] {
        if (!pthread_equal(pthread_self(), s_loop_thread))
            return;
        s_script.log.emplace_back("sleep");
        ux_screen_quit_main_loop();
    };
    EXPECT_EQ(ux_screen_main_loop(), 0);
    // The close sleeps too while it waits.
    names begin = log();
    begin.resize(4);
    EXPECT_EQ(begin, (names{"timeout", "alarm", "sleep", "key"}));
}

TEST_F(MainLoopRun, a_pass_takes_one_event_also_when_more_wait) {
    ux_page_set_key_handler(page(), 23, on_key);
    for (int i = 0; i < 5; i++)
        put(1, 23);
    run_passes(2);
    EXPECT_EQ(log(), (names{"key", "key"}));
    run_passes(3);
    EXPECT_EQ(log().size(), 5u);
}

TEST_F(MainLoopRun, a_pass_sleeps_10_milliseconds) {
    EXPECT_GE(event_tests::milliseconds_of([] { run_passes(10); }), 100);
}

TEST_F(MainLoopRun, its_result_is_that_of_the_close) {
    EXPECT_EQ(run_passes(1), 0);
}

TEST_F(MainLoopRun, a_quit_before_it_runs_does_not_count) {
    ux_page_set_key_handler(page(), 23, on_key);
    put(1, 23);
    ux_screen_quit_main_loop();
    run_passes(1);
    EXPECT_EQ(log(), names{"key"});
}

TEST_F(MainLoopRun, a_key_goes_to_its_handler_with_the_focus_object_and_its_data) {
    int data = 0;
    ux_obj object = {};
    object.handler = on_object;
    object.handler_data = &data;
    page()->focus = &object;
    ux_page_set_key_handler(page(), 23, on_key);
    ux_page_set_default_key_handler(page(), on_any_key);
    put(1, 23);
    run_passes(1);
    page()->focus = nullptr;
    ASSERT_EQ(log(), names{"key"}) << "the object's own handler is for touches";
    EXPECT_EQ(s_script.events[0].type, 1);
    EXPECT_EQ(s_script.events[0].value, 23);
    EXPECT_EQ(s_script.events[0].obj, &object);
    EXPECT_EQ(s_script.events[0].data, &data);
}

TEST_F(MainLoopRun, without_focus_object_and_data_of_a_key_are_null) {
    ux_page_set_key_handler(page(), 23, on_key);
    put(1, 23);
    run_passes(1);
    ASSERT_EQ(log(), names{"key"});
    EXPECT_EQ(s_script.events[0].obj, nullptr);
    EXPECT_EQ(s_script.events[0].data, nullptr);
}

TEST_F(MainLoopRun, a_key_without_handler_goes_to_the_default_handler) {
    ux_page_set_key_handler(page(), 23, on_key);
    ux_page_set_default_key_handler(page(), on_any_key);
    put(1, 24);
    run_passes(1);
    EXPECT_EQ(log(), names{"default"});
}

TEST_F(MainLoopRun, a_key_without_any_handler_is_dropped_without_output) {
    put(1, 24);
    run_passes(1);
    EXPECT_EQ(err(), "event_task: 0 0 0 0\n");
    EXPECT_EQ(out(), "");
}

TEST_F(MainLoopRun, codes_0_and_255_have_entries_of_their_own) {
    ux_page_set_default_key_handler(page(), on_any_key);
    ux_page_set_key_handler(page(), 0, on_key);
    ux_page_set_key_handler(page(), 255, on_key);
    put(1, 0);
    put(1, 255);
    run_passes(2);
    EXPECT_EQ(log(), (names{"key", "key"}));
}

TEST_F(MainLoopRun, codes_beyond_the_table_go_to_the_default_handler) {
    ux_page_set_default_key_handler(page(), on_any_key);
    const names expected(6, "default");
    for (int code : {-1, 256, 257, 100000, -2147483647 - 1, 2147483647})
        put(1, code);
    run_passes(6);
    EXPECT_EQ(log(), expected);
}

TEST_F(MainLoopRun, codes_beyond_the_table_are_dropped_without_a_default_handler) {
    for (int code : {-1, 256, -2147483647 - 1, 2147483647})
        put(1, code);
    run_passes(4);
    EXPECT_EQ(log(), names{});
}

TEST_F(MainLoopRun, types_0_3_4_and_7_go_to_the_key_handlers_by_value) {
    ux_page_set_key_handler(page(), 23, on_key);
    for (int type : {0, 3, 4, 7, -1})
        put(type, 23);
    run_passes(5);
    EXPECT_EQ(log(), names(5, "key"));
    EXPECT_EQ(s_script.events[3].type, 7);
}

TEST_F(MainLoopRun, a_stop_event_left_in_the_ring_fires_a_key_handler_in_the_next_run) {
    ux_page_set_key_handler(page(), 23, on_key);
    s_script.then = [](ux_event *) { ux_screen_quit_main_loop(); };
    ux_event_init();
    write_message("1\n23\n");
    ASSERT_EQ(next_event(), "1 23 0 0");
    ux_event_close();
    run_passes(1000);
    ASSERT_EQ(log(), names{"key"});
    EXPECT_EQ(s_script.events[0].type, 0);
    EXPECT_EQ(s_script.events[0].value, 23);
}

TEST_F(MainLoopRun, a_quit_in_a_timer_still_takes_one_event_in_the_same_pass) {
    ux_page_set_key_handler(page(), 23, on_key);
    put(1, 23);
    put(1, 23);
    ux_set_timeout(0, on_quit, nullptr);
    EXPECT_EQ(ux_screen_main_loop(), 0);
    EXPECT_EQ(log(), (names{"quit", "key"}));
}

TEST_F(MainLoopRun, a_quit_in_a_key_handler_ends_it_before_the_next_timers) {
    ux_page_set_key_handler(page(), 23, on_key);
    put(1, 23);
    s_script.then = [](ux_event *) {
        ux_set_timeout(0, on_timeout, nullptr);
        ux_screen_quit_main_loop();
    };
    EXPECT_EQ(ux_screen_main_loop(), 0);
    EXPECT_EQ(log(), names{"key"});
}

TEST_F(MainLoopRun, a_timer_set_in_its_own_callback_fires_in_the_next_pass) {
    s_script.then = [](ux_event *) { ux_set_timeout(0, on_timeout, nullptr); };
    ux_set_timeout(0, on_timeout, nullptr);
    run_passes(4);
    EXPECT_GE(log().size(), 4u);
}

TEST_F(MainLoopRun, events_are_dropped_when_no_page_is_current) {
    ux_page_set_default_key_handler(page(), on_any_key);
    for (int index : {-1, 1, 31, 32, 2147483647}) {
        main_screen.current_page = index;
        put(1, 23);
        put(2, 44, 5, 5);
        run_passes(2);
    }
    EXPECT_EQ(log(), names{});
    EXPECT_EQ(out(), "");
}

TEST_F(MainLoopRun, a_touch_goes_to_the_object_under_it_and_not_to_key_handlers) {
    int data = 0;
    ux_obj object = {};
    object.x = 10;
    object.y = 20;
    object.width = 30;
    object.height = 40;
    object.handler = on_object;
    object.handler_data = &data;
    ux_container_add_obj(&page()->container, &object);
    ux_page_set_default_key_handler(page(), on_any_key);
    put(2, 44, 40, 60); // both far edges
    put(2, 44, 41, 60); // one beyond
    put(2, 44, 10, 61);
    run_passes(3);
    page()->container.children = nullptr;
    ASSERT_EQ(log(), names{"object"});
    EXPECT_EQ(s_script.events[0].type, 2);
    EXPECT_EQ(s_script.events[0].value, 44);
    EXPECT_EQ(s_script.events[0].x, 40);
    EXPECT_EQ(s_script.events[0].y, 60);
    EXPECT_EQ(s_script.events[0].obj, &object);
    EXPECT_EQ(s_script.events[0].data, &data);
    // The object each time; the page too where the object did not take it.
    EXPECT_EQ(occurrences(out(), std::string(48, '1') + "\n"), 5);
    EXPECT_EQ(occurrences(out(), std::string(49, '3') + "\n"), 1);
}

TEST_F(MainLoopRun, a_key_goes_the_whole_way_from_the_queue_to_its_handler) {
    ASSERT_GE(make_queue(0660), 0);
    send_driver_message(23, 1);
    ux_page_set_key_handler(page(), 23, on_key);
    s_script.then = [](ux_event *) { ux_screen_quit_main_loop(); };
    run_passes(1000);
    ASSERT_EQ(log(), names{"key"});
    EXPECT_EQ(s_script.events[0].value, 23);
}

TEST_F(MainLoopRun, quitting_from_another_thread_ends_it) {
    std::thread quitting([] {
        event_tests::eventually([] { return ux::running == 1; });
        ux_screen_quit_main_loop();
    });
    EXPECT_EQ(ux_screen_main_loop(), 0);
    quitting.join();
}

TEST_F(MainLoopRun, a_loop_within_a_handler_ends_both_and_leaves_no_thread) {
    ux_page_set_key_handler(page(), 23, on_key);
    put(1, 23);
    s_script.then = [](ux_event *) {
        s_script.then = nullptr;
        ux_set_timeout(0, on_quit, nullptr);
        EXPECT_EQ(ux_screen_main_loop(), 0);
    };
    EXPECT_EQ(ux_screen_main_loop(), 0);
    EXPECT_FALSE(ux::s_reader.is_started());
    EXPECT_FALSE(ux::s_bridge.is_started());
}

} // namespace
