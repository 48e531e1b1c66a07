/* SPDX-License-Identifier: MIT
 * Who waits for what under the simulated clock: the line of threads before each lock, condition and
 * futex. Only the thread whose turn it is may call. */
#ifndef UX_SIM_SHIM_WAITERS_H
#define UX_SIM_SHIM_WAITERS_H

#include <stdbool.h>
#include <stdint.h>

#define SHIM_ANY_BITS UINT32_MAX

/* Lies on the stack of the thread that waits. */
struct shim_waiter {
    const void *object;
    uint32_t bits; /* which wakes it hears */
    bool woken;
    struct shim_waiter *next; /* came later */
};

void shim_waiter_enter(struct shim_waiter *waiter);
void shim_waiter_leave(struct shim_waiter *waiter);

/* Wakes at most `most` that wait for `object`, the oldest first. Returns how many. */
long shim_waiters_wake(const void *object, long most, uint32_t bits);

bool shim_waiters_any(const void *object);

#endif
