// SPDX-License-Identifier: MIT
// The main loop: the order of a pass, dispatch of every kind of event, quitting. The event
// machinery around it is the test's; events are put into the ring while the loop sleeps.

#include "tests/support/screen_test.h"

#include "core/uxWidget.h"

#include <climits>
#include <deque>

namespace {

struct loop_log {
    std::string order; // what ran: "timeout", "alarm", "sleep", "key", "default" ...
    std::vector<ux_event> events;
    int handler_result;
    bool quit_in_handler;
};

loop_log s_loop;

int log_event(ux_event *event, const char *name) {
    s_loop.order += std::string(name) + " ";
    s_loop.events.push_back(*event);
    if (s_loop.quit_in_handler)
        ux_screen_quit_main_loop();
    return s_loop.handler_result;
}

int on_key(ux_event *event) {
    return log_event(event, "key");
}

int on_default(ux_event *event) {
    return log_event(event, "default");
}

int on_touch(ux_event *event) {
    return log_event(event, "touch");
}

int on_timeout(ux_event *event) {
    return log_event(event, "timeout");
}

int on_alarm(ux_event *event) {
    return log_event(event, "alarm");
}

class MainLoopTest : public ScreenTest {
  protected:
    void SetUp() override {
        ScreenTest::SetUp();
        s_loop = {};
        empty_ring();
        page = new_page();
        hooks::get().event_init = [this] {
            s_loop.order += "init ";
            running_at_init = ux::running;
            return init_result;
        };
        hooks::get().event_close = [this] {
            s_loop.order += "close ";
            return close_result;
        };
        hooks::get().on_usleep = [this] { sleep(); };
    }

    void TearDown() override {
        empty_ring();
        ScreenTest::TearDown();
    }

    static void empty_ring() {
        ux_event event;
        while (ux_event_get(&event) == 0)
            ;
    }

    // At each sleep the next events arrive; when there are none left, the loop is told to end.
    void sleep() {
        s_loop.order += "sleep ";
        if (arrivals.empty()) {
            ux_screen_quit_main_loop();
            return;
        }
        for (const ux_event &event : arrivals.front())
            EXPECT_EQ(ux_event_put(&event), 0);
        arrivals.pop_front();
    }

    static ux_event make_event(int type, int value, int x = 0, int y = 0) {
        ux_event event = {};
        event.type = type;
        event.value = value;
        event.x = x;
        event.y = y;
        return event;
    }

    // Runs the loop over the arrivals and returns its result; `out` and `err` get what it printed.
    int run() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = ux_screen_main_loop();
        err = testing::internal::GetCapturedStderr();
        out = testing::internal::GetCapturedStdout();
        return result;
    }

    int run_one(const ux_event &event) {
        arrivals = {{event}};
        return run();
    }

    ux_page *page = nullptr;
    std::deque<std::vector<ux_event>> arrivals;
    int init_result = 0;
    int close_result = 0;
    int running_at_init = -1;
    std::string out;
    std::string err;
};

} // namespace

TEST_F(MainLoopTest, failed_event_init_is_reported_and_gives_the_prints_character_count) {
    init_result = -1;
    // "Error: [0] " is 11 characters, the text 22, the line end 1.
    EXPECT_EQ(run(), 34);
    EXPECT_EQ(err, "Error: [0] Queue Creation failed\n\n");
    EXPECT_EQ(out, "");
    EXPECT_EQ(s_loop.order, "init ");
}

TEST_F(MainLoopTest, report_of_a_failed_event_init_shows_ux_error) {
    init_result = INT_MIN;
    ux_error = -12;
    EXPECT_EQ(run(), 36);
    EXPECT_EQ(err, "Error: [-12] Queue Creation failed\n\n");
}

TEST_F(MainLoopTest, any_other_result_of_the_event_init_starts_the_loop) {
    init_result = 3;
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(s_loop.order, "init sleep close ");
}

TEST_F(MainLoopTest, result_is_the_event_closes) {
    close_result = -7;
    EXPECT_EQ(run(), -7);
}

TEST_F(MainLoopTest, running_is_set_after_the_event_init) {
    ux_screen_quit_main_loop();
    arrivals = {{}, {}};
    run();
    EXPECT_EQ(running_at_init, 0);
    EXPECT_EQ(s_loop.order, "init sleep sleep sleep close ");
    EXPECT_EQ(ux::running, 0);
}

TEST_F(MainLoopTest, pass_is_timeout_alarm_sleep_event) {
    page->key_handlers[23] = on_key;
    ux_set_timeout(0, on_timeout, nullptr);
    tm when = {};
    when.tm_year = 60;
    when.tm_mday = 1;
    ux_set_atimer(&when, on_alarm, nullptr);
    run_one(make_event(UX_EVENT_KEY, 23));
    EXPECT_EQ(s_loop.order, "init timeout alarm sleep key sleep close ");
    EXPECT_EQ(hooks::get().usleeps, (std::vector<unsigned>{10000, 10000}));
}

TEST_F(MainLoopTest, one_event_is_taken_in_each_pass_also_when_more_wait) {
    page->key_handlers[1] = on_key;
    const ux_event key = make_event(UX_EVENT_KEY, 1);
    arrivals = {{key, key, key}, {}, {}};
    run();
    EXPECT_EQ(s_loop.order, "init sleep key sleep key sleep key sleep close ");
}

TEST_F(MainLoopTest, key_event_goes_to_the_pages_own_handler) {
    page->key_handlers[5] = on_key;
    page->default_key_handler = on_default;
    run_one(make_event(UX_EVENT_KEY, 5));
    EXPECT_EQ(s_loop.order, "init sleep key sleep close ");
    EXPECT_EQ(s_loop.events.at(0).type, 1);
    EXPECT_EQ(s_loop.events.at(0).value, 5);
}

TEST_F(MainLoopTest, key_without_an_entry_goes_to_the_default_handler) {
    page->key_handlers[5] = on_key;
    page->default_key_handler = on_default;
    run_one(make_event(UX_EVENT_KEY, 6));
    EXPECT_EQ(s_loop.order, "init sleep default sleep close ");
}

TEST_F(MainLoopTest, key_without_any_handler_is_discarded_without_output) {
    run_one(make_event(UX_EVENT_KEY, 6));
    EXPECT_EQ(s_loop.order, "init sleep sleep close ");
    EXPECT_EQ(out, "");
    EXPECT_EQ(err, "");
}

TEST_F(MainLoopTest, keys_outside_the_table_go_to_the_default_handler) {
    for (ux_handler &handler : page->key_handlers)
        handler = on_key;
    const int keys[] = {-1, 256, INT_MIN, INT_MAX, 0, 255};
    arrivals = {{}};
    for (int key : keys)
        arrivals.push_back({make_event(UX_EVENT_KEY, key)});
    page->default_key_handler = on_default;
    run();
    EXPECT_EQ(s_loop.order, "init sleep sleep default sleep default sleep default sleep default "
                            "sleep key sleep key sleep close ");
    s_loop = {};
    page->default_key_handler = nullptr;
    run_one(make_event(UX_EVENT_KEY, 256));
    EXPECT_EQ(s_loop.order, "init sleep sleep close ");
}

TEST_F(MainLoopTest, any_other_type_goes_to_the_key_handlers) {
    page->key_handlers[9] = on_key;
    for (int type : {0, 3, 4, 7, -1, INT_MAX}) {
        s_loop = {};
        run_one(make_event(type, 9));
        EXPECT_EQ(s_loop.order, "init sleep key sleep close ") << type;
        EXPECT_EQ(s_loop.events.at(0).type, type);
    }
}

TEST_F(MainLoopTest, stop_event_left_in_the_ring_fires_a_key_handler_in_the_next_run) {
    page->key_handlers[0] = on_key;
    hooks::get().event_close = [] {
        const ux_event stop = {};
        return ux_event_put(&stop);
    };
    run();
    EXPECT_EQ(s_loop.order, "init sleep ");
    run();
    EXPECT_EQ(s_loop.order, "init sleep init sleep key ");
}

TEST_F(MainLoopTest, key_handler_gets_the_focus_object_and_its_data) {
    int data = 0;
    ux_container *box = ux_container_new(&page->container, 1, 1, 3, 3);
    ux_obj_set_handler(&box->obj, on_touch, &data);
    page->focus = &box->obj;
    page->key_handlers[5] = on_key;
    run_one(make_event(UX_EVENT_KEY, 5));
    EXPECT_EQ(s_loop.order, "init sleep key sleep close "); // and not the object's own handler
    EXPECT_EQ(s_loop.events.at(0).obj, &box->obj);
    EXPECT_EQ(s_loop.events.at(0).data, &data);
}

TEST_F(MainLoopTest, key_handler_without_a_focus_object_gets_nulls) {
    page->key_handlers[5] = on_key;
    ux_event event = make_event(UX_EVENT_KEY, 5);
    event.obj = &page->container.obj;
    event.data = page;
    run_one(event);
    EXPECT_EQ(s_loop.events.at(0).obj, nullptr);
    EXPECT_EQ(s_loop.events.at(0).data, nullptr);
}

TEST_F(MainLoopTest, touch_is_offered_to_the_current_pages_objects) {
    ux_page *other = new_page();
    ux_container_new(&page->container, 1, 1, 5, 5)->obj.handler = on_key;
    ux_container *box = ux_container_new(&other->container, 1, 1, 5, 5);
    box->obj.handler = on_touch;
    other->default_key_handler = on_default;
    main_screen.current_page = 1;
    run_one(make_event(UX_EVENT_TOUCH, 44, 6, 6));
    EXPECT_EQ(s_loop.order, "init sleep touch sleep close ");
    EXPECT_EQ(s_loop.events.at(0).obj, &box->obj);
    EXPECT_EQ(s_loop.events.at(0).x, 6);
    EXPECT_EQ(out, std::string(48, '1') + "\n" + std::string(48, '2') + "\n" +
                       std::string(49, '3') + "\n");
}

TEST_F(MainLoopTest, touch_handler_gets_the_touched_object_and_not_the_focus) {
    int data = 0;
    ux_container *focus = ux_container_new(&page->container, 1, 1, 1, 1);
    ux_obj_set_handler(&focus->obj, on_key, &data);
    page->focus = &focus->obj;
    page->container.obj.handler = on_touch;
    run_one(make_event(UX_EVENT_TOUCH, 44, 10, 5));
    EXPECT_EQ(s_loop.order, "init sleep touch sleep close ");
    EXPECT_EQ(s_loop.events.at(0).obj, &page->container.obj);
    EXPECT_EQ(s_loop.events.at(0).data, nullptr);
}

TEST_F(MainLoopTest, events_without_a_current_page_are_dropped) {
    page->key_handlers[5] = on_key;
    page->container.obj.handler = on_touch;
    main_screen.current_page = 32;
    arrivals = {{make_event(UX_EVENT_KEY, 5)}, {make_event(UX_EVENT_TOUCH, 44, 1, 1)}};
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(s_loop.order, "init sleep sleep sleep close ");
    EXPECT_EQ(out, "");
}

TEST_F(MainLoopTest, quit_from_a_key_handler_ends_the_loop_before_the_next_timer_check) {
    page->key_handlers[5] = [](ux_event *event) {
        ux_set_timeout(0, on_timeout, nullptr);
        return on_key(event);
    };
    s_loop.quit_in_handler = true;
    run_one(make_event(UX_EVENT_KEY, 5));
    EXPECT_EQ(s_loop.order, "init sleep key close ");
}

TEST_F(MainLoopTest, quit_from_a_touch_handler_ends_the_loop) {
    page->container.obj.handler = on_touch;
    s_loop.quit_in_handler = true;
    run_one(make_event(UX_EVENT_TOUCH, 44, 1, 1));
    EXPECT_EQ(s_loop.order, "init sleep touch close ");
}

TEST_F(MainLoopTest, quit_from_a_timer_still_sleeps_and_dispatches_one_event) {
    page->key_handlers[5] = on_key;
    s_loop.quit_in_handler = true;
    ux_set_timeout(0, on_timeout, nullptr);
    const ux_event key = make_event(UX_EVENT_KEY, 5);
    arrivals = {{key, key}};
    run();
    EXPECT_EQ(s_loop.order, "init timeout sleep key close ");
}

TEST_F(MainLoopTest, handlers_result_does_not_end_the_loop) {
    page->key_handlers[5] = on_key;
    for (int result : {-1, 1, 99}) {
        s_loop = {};
        s_loop.handler_result = result;
        const ux_event key = make_event(UX_EVENT_KEY, 5);
        arrivals = {{key}, {key}};
        run();
        EXPECT_EQ(s_loop.order, "init sleep key sleep key sleep close ");
    }
}

TEST_F(MainLoopTest, handler_may_switch_the_page_for_the_next_event) {
    ux_page *other = new_page();
    page->key_handlers[5] = [](ux_event *event) {
        main_screen.current_page = 1;
        return on_key(event);
    };
    other->key_handlers[5] = on_default;
    const ux_event key = make_event(UX_EVENT_KEY, 5);
    arrivals = {{key, key}, {}};
    run();
    EXPECT_EQ(s_loop.order, "init sleep key sleep default sleep close ");
}
