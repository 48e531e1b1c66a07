/* SPDX-License-Identifier: MIT
 * A library whose constructor asks for the time and starts a thread: before main, and before the
 * constructors of libraries that were loaded first. */
#include "tests/sim/early_caller.h"

#include <pthread.h>
#include <stddef.h>
#include <unistd.h>

static time_t s_begun;
static time_t s_woken;
static pthread_t s_thread;

static void *sleep_and_look(void *unused) {
    sleep(3);
    s_woken = time(NULL);
    return unused;
}

__attribute__((constructor)) static void begin(void) {
    s_begun = time(NULL);
    pthread_create(&s_thread, NULL, sleep_and_look, NULL);
}

time_t early_caller_begun(void) {
    return s_begun;
}

time_t early_caller_woken(void) {
    pthread_join(s_thread, NULL);
    return s_woken;
}
