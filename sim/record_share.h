/* SPDX-License-Identifier: MIT
 * The memory through which the preload library tells ux-sim what the host received: a ring that is
 * written without waiting and read every few milliseconds. */
#ifndef UX_SIM_RECORD_SHARE_H
#define UX_SIM_RECORD_SHARE_H

#include <stdint.h>

enum { SIM_RECORD_SLOTS = 1024 };

struct sim_record_entry {
    uint32_t number; /* 1 for the first message of all; written last, 0 = empty */
    int32_t key;     /* the message's fields */
    int32_t kind;
    int32_t x;
    int32_t y;
    int64_t time_ns; /* CLOCK_MONOTONIC, or since the run began in virtual time */
};

/* `taken` and each entry's `number` are used with the __atomic builtins. */
struct sim_record_share {
    int32_t queue;  /* identifier of the input queue */
    uint32_t taken; /* slots given out so far; entry n lies in slot (n - 1) % SIM_RECORD_SLOTS */
    struct sim_record_entry entries[SIM_RECORD_SLOTS];
};

#endif
