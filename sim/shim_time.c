/* SPDX-License-Identifier: MIT
 * The calls that ask for the time or let it pass. Under the simulated clock, the date begins where
 * ux-sim says and the clocks that count from the start of the machine a little after it. */
#include "sim/clock_share.h"
#include "sim/shim_clock.h"
#include "sim/shim_next.h"

#include <sched.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

/* How long the machine has been up when a run begins. */
static const int64_t k_uptime_s = 1000;

static struct timespec time_since(int64_t start_s) {
    int64_t now = shim_clock_now();
    return (struct timespec){.tv_sec = start_s + now / SHIM_SECOND_NS,
                             .tv_nsec = now % SHIM_SECOND_NS};
}

/* Clocks that nobody can sleep by: the C library tells so. */
static bool is_only_read(clockid_t clock) {
    return clock == CLOCK_REALTIME_COARSE || clock == CLOCK_MONOTONIC_COARSE ||
           clock == CLOCK_MONOTONIC_RAW;
}

/* Whether a clock is simulated, and where it began. Clocks of used processor time are not. */
static bool start_of(clockid_t clock, int64_t *start_s) {
    switch (clock) {
    case CLOCK_REALTIME:
    case CLOCK_REALTIME_COARSE:
    case CLOCK_TAI:
        *start_s = shim_clock_epoch_s();
        return true;
    case CLOCK_MONOTONIC:
    case CLOCK_MONOTONIC_COARSE:
    case CLOCK_MONOTONIC_RAW:
    case CLOCK_BOOTTIME:
        *start_s = k_uptime_s;
        return true;
    default:
        return false;
    }
}

bool shim_clock_is_valid(const struct timespec *time) {
    return time->tv_nsec >= 0 && time->tv_nsec < SHIM_SECOND_NS;
}

static bool is_duration(const struct timespec *time) {
    return time != NULL && time->tv_sec >= 0 && shim_clock_is_valid(time);
}

/* Saturates: beyond 292 years a duration is as good as for ever. */
static int64_t in_ns(const struct timespec *time) {
    int64_t ns = 0;
    return __builtin_mul_overflow((int64_t)time->tv_sec, SHIM_SECOND_NS, &ns) ||
                   __builtin_add_overflow(ns, time->tv_nsec, &ns)
               ? SIM_CLOCK_NEVER
               : ns;
}

int64_t shim_clock_from_absolute(const struct timespec *time) {
    if (time->tv_sec < 0) {
        return 0; /* long over */
    }
    /* No date of a run is as early as the other clocks' times. */
    int64_t start_s = time->tv_sec < shim_clock_epoch_s() / 2 ? k_uptime_s : shim_clock_epoch_s();
    struct timespec since = {.tv_sec = time->tv_sec - start_s, .tv_nsec = time->tv_nsec};
    return in_ns(&since);
}

/* What is left of the sleep; 0 = it was not interrupted. */
static int64_t sleep_until(int64_t until_ns) {
    if (until_ns <= shim_clock_now()) {
        shim_clock_glance();
    }
    const struct shim_wait wait = {.until_ns = until_ns};
    enum shim_wait_end end = shim_clock_wait(&wait);
    pthread_testcancel();
    int64_t left = until_ns - shim_clock_now();
    return end == SHIM_INTERRUPTED && left > 0 ? left : 0;
}

EXPORT time_t time(time_t *result) {
    FIND_NEXT(time, (time_t)-1)
    if (!shim_clock_runs()) {
        return next(result);
    }
    shim_clock_glance();
    time_t now = time_since(shim_clock_epoch_s()).tv_sec;
    if (result != NULL) {
        *result = now;
    }
    return now;
}

EXPORT int gettimeofday(struct timeval *restrict result, void *restrict zone) {
    FIND_NEXT(gettimeofday, -1)
    if (!shim_clock_runs()) {
        return next(result, zone);
    }
    shim_clock_glance();
    struct timespec now = time_since(shim_clock_epoch_s());
    int answer = zone == NULL ? 0 : next(result, zone); /* the zone stays the machine's */
    *result = (struct timeval){.tv_sec = now.tv_sec, .tv_usec = now.tv_nsec / 1000};
    return answer;
}

EXPORT int clock_gettime(clockid_t clock, struct timespec *result) {
    FIND_NEXT(clock_gettime, -1)
    int64_t start_s = 0;
    if (!shim_clock_runs() || !start_of(clock, &start_s)) {
        return next(clock, result);
    }
    shim_clock_glance();
    *result = time_since(start_s);
    return 0;
}

EXPORT int timespec_get(struct timespec *result, int base) {
    FIND_NEXT(timespec_get, 0)
    if (!shim_clock_runs() || base != TIME_UTC) {
        return next(result, base);
    }
    shim_clock_glance();
    *result = time_since(shim_clock_epoch_s());
    return base;
}

EXPORT int nanosleep(const struct timespec *duration, struct timespec *left) {
    FIND_NEXT(nanosleep, -1)
    if (!shim_clock_mine() || !is_duration(duration)) {
        return next(duration, left);
    }
    int64_t left_ns = sleep_until(shim_clock_after(in_ns(duration)));
    if (left_ns == 0) {
        return 0;
    }
    if (left != NULL) {
        *left = (struct timespec){.tv_sec = left_ns / SHIM_SECOND_NS,
                                  .tv_nsec = left_ns % SHIM_SECOND_NS};
    }
    errno = EINTR;
    return -1;
}

EXPORT int clock_nanosleep(clockid_t clock, int flags, const struct timespec *duration,
                           struct timespec *left) {
    FIND_NEXT(clock_nanosleep, ENOSYS)
    int64_t start_s = 0;
    if (!shim_clock_mine() || !is_duration(duration) || is_only_read(clock) ||
        !start_of(clock, &start_s)) {
        return next(clock, flags, duration, left);
    }
    if ((flags & TIMER_ABSTIME) == 0) {
        int saved_errno = errno;
        int result = nanosleep(duration, left) == 0 ? 0 : errno;
        errno = saved_errno;
        return result;
    }
    struct timespec since = {.tv_sec = duration->tv_sec - start_s, .tv_nsec = duration->tv_nsec};
    return sleep_until(in_ns(&since)) == 0 ? 0 : EINTR;
}

EXPORT int usleep(useconds_t duration_us) {
    FIND_NEXT(usleep, -1)
    if (!shim_clock_mine()) {
        return next(duration_us);
    }
    if (sleep_until(shim_clock_after((int64_t)duration_us * 1000)) == 0) {
        return 0;
    }
    errno = EINTR;
    return -1;
}

EXPORT unsigned sleep(unsigned duration_s) {
    FIND_NEXT(sleep, duration_s)
    if (!shim_clock_mine()) {
        return next(duration_s);
    }
    int64_t left_ns = sleep_until(shim_clock_after(duration_s * SHIM_SECOND_NS));
    return (unsigned)((left_ns + SHIM_SECOND_NS - 1) / SHIM_SECOND_NS);
}

EXPORT int sched_yield(void) {
    FIND_NEXT(sched_yield, -1)
    if (!shim_clock_mine()) {
        return next();
    }
    shim_clock_glance();
    const struct shim_wait wait = {.until_ns = shim_clock_now(), .deaf = true};
    shim_clock_wait(&wait);
    return 0;
}
