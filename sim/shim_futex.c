/* SPDX-License-Identifier: MIT
 * The futex under the simulated clock. The C++ library waits by it, through syscall(): for atomics,
 * latches, barriers, semaphores, futures and the first pass of a static variable's declaration. */
#include "sim/clock_share.h"
#include "sim/shim_clock.h"
#include "sim/shim_next.h"
#include "sim/shim_waiters.h"

#include <linux/futex.h>
#include <stdarg.h>
#include <stdint.h>
#include <sys/syscall.h>
#include <unistd.h>

enum { k_arguments = 6 };

struct futex_wait {
    struct shim_waiter waiter;
    uint32_t value; /* the word's when the wait began */
};

/* Also when the word has changed: who is woken for nothing looks again, and a wake from outside the
 * turns is not missed. */
static bool is_over(void *what) {
    const struct futex_wait *wait = what;
    const uint32_t *word = wait->waiter.object;
    return wait->waiter.woken || __atomic_load_n(word, __ATOMIC_ACQUIRE) != wait->value;
}

/* FUTEX_WAIT takes a duration, FUTEX_WAIT_BITSET a point in time. */
static int64_t deadline_of(int command, const struct timespec *limit) {
    if (limit == NULL) {
        return SIM_CLOCK_NEVER;
    }
    if (command == FUTEX_WAIT_BITSET) {
        return shim_clock_from_absolute(limit);
    }
    return limit->tv_sec > SIM_CLOCK_NEVER / SHIM_SECOND_NS - 1
               ? SIM_CLOCK_NEVER
               : shim_clock_after(limit->tv_sec * SHIM_SECOND_NS + limit->tv_nsec);
}

/* A system call is no cancellation point. */
static long wait_for_word(struct futex_wait what, int64_t until_ns) {
    if (is_over(&what)) {
        errno = EAGAIN;
        return -1;
    }
    shim_waiter_enter(&what.waiter);
    const struct shim_wait wait = {
        .ready = is_over, .attempt = is_over, .what = &what, .until_ns = until_ns, .deaf = true};
    enum shim_wait_end end = shim_clock_wait(&wait);
    shim_waiter_leave(&what.waiter);
    errno = end == SHIM_TIME_UP ? ETIMEDOUT : errno;
    return end == SHIM_TIME_UP ? -1 : 0;
}

static bool is_time(const struct timespec *limit) {
    return limit == NULL || (limit->tv_sec >= 0 && shim_clock_is_valid(limit));
}

typedef long (*system_call)(long number, ...);

/* The arguments as they came, numbers too: of an int, only the lower half is set. */
static long futex(system_call next, void *const all[k_arguments]) {
    const void *word = all[0];
    const int command = (int)(intptr_t)all[1] & FUTEX_CMD_MASK;
    const struct timespec *limit = all[3];
    const bool some_bits = command == FUTEX_WAIT_BITSET || command == FUTEX_WAKE_BITSET;
    const uint32_t bits = some_bits ? (uint32_t)(uintptr_t)all[5] : SHIM_ANY_BITS;
    const bool waits = command == FUTEX_WAIT || command == FUTEX_WAIT_BITSET;
    const bool wakes = command == FUTEX_WAKE || command == FUTEX_WAKE_BITSET;
    if (waits && bits != 0 && is_time(limit)) {
        const struct futex_wait what = {.waiter = {.object = word, .bits = bits},
                                        .value = (uint32_t)(uintptr_t)all[2]};
        return wait_for_word(what, deadline_of(command, limit));
    }
    if (!wakes) {
        return next(SYS_futex, all[0], all[1], all[2], all[3], all[4], all[5]);
    }
    const int most = (int)(intptr_t)all[2];
    const long woken = shim_waiters_wake(word, most, bits);
    if (woken > 0 && woken == most) {
        return woken;
    }
    const long more = next(SYS_futex, all[0], all[1], most - woken, all[3], all[4], all[5]);
    return more == -1 ? -1 : woken + more;
}

EXPORT long syscall(long number, ...) {
    FIND_NEXT(syscall, -1)
    void *all[k_arguments];
    va_list rest;
    va_start(rest, number);
    for (int at = 0; at < k_arguments; ++at) { /* what was not given is not used */
        all[at] = va_arg(rest, void *);
    }
    va_end(rest);
    return number == SYS_futex && shim_clock_mine()
               ? futex(next, all)
               : next(number, all[0], all[1], all[2], all[3], all[4], all[5]);
}
