// SPDX-License-Identifier: MIT
// A time of day and a month as arguments of a program.
#ifndef UX_EXAMPLES_MOMENT_H
#define UX_EXAMPLES_MOMENT_H

#include <cstdio>

struct time_of_day {
    int hours, minutes, seconds;
};

struct month_of_year {
    int year, month; // year 1 to 9999, month 1 to 12
};

// Reads "hours:minutes:seconds"; false when that is no time of day.
inline bool read_time(const char *text, time_of_day &time) {
    char rest = 0;
    return sscanf(text, "%2d:%2d:%2d%c", &time.hours, &time.minutes, &time.seconds, &rest) == 3 &&
           time.hours >= 0 && time.hours < 24 && time.minutes >= 0 && time.minutes < 60 &&
           time.seconds >= 0 && time.seconds < 60;
}

// Reads "year-month"; false when that is no month.
inline bool read_month(const char *text, month_of_year &month) {
    char rest = 0;
    return sscanf(text, "%4d-%2d%c", &month.year, &month.month, &rest) == 2 && month.year >= 1 &&
           month.month >= 1 && month.month <= 12;
}

#endif
