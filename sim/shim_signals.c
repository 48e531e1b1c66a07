/* SPDX-License-Identifier: MIT
 * Signals under the simulated clock: the calls that wait for one, and the masks that other waits
 * put on. */
#include "sim/clock_share.h"
#include "sim/shim_clock.h"
#include "sim/shim_next.h"
#include "sim/shim_waits.h"

#include <signal.h>
#include <unistd.h>

/* --- masks --- */

/* A signal that is pending and that `mask` lets through. */
static bool lets_one_through(const sigset_t *mask) {
    sigset_t pending;
    bool any = false;
    sigpending(&pending);
    for (int number = 1; number < NSIG; ++number) {
        any = any || (sigismember(&pending, number) == 1 && sigismember(mask, number) == 0);
    }
    return any;
}

bool shim_mask_put(const sigset_t *mask, sigset_t *before) {
    if (mask == NULL) {
        return true;
    }
    const bool interrupts = lets_one_through(mask);
    pthread_sigmask(SIG_SETMASK, mask, before); /* its handler runs here */
    errno = EINTR;
    return !interrupts;
}

void shim_mask_restore(const sigset_t *mask, const sigset_t *before) {
    if (mask != NULL) {
        pthread_sigmask(SIG_SETMASK, before, NULL);
    }
}

/* --- waiting --- */

static void wait_for_a_handler(void) {
    bool interrupted = false;
    while (!interrupted) {
        shim_wait_for((struct shim_wait){.until_ns = SIM_CLOCK_NEVER}, &interrupted);
    }
}

EXPORT int pause(void) {
    FIND_NEXT(pause, -1)
    if (!shim_clock_mine()) {
        return next();
    }
    wait_for_a_handler();
    return -1;
}

EXPORT int sigsuspend(const sigset_t *mask) {
    FIND_NEXT(sigsuspend, -1)
    if (!shim_clock_mine()) {
        return next(mask);
    }
    sigset_t before;
    if (shim_mask_put(mask, &before)) {
        wait_for_a_handler();
    }
    shim_mask_restore(mask, &before);
    return -1;
}

struct signal_wait {
    __typeof__(&sigtimedwait) look;
    const sigset_t *set;
    siginfo_t info;
    int number;
};

static bool signal_attempt(void *what) {
    struct signal_wait *wait = what;
    const struct timespec none = {0, 0};
    wait->number = wait->look(wait->set, &wait->info, &none);
    return wait->number != -1;
}

/* The signal's number; -1 with errno when another one's handler ran (EINTR) or the time is up
 * (EAGAIN). */
static int wait_for_one_of(const sigset_t *set, siginfo_t *info, int64_t until_ns) {
    static function_slot slot;
    struct signal_wait what = {
        .look = (__typeof__(&sigtimedwait))next_function(&slot, "sigtimedwait", NULL),
        .set = set,
        .number = -1};
    const struct shim_wait wait = {.attempt = signal_attempt, .what = &what, .until_ns = until_ns};
    bool interrupted = false;
    if (!shim_wait_for(wait, &interrupted)) {
        errno = interrupted ? EINTR : EAGAIN;
        return -1;
    }
    if (info != NULL) {
        *info = what.info;
    }
    return what.number;
}

EXPORT int sigwait(const sigset_t *restrict set, int *restrict number) {
    FIND_NEXT(sigwait, ENOSYS)
    if (!shim_clock_mine()) {
        return next(set, number);
    }
    do {
        *number = wait_for_one_of(set, NULL, SIM_CLOCK_NEVER);
    } while (*number == -1);
    return 0;
}

EXPORT int sigwaitinfo(const sigset_t *restrict set, siginfo_t *restrict info) {
    FIND_NEXT(sigwaitinfo, -1)
    return shim_clock_mine() ? wait_for_one_of(set, info, SIM_CLOCK_NEVER) : next(set, info);
}

EXPORT int sigtimedwait(const sigset_t *restrict set, siginfo_t *restrict info,
                        const struct timespec *restrict timeout) {
    FIND_NEXT(sigtimedwait, -1)
    return shim_clock_mine() && shim_is_timeout(timeout)
               ? wait_for_one_of(set, info, shim_deadline_of(timeout))
               : next(set, info, timeout);
}
