/* SPDX-License-Identifier: MIT
 * What a library's constructor saw of the clock. */
#ifndef UX_TESTS_SIM_EARLY_CALLER_H
#define UX_TESTS_SIM_EARLY_CALLER_H

#include <time.h>

/* When the constructor ran. */
time_t early_caller_begun(void);

/* When a thread that it started woke from a sleep of three seconds. Waits for it. */
time_t early_caller_woken(void);

#endif
