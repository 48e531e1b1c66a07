/* SPDX-License-Identifier: MIT
 * Moments of a run in virtual time, in milliseconds since it began, and threads to spend them. */
#ifndef UX_TESTS_SIM_MOMENTS_H
#define UX_TESTS_SIM_MOMENTS_H

#include "tests/sim/probe.h"

#include <pthread.h>
#include <sys/time.h>
#include <time.h>

static const long long k_start_s = 1735689600; /* 2025-01-01 00:00:00 UTC */

static inline long long now_ms(void) {
    struct timeval now;
    gettimeofday(&now, NULL);
    return (now.tv_sec - k_start_s) * 1000 + now.tv_usec / 1000;
}

static inline pthread_t start(void *(*task)(void *), void *argument) {
    pthread_t thread;
    CHECK(pthread_create(&thread, NULL, task, argument) == 0);
    return thread;
}

static inline struct timespec date_at(long long ms) {
    return (struct timespec){k_start_s + ms / 1000, ms % 1000 * 1000000};
}

#endif
