/* SPDX-License-Identifier: MIT
 * The simulated clock inside the host. One thread of the host runs at a time; its turn ends when it
 * sleeps or waits, and goes to the thread that has waited longest among those that can go on. When
 * none can, the clock jumps to the earliest deadline. So the order of all that threads do depends
 * on the host alone, not on the machine. */
#ifndef UX_SIM_SHIM_CLOCK_H
#define UX_SIM_SHIM_CLOCK_H

#include <pthread.h>
#include <stdbool.h>
#include <stdint.h>
#include <time.h>

#define SHIM_SECOND_NS INT64_C(1000000000)

/* What a thread waits for. Only `until_ns` need be set. */
struct shim_wait {
    /* Whether a try is worth while; called by any thread. Null: always. */
    bool (*ready)(void *what);
    /* Ends the wait by true; called by the waiting thread, again after each turn of another one.
     * Null: the wait is for time alone. */
    bool (*attempt)(void *what);
    void *what;
    int64_t until_ns; /* SIM_CLOCK_NEVER = as long as it takes */
    bool deaf;        /* signals and cancellation do not end it */
    bool restarts;    /* nor do signals whose handlers have SA_RESTART */
};

enum shim_wait_end { SHIM_READY, SHIM_TIME_UP, SHIM_INTERRUPTED };

/* True when this process lives by the simulated clock: its queries of time are answered here. */
bool shim_clock_runs(void);

/* True when the calling thread may wait here: it is one of the host's, and it is its turn. */
bool shim_clock_mine(void);

/* Simulated time since the run began, and the date at which that was. */
int64_t shim_clock_now(void);
int64_t shim_clock_epoch_s(void);

/* `duration_ns` from now; a negative one counts as 0, one out of range as for ever. */
int64_t shim_clock_after(int64_t duration_ns);

/* Whether the fraction of a second is one. Other times are the C library's to refuse. */
bool shim_clock_is_valid(const struct timespec *time);

/* The same scale for an absolute time of a simulated clock: the date, or the time since the machine
 * was started. */
int64_t shim_clock_from_absolute(const struct timespec *time);

/* To be called by what a thread may do again and again without resting, such as asking for the
 * time: every thousandth costs a millisecond, so that a busy wait comes to an end. */
void shim_clock_glance(void);

/* Lets the others have their turns and comes back when the wait is over. shim_clock_mine() only. */
enum shim_wait_end shim_clock_wait(const struct shim_wait *wait);

/* pthread_create for a thread that takes turns with the others. */
int shim_clock_start_thread(__typeof__(&pthread_create) create, pthread_t *thread,
                            const pthread_attr_t *attributes, void *(*start)(void *),
                            void *argument);

/* True while a thread started here has not ended. */
bool shim_clock_has_thread(pthread_t thread);

/* Ends the wait of a thread, if it is not deaf; as a cancellation also one that it begins later. */
void shim_clock_interrupt(pthread_t thread, bool cancel);

#endif
