/* SPDX-License-Identifier: MIT
 * The memory that ux-sim and its preload library share for the simulated clock, and the protocol:
 * ux-sim grants time up to a horizon; the host runs, its clock jumping from one deadline to the
 * next, until nothing is left to do before the horizon; then it rests until the next grant. */
#ifndef UX_SIM_CLOCK_SHARE_H
#define UX_SIM_CLOCK_SHARE_H

#include <stdint.h>

/* "No deadline", "no horizon". */
#define SIM_CLOCK_NEVER INT64_MAX

/* Every field is read and written with the __atomic builtins. Times are nanoseconds since the run
 * began. */
struct sim_clock_share {
    int32_t owner;      /* process that lives by the clock, 0 = none yet */
    int32_t thread;     /* kernel number of the thread whose turn it is */
    uint32_t granted;   /* futex: grants given so far */
    uint32_t rested;    /* futex: the last grant that the host used up */
    int64_t horizon_ns; /* of the last grant, inclusive */
    int64_t now_ns;     /* written by the host only */
    int64_t epoch_s;    /* the date at which the run begins, seconds since 1970 */
};

#endif
