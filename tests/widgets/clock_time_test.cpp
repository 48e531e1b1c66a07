// SPDX-License-Identifier: MIT
// The clock in time: when it advances, when it asks for the time and when it tells it, being
// hidden, shown and freed in the middle of that.

#include "tests/widgets/clock_test.h"

#include <climits>

using clock_tests::s_script;

TEST_F(ClockTest, show_of_a_hidden_clock_synchronises_with_the_callers_values) {
    ux_clock *clock = make_noting();
    EXPECT_EQ(ux_clock_show(&clock->obj, 4, -5, 6), 0);
    EXPECT_EQ(take_log(), log{"sync 4 -5 6"});
    EXPECT_EQ(clock->state->sync_countdown, 15);
    EXPECT_EQ(clock->obj.status, static_cast<uint32_t>(UX_ST_VISIBLE));
}

TEST_F(ClockTest, show_of_a_visible_clock_does_not_synchronise_and_keeps_the_countdown) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    pass(2);
    take_log();
    ux_clock_show(&clock->obj, 1, 2, 3);
    EXPECT_EQ(take_log(), log{});
    EXPECT_EQ(clock->state->sync_countdown, 14);
}

TEST_F(ClockTest, slots_of_generic_code_hand_on_zeros) {
    ux_clock *clock = make_noting();
    EXPECT_EQ(clock->obj.show(&clock->obj), 0);
    EXPECT_EQ(take_log(), log{"sync 0 0 0"});
    EXPECT_EQ(clock->obj.repaint(&clock->obj), 0);
    EXPECT_EQ(take_log(), log{});
    EXPECT_TRUE(clock->obj.status & UX_ST_VISIBLE);
    clock->obj.hide(&clock->obj);
    EXPECT_EQ(clock->obj.repaint(&clock->obj), 0);
    EXPECT_FALSE(clock->obj.status & UX_ST_VISIBLE);
}

TEST_F(ClockTest, repaint_shows_a_visible_clock_and_hides_a_hidden_one) {
    ux_clock *clock = make_noting();
    clock->obj.status = UX_ST_VISIBLE;
    EXPECT_EQ(ux_clock_repaint(&clock->obj, 1, 2, 3), 0);
    EXPECT_EQ(pending(), 1);
    EXPECT_EQ(buf_pixel(1, 1), k_blue_seen);
    clock->obj.status = 0;
    EXPECT_EQ(ux_clock_repaint(&clock->obj, 1, 2, 3), 0);
    EXPECT_EQ(pending(), 0);
    EXPECT_EQ(take_log(), log{});
}

TEST_F(ClockTest, show_starts_one_timeout_of_10000_microseconds) {
    ux_clock *clock = make();
    ux_clock_show(&clock->obj, 0, 0, 0);
    ux_clock_show(&clock->obj, 0, 0, 0);
    ASSERT_EQ(pending(), 1);
    EXPECT_EQ(ux_timeout_list->delay, 10000);
    EXPECT_EQ(ux_timeout_list->callback, ux_clock_update);
    EXPECT_EQ(ux_timeout_list->data, clock);
    EXPECT_EQ(clock->state->timeout_id, ux_timeout_list->id);
}

TEST_F(ClockTest, timeout_starts_itself_again_without_advancing_before_2_seconds) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    pass(0, 9999);
    EXPECT_EQ(ux_timeout_list->id, 0) << "not due yet";
    pass(0, 1);
    EXPECT_EQ(ux_timeout_list->id, 1);
    pass(1, 500000);
    EXPECT_EQ(ux_timeout_list->id, 2);
    EXPECT_EQ(take_log(), log{});
    EXPECT_EQ(time_of(clock), "0:0:0");
    EXPECT_EQ(pending(), 1);
}

TEST_F(ClockTest, advance_is_one_second_however_many_have_passed) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    pass(2);
    EXPECT_EQ(take_log(), log{"tick 0:0:1"});
    pass(1);
    EXPECT_EQ(take_log(), log{});
    pass(1);
    EXPECT_EQ(take_log(), log{"tick 0:0:2"});
    pass(3600);
    EXPECT_EQ(take_log(), log{"tick 0:0:3"});
    EXPECT_EQ(clock->state->last_advance, hooks::get().now.tv_sec);
}

TEST_F(ClockTest, show_counts_the_2_seconds_from_itself) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    hooks::get().now.tv_sec += 5;
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    pass(1);
    EXPECT_EQ(take_log(), log{});
    pass(1);
    EXPECT_EQ(take_log(), log{"tick 0:0:1"});
}

TEST_F(ClockTest, clock_stands_while_the_system_time_is_set_back) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    const int first = clock->state->timeout_id;
    hooks::get().now.tv_sec -= 100;
    ux_event event = {};
    event.data = clock;
    ux_clock_update(&event);
    EXPECT_EQ(take_log(), log{});
    EXPECT_NE(clock->state->timeout_id, first) << "it looks on";
    EXPECT_EQ(pending(), 1);
}

TEST_F(ClockTest, advance_at_23_59_59_gives_midnight_and_tells_so) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    ux_clock_settime(clock, 23, 59, 59);
    take_log();
    pass(2);
    EXPECT_EQ(take_log(), log{"tick 0:0:0"});
}

TEST_F(ClockTest, times_beyond_a_dials_are_carried_by_their_remainders) {
    const struct {
        int hours, minutes, seconds;
        const char *after;
    } cases[] = {
        {0, 0, 59, "0:1:0"},     {0, 59, 59, "1:0:0"},  {0, 0, 130, "0:1:11"},
        {0, 75, 10, "1:15:11"},  {30, 0, 10, "6:0:11"}, {24, 0, 0, "0:0:1"},
        {25, 130, 59, "2:11:0"},
    };
    ux_clock *clock = make();
    ux_clock_show(&clock->obj, 0, 0, 0);
    for (const auto &c : cases) {
        ux_clock_settime(clock, c.hours, c.minutes, c.seconds);
        pass(2);
        EXPECT_EQ(time_of(clock), c.after);
    }
}

TEST_F(ClockTest, sync_handler_is_called_at_exactly_every_15th_advance) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 1, 2, 3);
    take_log();
    for (int n = 1; n <= 45; n++) {
        pass(2);
        const std::string tick = "tick 0:0:" + std::to_string(n);
        EXPECT_EQ(take_log(), n % 15 == 0 ? (log{"sync 0 0 0", tick}) : log{tick}) << n;
    }
}

TEST_F(ClockTest, period_written_by_the_host_counts_from_the_next_reload) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    s_script.on_sync = [](ux_clock *synced) { synced->sync_period = 2; };
    take_log();
    int syncs = 0;
    for (int n = 1; n <= 19; n++) {
        pass(2);
        for (const std::string &entry : take_log())
            syncs += entry == "sync 0 0 0";
    }
    EXPECT_EQ(syncs, 3) << "at 15, 17 and 19";
}

TEST_F(ClockTest, period_below_1_synchronises_at_every_advance) {
    ux_clock *clock = make_noting();
    clock->sync_period = 0;
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    pass(2);
    pass(2);
    EXPECT_EQ(take_log(), (log{"sync 0 0 0", "tick 0:0:1", "sync 0 0 0", "tick 0:0:2"}));
}

TEST_F(ClockTest, time_is_set_by_the_sync_handler_before_the_second_is_counted) {
    ux_clock *clock = make_noting();
    clock->sync_period = 1;
    s_script.on_sync = [](ux_clock *synced) { ux_clock_settime(synced, 12, 34, 59); };
    ux_clock_show(&clock->obj, 0, 0, 0);
    EXPECT_EQ(time_of(clock), "12:34:59") << "a show counts no second";
    take_log();
    pass(2);
    EXPECT_EQ(take_log(), (log{"sync 0 0 0", "tick 12:35:0"}));
}

TEST_F(ClockTest, tick_handler_is_called_after_the_painting) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    ux_clock_settime(clock, 0, 0, 29);
    uint32_t seen = 0;
    s_script.on_tick = [&](ux_clock *) { seen = buf_pixel(4, 7); };
    pass(2);
    EXPECT_EQ(seen, 0xFF0000FFu) << "the second hand points down";
}

TEST_F(ClockTest, clock_of_a_page_that_is_not_current_runs_unpainted) {
    ux_clock *clock = make_noting();
    clock->sync_period = 1;
    ux_clock_show(&clock->obj, 0, 0, 0);
    main_screen.current_page = 1;
    ux_page_clean();
    take_log();
    pass(2);
    EXPECT_EQ(take_log(), (log{"sync 0 0 0", "tick 0:0:1"}));
    EXPECT_EQ(buf_pixel(1, 1), 0u);
    EXPECT_EQ(pending(), 1);
}

TEST_F(ClockTest, hide_stops_the_timeout_and_leaves_the_pixels) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    EXPECT_EQ(ux_clock_hide(&clock->obj), 0);
    EXPECT_EQ(clock->obj.status, 0u);
    EXPECT_EQ(clock->state->timeout_id, -1);
    EXPECT_EQ(pending(), 0);
    EXPECT_EQ(buf_pixel(1, 1), k_blue_seen);
    pass(10);
    EXPECT_EQ(take_log(), log{});
    EXPECT_EQ(ux_clock_hide(&clock->obj), 0) << "again";
}

TEST_F(ClockTest, hide_leaves_the_timeouts_of_others_alone) {
    ux_clock *clock = make();
    ux_set_timeout(5000000, nullptr, nullptr);
    ux_clock_show(&clock->obj, 0, 0, 0);
    ux_clock_hide(&clock->obj);
    ASSERT_EQ(pending(), 1);
    EXPECT_EQ(ux_timeout_list->delay, 5000000);
}

TEST_F(ClockTest, clock_hidden_in_its_tick_stops) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    s_script.on_tick = [](ux_clock *ticking) { ux_clock_hide(&ticking->obj); };
    pass(2);
    EXPECT_EQ(pending(), 0);
    EXPECT_EQ(clock->state->timeout_id, -1);
}

// Each would leave one more timeout behind, which the clock does not know and can not delete.
TEST_F(ClockTest, clock_hidden_and_shown_in_its_tick_goes_on_with_one_timeout) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    s_script.on_tick = [](ux_clock *ticking) {
        ux_clock_hide(&ticking->obj);
        ux_clock_show(&ticking->obj, 7, 8, 9);
    };
    for (int n = 1; n <= 5; n++) {
        pass(2);
        EXPECT_EQ(take_log(), (log{"tick 0:0:" + std::to_string(n), "sync 7 8 9"}));
        EXPECT_EQ(pending(), 1);
        EXPECT_EQ(ux_timeout_list->id, clock->state->timeout_id);
    }
    EXPECT_EQ(clock->state->sync_countdown, 15) << "loaded anew by every show";
    ux_clock_free(&clock->obj);
    root()->children = nullptr;
    EXPECT_EQ(pending(), 0);
}

TEST_F(ClockTest, clock_hidden_by_its_sync_handler_counts_and_tells_and_stops) {
    ux_clock *clock = make_noting();
    clock->sync_period = 1;
    ux_clock_show(&clock->obj, 0, 0, 0);
    take_log();
    s_script.on_sync = [](ux_clock *synced) { ux_clock_hide(&synced->obj); };
    ux_page_clean();
    pass(2);
    EXPECT_EQ(take_log(), (log{"sync 0 0 0", "tick 0:0:1"}));
    EXPECT_EQ(buf_pixel(1, 1), 0u) << "not painted";
    EXPECT_EQ(pending(), 0);
}

// The handler would be asked from inside itself for ever.
TEST_F(ClockTest, clock_hidden_and_shown_in_its_sync_handler_is_asked_once) {
    ux_clock *clock = make_noting();
    clock->sync_period = 1;
    s_script.on_sync = [](ux_clock *synced) {
        ux_clock_hide(&synced->obj);
        if (clock_tests::s_script.log.size() < 100)
            ux_clock_show(&synced->obj, 7, 8, 9);
    };
    EXPECT_EQ(ux_clock_show(&clock->obj, 1, 2, 3), 0);
    EXPECT_EQ(take_log(), log{"sync 1 2 3"});
    EXPECT_TRUE(clock->obj.status & UX_ST_VISIBLE);
    EXPECT_EQ(pending(), 1);
    pass(2);
    EXPECT_EQ(take_log(), (log{"sync 0 0 0", "tick 0:0:1"}));
    EXPECT_EQ(pending(), 1);
    EXPECT_EQ(ux_timeout_list->id, clock->state->timeout_id);
}

TEST_F(ClockTest, clock_shown_by_the_sync_handler_of_another_is_asked_too) {
    ux_clock *clock = make_noting();
    ux_clock *other = make_noting();
    s_script.on_sync = [other](ux_clock *) { ux_clock_show(&other->obj, 7, 8, 9); };
    ux_clock_show(&clock->obj, 1, 2, 3);
    EXPECT_EQ(take_log(), (log{"sync 1 2 3", "sync 7 8 9"}));
    EXPECT_EQ(pending(), 2);
}

// A show asks first, then becomes visible and reads the time; an advance has read it before.
TEST_F(ClockTest, seconds_spent_in_the_sync_handler_count_for_an_advance_and_not_for_a_show) {
    ux_clock *clock = make_noting();
    clock->sync_period = 1;
    uint32_t status = UX_ST_VISIBLE;
    s_script.on_sync = [&status](ux_clock *synced) {
        status = synced->obj.status;
        hooks::get().now.tv_sec += 5;
    };
    ux_clock_show(&clock->obj, 0, 0, 0);
    EXPECT_EQ(status, 0u) << "still hidden";
    EXPECT_EQ(clock->state->last_advance, 1005);
    pass(2);
    EXPECT_EQ(status, static_cast<uint32_t>(UX_ST_VISIBLE));
    EXPECT_EQ(clock->state->last_advance, 1007);
    EXPECT_EQ(hooks::get().now.tv_sec, 1012);
}

TEST_F(ClockTest, update_called_by_a_host_leaves_one_timeout) {
    ux_clock *clock = make();
    ux_clock_show(&clock->obj, 0, 0, 0);
    ux_event event = {};
    event.data = clock;
    EXPECT_EQ(ux_clock_update(&event), 0);
    EXPECT_EQ(pending(), 1);
}

TEST_F(ClockTest, update_of_a_clock_that_was_never_shown_starts_nothing) {
    ux_clock *clock = make();
    clock->state->last_advance = hooks::get().now.tv_sec;
    ux_event event = {};
    event.data = clock;
    EXPECT_EQ(ux_clock_update(&event), 0);
    EXPECT_EQ(pending(), 0);
}

TEST_F(ClockTest, clock_freed_while_its_timeout_is_pending_takes_it_along) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    EXPECT_EQ(ux_container_del_obj(root(), &clock->obj, 0, 0), 0);
    EXPECT_EQ(pending(), 0);
    take_log();
    pass(10);
    EXPECT_EQ(take_log(), log{});
}

// A background copy would be the host's own doing; the sanitizer sees the rest go.
TEST_F(ClockTest, free_releases_the_clock_and_not_a_background) {
    ux_clock *clock =
        ux_clock_new(nullptr, 0, 0, 7, 7, 3, 3, 3, blue.c_str(), red.c_str(), nullptr);
    void *pixels = malloc(7 * 7 * 4);
    ux_obj_set_bg_buffer(&clock->obj, pixels);
    EXPECT_EQ(clock->obj.free(&clock->obj), 0);
    memset(pixels, 1, 7 * 7 * 4);
    free(pixels);
}

// Unlinked and freed by its slot, from the visit of the child in front of it.
TEST_F(ClockTest, clock_freed_while_its_container_is_walked_is_passed_over) {
    ux_clock *victim = make();
    ux_text_label_new(root(), 0, 0, 1, 1, u"");
    const auto free_victim = [](ux_event *event) {
        auto *obj = static_cast<ux_obj *>(event->data);
        auto *parent = reinterpret_cast<ux_container *>(obj->parent);
        parent->children->next = nullptr;
        parent->count--;
        obj->free(obj);
        return 1;
    };
    EXPECT_EQ(ux_container_scan(root(), free_victim, &victim->obj), 1) << "the label alone";
}

// The sanitizer sees what is touched after its release.
TEST_F(ClockTest, clock_freed_in_its_tick_is_not_touched_again) {
    ux_clock *clock = make_noting();
    ux_clock_show(&clock->obj, 0, 0, 0);
    s_script.on_tick = [this](ux_clock *ticking) {
        ux_container_del_obj(root(), &ticking->obj, 0, 0);
    };
    pass(2);
    EXPECT_EQ(root()->count, 0u);
    EXPECT_EQ(pending(), 0);
}

TEST_F(ClockTest, clock_freed_in_its_sync_handler_is_not_touched_again) {
    for (bool from_show : {false, true}) {
        ux_clock *clock = make_noting();
        clock->sync_period = 1;
        if (!from_show)
            ux_clock_show(&clock->obj, 0, 0, 0);
        s_script.on_sync = [this](ux_clock *synced) {
            ux_container_del_obj(root(), &synced->obj, 0, 0);
        };
        if (from_show)
            EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
        else
            pass(2);
        EXPECT_EQ(root()->count, 0u);
        EXPECT_EQ(pending(), 0);
        s_script.on_sync = nullptr;
    }
}

TEST_F(ClockTest, another_clock_freed_in_a_tick_does_not_disturb) {
    ux_clock *clock = make_noting();
    ux_clock *other = make();
    ux_clock_show(&clock->obj, 0, 0, 0);
    s_script.on_tick = [this, other](ux_clock *) {
        ux_container_del_obj(root(), &other->obj, 0, 0);
        s_script.on_tick = nullptr;
    };
    pass(2);
    pass(2);
    EXPECT_EQ(time_of(clock), "0:0:2");
    EXPECT_EQ(pending(), 1);
}

TEST_F(ClockTest, clock_without_memory_for_a_timeout_starts_with_the_next_show) {
    ux_clock *clock = make();
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_clock_show(&clock->obj, 0, 0, 0), 0);
    EXPECT_LT(clock->state->timeout_id, 0);
    EXPECT_EQ(pending(), 0);
    ux_clock_show(&clock->obj, 0, 0, 0);
    EXPECT_EQ(pending(), 1);
    hooks::fail_allocation(1);
    pass(2);
    EXPECT_EQ(pending(), 0);
    EXPECT_LT(clock->state->timeout_id, 0);
    EXPECT_EQ(ux_clock_hide(&clock->obj), 0);
}

// All 86,400 times of a day in their order, on a system time that runs two seconds for each.
TEST_F(ClockTest, day_of_advances_passes_every_time_once_and_asks_5760_times) {
    fake_chip::get().record_calls = false;
    ux_clock *clock = make();
    static int s_ticks;
    static int s_syncs;
    static int s_wrong;
    s_ticks = s_syncs = s_wrong = 0;
    ux_clock_set_tick_cb(clock, [](ux_clock *, int hours, int minutes, int seconds) {
        s_ticks++;
        s_wrong += (hours * 60 + minutes) * 60 + seconds != s_ticks % 86400;
        return 0;
    });
    ux_clock_set_sync_cb(clock, [](ux_clock *, intptr_t, intptr_t, intptr_t) {
        s_syncs++;
        return 0;
    });
    ux_clock_show(&clock->obj, 0, 0, 0);
    s_syncs = 0;
    for (int i = 0; i < 86400; i++)
        pass(2);
    EXPECT_EQ(s_ticks, 86400);
    EXPECT_EQ(s_wrong, 0);
    EXPECT_EQ(s_syncs, 86400 / 15);
    EXPECT_EQ(time_of(clock), "0:0:0");
    EXPECT_EQ(pending(), 1);
}
