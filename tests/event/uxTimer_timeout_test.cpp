// SPDX-License-Identifier: MIT
// Timeouts: when they are due, in which order they fire, and what a callback may do to them.

#include "tests/event/timer_test.h"

namespace {

using timer_tests::k_a;
using timer_tests::k_b;
using timer_tests::k_c;
using timer_tests::names;
using timer_tests::note;
using timer_tests::s_script;

class Timeout : public TimerTest {};

TEST_F(Timeout, ids_count_from_0_and_are_never_used_again) {
    EXPECT_EQ(ux_set_timeout(0, note, k_a), 0);
    EXPECT_EQ(ux_set_timeout(0, note, k_b), 1);
    ux_delete_timeout(0);
    ux_check_timeout();
    EXPECT_EQ(ux_set_timeout(0, note, k_c), 2);
    EXPECT_EQ(ux_timeout_count, 3);
}

TEST_F(Timeout, both_kinds_count_for_themselves) {
    EXPECT_EQ(ux_set_timeout(0, note, k_a), 0);
    EXPECT_EQ(set_alarm(2000, k_b), 0);
    EXPECT_EQ(ux_set_timeout(0, note, k_a), 1);
    EXPECT_EQ(set_alarm(2000, k_b), 1);
}

TEST_F(Timeout, the_record_tells_delay_start_and_due_time) {
    at(1000, 600000);
    ux_set_timeout(1500000, note, k_a);
    const ux_timeout *timer = ux_timeout_list;
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->id, 0);
    EXPECT_EQ(timer->delay, 1500000);
    EXPECT_EQ(timer->callback, note);
    EXPECT_EQ(timer->data, k_a);
    EXPECT_EQ(timer->start_sec, 1000);
    EXPECT_EQ(timer->start_usec, 600000);
    EXPECT_EQ(timer->due_sec, 1002);
    EXPECT_EQ(timer->due_usec, 100000);
    EXPECT_EQ(timer->next, nullptr);
}

TEST_F(Timeout, a_second_and_a_half_set_at_usec_600000_is_due_2_seconds_later_at_100000) {
    at(1000, 600000);
    ux_set_timeout(1500000, note, k_a);
    EXPECT_EQ(check_at(1002, 99999), names{});
    EXPECT_EQ(check_at(1002, 100000), names{"a"});
}

TEST_F(Timeout, a_delay_of_0_fires_in_the_next_check) {
    ux_set_timeout(0, note, k_a);
    EXPECT_EQ(check_at(1000, 0), names{"a"});
}

TEST_F(Timeout, the_due_microsecond_counts) {
    ux_set_timeout(5, note, k_a);
    EXPECT_EQ(check_at(1000, 4), names{});
    EXPECT_EQ(check_at(1000, 5), names{"a"});
}

TEST_F(Timeout, a_later_second_is_due_whatever_its_microseconds) {
    ux_set_timeout(999999, note, k_a);
    EXPECT_EQ(check_at(1001, 0), names{"a"});
}

TEST_F(Timeout, an_earlier_second_is_not_due_whatever_its_microseconds) {
    ux_set_timeout(1000000, note, k_a);
    EXPECT_EQ(check_at(1000, 999999), names{});
    EXPECT_EQ(check_at(1001, 0), names{"a"});
}

TEST_F(Timeout, it_fires_once) {
    ux_set_timeout(0, note, k_a);
    EXPECT_EQ(check_at(1000, 0), names{"a"});
    EXPECT_EQ(check_at(2000, 0), names{});
    EXPECT_EQ(ux_timeout_list, nullptr);
}

TEST_F(Timeout, the_event_is_of_type_3_with_the_data_and_zeros) {
    ux_set_timeout(0, note, k_a);
    ux_check_timeout();
    ASSERT_EQ(s_script.events.size(), 1u);
    const ux_event &event = s_script.events[0];
    EXPECT_EQ(event.type, 3);
    EXPECT_EQ(event.value, 0);
    EXPECT_EQ(event.x, 0);
    EXPECT_EQ(event.y, 0);
    EXPECT_EQ(event.obj, nullptr);
    EXPECT_EQ(event.data, k_a);
}

TEST_F(Timeout, null_data_is_handed_over_as_null) {
    ux_set_timeout(0, note, nullptr);
    EXPECT_EQ(check_at(1000, 0), names{"null"});
}

TEST_F(Timeout, a_timer_without_callback_just_goes) {
    ux_set_timeout(0, nullptr, k_a);
    ux_check_timeout();
    EXPECT_EQ(ux_timeout_list, nullptr);
}

TEST_F(Timeout, those_due_together_fire_newest_first_not_by_due_time) {
    ux_set_timeout(10, note, k_a);
    ux_set_timeout(30, note, k_b);
    ux_set_timeout(20, note, k_c);
    EXPECT_EQ(check_at(1001, 0), (names{"c", "b", "a"}));
}

TEST_F(Timeout, those_not_due_are_passed_over_and_stay_in_order) {
    ux_set_timeout(10, note, k_a);
    ux_set_timeout(1000, note, k_b);
    ux_set_timeout(10, note, k_c);
    EXPECT_EQ(check_at(1000, 10), (names{"c", "a"}));
    ASSERT_NE(ux_timeout_list, nullptr);
    EXPECT_EQ(ux_timeout_list->id, 1);
    EXPECT_EQ(ux_timeout_list->next, nullptr);
}

TEST_F(Timeout, it_is_unlinked_before_its_callback_runs) {
    ux_set_timeout(0, note, k_a);
    s_script.then = [](const std::string &) { EXPECT_EQ(ux_timeout_list, nullptr); };
    EXPECT_EQ(check_at(1000, 0), names{"a"});
}

TEST_F(Timeout, a_callback_that_deletes_its_own_id_does_nothing) {
    const int id = ux_set_timeout(0, note, k_a);
    ux_set_timeout(500000, note, k_b);
    s_script.then = [id](const std::string &) { ux_delete_timeout(id); };
    EXPECT_EQ(check_at(1000, 0), names{"a"});
    EXPECT_EQ(check_at(1001, 0), names{"b"});
}

TEST_F(Timeout, a_callback_may_delete_one_that_is_due_too) {
    const int oldest = ux_set_timeout(0, note, k_a);
    ux_set_timeout(0, note, k_b);
    s_script.then = [oldest](const std::string &) { ux_delete_timeout(oldest); };
    EXPECT_EQ(check_at(1000, 0), names{"b"});
    EXPECT_EQ(ux_timeout_list, nullptr);
}

TEST_F(Timeout, a_callback_may_delete_all_others) {
    for (int i = 0; i < 50; i++)
        ux_set_timeout(i % 2 ? 0 : 1000000, note, k_a);
    s_script.then = [](const std::string &) {
        for (int id = 0; id < 50; id++)
            ux_delete_timeout(id);
    };
    EXPECT_EQ(check_at(1000, 0), names{"a"});
    EXPECT_EQ(ux_timeout_list, nullptr);
}

// The check goes on with the time it began with, so the clock may move under it.
TEST_F(Timeout, one_set_in_a_callback_at_a_later_time_waits_for_the_next_check) {
    ux_set_timeout(0, note, k_a);
    s_script.then = [](const std::string &name) {
        at(1000, 1);
        if (name == "a")
            ux_set_timeout(0, note, k_b);
    };
    EXPECT_EQ(check_at(1000, 0), names{"a"});
    EXPECT_EQ(check_at(1000, 1), names{"b"});
}

TEST_F(Timeout, one_set_in_a_callback_within_the_same_microsecond_fires_in_the_same_check) {
    ux_set_timeout(0, note, k_a);
    s_script.then = [](const std::string &name) {
        if (name == "a")
            ux_set_timeout(0, note, k_b);
    };
    EXPECT_EQ(check_at(1000, 0), (names{"a", "b"}));
}

TEST_F(Timeout, the_clock_is_read_once_for_a_check) {
    ux_set_timeout(10, note, k_a);
    ux_set_timeout(0, note, k_b);
    s_script.then = [](const std::string &) { at(2000, 0); };
    EXPECT_EQ(check_at(1000, 0), names{"b"});
}

// The walk begins at the head again: what a callback added there comes before older ones.
TEST_F(Timeout, a_due_one_set_in_a_callback_fires_before_the_older_ones) {
    ux_set_timeout(0, note, k_a);
    ux_set_timeout(0, note, k_b);
    s_script.then = [](const std::string &name) {
        if (name == "b")
            ux_set_timeout(0, note, k_c);
    };
    EXPECT_EQ(check_at(1000, 0), (names{"b", "c", "a"}));
}

TEST_F(Timeout, a_check_inside_a_callback_fires_the_rest_once) {
    ux_set_timeout(0, note, k_a);
    ux_set_timeout(0, note, k_b);
    s_script.then = [](const std::string &) { ux_check_timeout(); };
    EXPECT_EQ(check_at(1000, 0), (names{"b", "a"}));
}

TEST_F(Timeout, a_negative_delay_is_due_at_once) {
    at(1000, 200000);
    ux_set_timeout(-1500000, note, k_a);
    EXPECT_EQ(ux_timeout_list->due_sec, 999);
    EXPECT_EQ(ux_timeout_list->due_usec, -300000);
    EXPECT_EQ(check_at(1000, 200000), names{"a"});
}

TEST_F(Timeout, a_small_negative_delay_is_cut_toward_this_second) {
    at(1000, 50);
    ux_set_timeout(-100, note, k_a);
    EXPECT_EQ(ux_timeout_list->due_sec, 1000);
    EXPECT_EQ(ux_timeout_list->due_usec, -50);
    EXPECT_EQ(check_at(1000, 50), names{"a"});
}

TEST_F(Timeout, a_negative_delay_within_the_microseconds_is_a_time_before) {
    at(1000, 500);
    ux_set_timeout(-100, note, k_a);
    EXPECT_EQ(ux_timeout_list->due_sec, 1000);
    EXPECT_EQ(ux_timeout_list->due_usec, 400);
}

TEST_F(Timeout, the_largest_delay_without_microseconds_is_2147_seconds) {
    ux_set_timeout(INT_MAX, note, k_a);
    EXPECT_EQ(ux_timeout_list->due_sec, 3147);
    EXPECT_EQ(ux_timeout_list->due_usec, 483647);
    EXPECT_EQ(check_at(3147, 483646), names{});
    EXPECT_EQ(check_at(3147, 483647), names{"a"});
}

TEST_F(Timeout, a_sum_beyond_32_bits_wraps_and_is_due_at_once) {
    at(1000, 600000);
    ux_set_timeout(INT_MAX, note, k_a); // 2148083647 - 2^32 = -2146883649
    EXPECT_EQ(ux_timeout_list->due_sec, -1146);
    EXPECT_EQ(ux_timeout_list->due_usec, -883649);
    EXPECT_EQ(check_at(1000, 600000), names{"a"});
}

TEST_F(Timeout, the_smallest_delay_is_due_at_once) {
    ux_set_timeout(INT_MIN, note, k_a);
    EXPECT_EQ(ux_timeout_list->due_sec, -1147);
    EXPECT_EQ(ux_timeout_list->due_usec, -483648);
    EXPECT_EQ(check_at(1000, 0), names{"a"});
}

TEST_F(Timeout, a_clock_that_is_set_back_keeps_it_waiting) {
    ux_set_timeout(100, note, k_a);
    EXPECT_EQ(check_at(10, 0), names{});
    EXPECT_EQ(check_at(1000, 100), names{"a"});
}

TEST_F(Timeout, deleting_takes_the_one_with_that_id) {
    ux_set_timeout(0, note, k_a);
    ux_set_timeout(0, note, k_b);
    ux_set_timeout(0, note, k_c);
    ux_delete_timeout(1);
    EXPECT_EQ(check_at(1000, 0), (names{"c", "a"}));
}

TEST_F(Timeout, deleting_an_unknown_id_does_nothing) {
    ux_delete_timeout(0);
    ux_set_timeout(0, note, k_a);
    for (int id : {-1, 1, INT_MAX, INT_MIN})
        ux_delete_timeout(id);
    EXPECT_EQ(check_at(1000, 0), names{"a"});
}

TEST_F(Timeout, deleting_one_that_has_fired_does_nothing) {
    const int id = ux_set_timeout(0, note, k_a);
    ux_check_timeout();
    ux_delete_timeout(id);
    EXPECT_EQ(ux_timeout_list, nullptr);
    EXPECT_EQ(err(), "");
}

TEST_F(Timeout, deleting_a_timeout_leaves_the_alarm_of_that_id) {
    ux_set_timeout(0, note, k_a);
    set_alarm(900, k_b);
    ux_delete_timeout(0);
    EXPECT_EQ(check_alarms_at(1000), names{"b"});
}

TEST_F(Timeout, out_of_memory_is_told_and_nothing_added) {
    ux_set_timeout(0, note, k_a);
    ux_error = 5;
    hooks::fail_allocation(1);
    EXPECT_EQ(ux_set_timeout(0, note, k_b), -2);
    ux_error = 0;
    EXPECT_EQ(err(), "Error: [5] Not enough memory space for timeout!\n\n");
    EXPECT_EQ(ux_timeout_count, 1);
    EXPECT_EQ(check_at(1000, 0), names{"a"});
    EXPECT_EQ(ux_set_timeout(0, note, k_c), 1);
}

TEST_F(Timeout, a_check_of_none_does_nothing) {
    ux_check_timeout();
    ux_check_atimer();
    EXPECT_EQ(fired(), names{});
}

} // namespace
