// SPDX-License-Identifier: MIT
// Arithmetic of dates for the calendar.
#ifndef UX_WIDGETS_CALENDAR_DATE_H
#define UX_WIDGETS_CALENDAR_DATE_H

namespace ux {

constexpr int k_months = 12;
constexpr int k_weekdays = 7;

bool is_leap_year(int year);

// Days of a month 1..12.
int days_of_month(int year, int month);

// 0 = Sunday to 6 = Saturday; the remainder is negative for some dates of years below 1. A month
// outside 1..12 counts as one that begins with the year.
int weekday(int year, int month, int day);

} // namespace ux

#endif
