// SPDX-License-Identifier: MIT
// Weekdays beside a count of days.

#include "ux.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

bool is_leap(int year) {
    return year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
}

int days_of(int year, int month) {
    const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month - 1] + (month == 2 && is_leap(year));
}

int shift_before_reform(int year, int month, int day) {
    const int date = (year * 100 + month) * 100 + day;
    return date < 17520914 ? 4 : 0;
}

} // namespace

TEST(CalendarDateTest, known_dates_have_their_weekdays) {
    EXPECT_EQ(ux_calendar_get_week(2009, 1, 1), 4);
    EXPECT_EQ(ux_calendar_get_week(2000, 3, 1), 3);
    EXPECT_EQ(ux_calendar_get_week(1752, 9, 14), 4);
    EXPECT_EQ(ux_calendar_get_week(1752, 9, 2), 3);
    EXPECT_EQ(ux_calendar_get_week(2000, 2, 29), 2);
    EXPECT_EQ(ux_calendar_get_week(1969, 7, 20), 0);
    EXPECT_EQ(ux_calendar_get_week(1999, 12, 31), 5);
}

// Days are counted one by one from 1 January of year 1, a Monday when centuries are counted as
// today throughout. From the reform on that is the weekday; before it the weekday is 4 further.
TEST(CalendarDateTest, weekdays_of_4000_years_are_those_of_a_count_of_days) {
    int weekday = 1;
    int wrong = 0;
    int days = 0;
    for (int year = 1; year <= 4000; year++)
        for (int month = 1; month <= 12; month++)
            for (int day = 1; day <= days_of(year, month); day++) {
                const int wanted = (weekday + shift_before_reform(year, month, day)) % 7;
                wrong += ux_calendar_get_week(year, month, day) != wanted;
                weekday = (weekday + 1) % 7;
                days++;
            }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(days, 1460970) << "10 times 146,097";
}

// The two rules meet without a gap: the day after Wednesday the 2nd is Thursday the 14th.
TEST(CalendarDateTest, rule_changes_on_14_september_1752) {
    EXPECT_EQ(ux_calendar_get_week(1752, 9, 13), 0) << "by the old rule, though there was none";
    EXPECT_EQ(ux_calendar_get_week(1752, 8, 31), 1);
    EXPECT_EQ(ux_calendar_get_week(1752, 9, 1), 2);
    EXPECT_EQ(ux_calendar_get_week(1752, 10, 1), 0);
    EXPECT_EQ(ux_calendar_get_week(1751, 12, 31), 2);
    EXPECT_EQ(ux_calendar_get_week(1753, 1, 1), 1);
}

// (0 - 2) + 0 - 0 + 0 + 1 + 0 + 5 = 4 for 1 January of year 0; (-9 - 2) + -10 / 4 + 1 + 5 = -7 and
// 0 for the year -9; one day of -10 less: (-10 - 2) + -11 / 4 + 1 + 5 = -8, and -1.
TEST(CalendarDateTest, remainder_of_years_below_1_is_toward_zero) {
    EXPECT_EQ(ux_calendar_get_week(0, 1, 1), 4);
    EXPECT_EQ(ux_calendar_get_week(-9, 1, 1), 0);
    EXPECT_EQ(ux_calendar_get_week(-10, 1, 1), -1);
}

TEST(CalendarDateTest, months_0_and_13_have_the_offsets_0_and_1_and_wilder_ones_0) {
    EXPECT_EQ(ux_calendar_get_week(2009, 0, 1), 4) << "as January";
    EXPECT_EQ(ux_calendar_get_week(2009, 13, 1), 5) << "one further";
    EXPECT_EQ(ux_calendar_get_week(2009, 14, 1), 4);
    EXPECT_EQ(ux_calendar_get_week(2009, -1, 1), 4);
    EXPECT_EQ(ux_calendar_get_week(2009, INT_MAX, 1), 4);
}

TEST(CalendarDateTest, any_number_gives_a_remainder_of_7) {
    for (int year : {INT_MIN, -1, 0, INT_MAX})
        for (int month : {INT_MIN, 3, INT_MAX})
            for (int day : {INT_MIN, 31, INT_MAX})
                EXPECT_LT(std::abs(ux_calendar_get_week(year, month, day)), 7);
}
