// SPDX-License-Identifier: MIT
// Leap years, months and weekdays; see calendar_date.h.

#include "widgets/calendar_date.h"

#include <cstdint>

namespace ux {
namespace {

constexpr int k_february = 2;
constexpr int k_leap_february_days = 29;
constexpr uint8_t days_in_month[k_months] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// Days before a month's first, modulo 7, by the month's number.
constexpr uint8_t days_offset[k_months + 2] = {0, 0, 3, 3, 6, 1, 4, 6, 2, 5, 0, 3, 5, 1};

// The first day of the Gregorian calendar.
constexpr int k_reform_year = 1752;
constexpr int k_reform_month = 9;
constexpr int k_reform_day = 14;

bool is_before_reform(int year, int month, int day) {
    if (year != k_reform_year)
        return year < k_reform_year;
    return month != k_reform_month ? month < k_reform_month : day < k_reform_day;
}

int offset_of(int month) {
    return month >= 0 && month <= k_months + 1 ? days_offset[month] : 0;
}

} // namespace

bool is_leap_year(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int days_of_month(int year, int month) {
    return month == k_february && is_leap_year(year) ? k_leap_february_days
                                                     : days_in_month[month - 1];
}

// With p = year - 1:
//   (year - 2 + p / 4 - p / 100 + p / 400 + day + offset(month) [+ 1 from March of a leap year] +
//   c) mod 7
// where c is 1, and 5 before the reform: the eleven days left out then, while centuries go on to
// count as after it. Divisions and the remainder are toward zero.
int weekday(int year, int month, int day) {
    constexpr int k_constant = 1;
    constexpr int k_constant_before = 5;
    const int64_t past = int64_t{year} - 1;
    int64_t sum = int64_t{year} - 2 + past / 4 - past / 100 + past / 400 + day + offset_of(month);
    if (is_leap_year(year) && month > k_february)
        sum += 1;
    sum += is_before_reform(year, month, day) ? k_constant_before : k_constant;
    return static_cast<int>(sum % k_weekdays);
}

} // namespace ux
