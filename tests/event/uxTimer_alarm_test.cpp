// SPDX-License-Identifier: MIT
// Alarms at a calendar date and time: when they are due and in which order they fire.

#include "tests/event/timer_test.h"

namespace {

using timer_tests::k_a;
using timer_tests::k_b;
using timer_tests::k_c;
using timer_tests::names;
using timer_tests::note;
using timer_tests::s_script;

class Alarm : public TimerTest {};

TEST_F(Alarm, ids_count_from_0_and_are_never_used_again) {
    EXPECT_EQ(set_alarm(900, k_a), 0);
    EXPECT_EQ(set_alarm(900, k_b), 1);
    ux_delete_atimer(1);
    ux_check_atimer();
    EXPECT_EQ(set_alarm(900, k_c), 2);
    EXPECT_EQ(ux_atimer_count, 3);
}

TEST_F(Alarm, the_record_tells_when_it_was_made_and_when_it_is_due) {
    at(1700000000, 5);
    set_alarm(1700000100, k_a);
    const ux_atimer *timer = ux_atimer_list;
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->id, 0);
    EXPECT_EQ(timer->callback, note);
    EXPECT_EQ(timer->data, k_a);
    EXPECT_EQ(timer->created, 1700000000);
    EXPECT_EQ(timer->due, 1700000100);
    EXPECT_EQ(timer->next, nullptr);
}

TEST_F(Alarm, it_fires_in_its_second_and_not_before) {
    set_alarm(1700000100, k_a);
    EXPECT_EQ(check_alarms_at(1700000099), names{});
    EXPECT_EQ(check_alarms_at(1700000100), names{"a"});
    EXPECT_EQ(check_alarms_at(1700000100), names{});
}

TEST_F(Alarm, one_in_the_past_fires_in_the_next_check) {
    set_alarm(5, k_a);
    EXPECT_EQ(check_alarms_at(1000), names{"a"});
}

TEST_F(Alarm, the_event_is_of_type_4_with_the_data_and_zeros) {
    set_alarm(900, k_a);
    ux_check_atimer();
    ASSERT_EQ(s_script.events.size(), 1u);
    const ux_event &event = s_script.events[0];
    EXPECT_EQ(event.type, 4);
    EXPECT_EQ(event.value, 0);
    EXPECT_EQ(event.x, 0);
    EXPECT_EQ(event.y, 0);
    EXPECT_EQ(event.obj, nullptr);
    EXPECT_EQ(event.data, k_a);
}

TEST_F(Alarm, those_due_together_fire_newest_first) {
    set_alarm(900, k_a);
    set_alarm(990, k_b);
    set_alarm(800, k_c);
    EXPECT_EQ(check_alarms_at(1000), (names{"c", "b", "a"}));
}

TEST_F(Alarm, the_local_time_is_taken_and_normalised_in_the_caller_s_record) {
    setenv("TZ", "XYZ-2", 1); // two hours before Greenwich
    tzset();
    struct tm when = {};
    when.tm_year = 123;
    when.tm_mon = 12; // January of the next year
    when.tm_mday = 32;
    when.tm_hour = 25;
    when.tm_min = 61;
    when.tm_sec = 61;
    ux_set_atimer(&when, note, k_a);
    unsetenv("TZ");
    tzset();
    EXPECT_EQ(when.tm_year, 124);
    EXPECT_EQ(when.tm_mon, 1);
    EXPECT_EQ(when.tm_mday, 2);
    EXPECT_EQ(when.tm_hour, 2);
    EXPECT_EQ(when.tm_min, 2);
    EXPECT_EQ(when.tm_sec, 1);
    EXPECT_EQ(when.tm_wday, 5);
    EXPECT_EQ(when.tm_yday, 32);
    EXPECT_EQ(ux_atimer_list->due, 1706832121); // 2024-02-02 00:02:01 in Greenwich
}

TEST_F(Alarm, a_date_beyond_all_time_is_minus_1_and_due_at_once) {
    struct tm when = {};
    when.tm_year = INT_MAX;
    when.tm_mon = INT_MAX;
    EXPECT_EQ(ux_set_atimer(&when, note, k_a), 0);
    EXPECT_EQ(ux_atimer_list->due, -1);
    EXPECT_EQ(check_alarms_at(1000), names{"a"});
}

TEST_F(Alarm, a_callback_may_set_and_delete_alarms) {
    const int oldest = set_alarm(900, k_a);
    set_alarm(900, k_b);
    s_script.then = [oldest](const std::string &name) {
        if (name != "b")
            return;
        EXPECT_EQ(ux_atimer_list->id, oldest);
        ux_delete_atimer(oldest);
        set_alarm(950, k_c);
    };
    EXPECT_EQ(check_alarms_at(1000), (names{"b", "c"}));
    EXPECT_EQ(ux_atimer_list, nullptr);
}

TEST_F(Alarm, the_clock_is_read_once_for_a_check) {
    set_alarm(1001, k_a);
    set_alarm(1000, k_b);
    s_script.then = [](const std::string &) { at(5000, 0); };
    EXPECT_EQ(check_alarms_at(1000), names{"b"});
    EXPECT_EQ(check_alarms_at(1001), names{"a"});
}

TEST_F(Alarm, deleting_takes_the_one_with_that_id_only) {
    set_alarm(900, k_a);
    set_alarm(900, k_b);
    ux_set_timeout(0, note, k_c);
    ux_delete_atimer(0);
    ux_delete_atimer(0);
    ux_delete_atimer(-7);
    EXPECT_EQ(check_alarms_at(1000), names{"b"});
    EXPECT_EQ(check_at(1000, 0), names{"c"});
}

TEST_F(Alarm, out_of_memory_is_told_and_nothing_added) {
    struct tm when = local(900);
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_set_atimer(&when, note, k_a), -2);
    EXPECT_EQ(err(), "Error: [0] Not enough memory space for atimer!\n\n");
    EXPECT_EQ(ux_atimer_count, 0);
    EXPECT_EQ(ux_atimer_list, nullptr);
}

} // namespace
