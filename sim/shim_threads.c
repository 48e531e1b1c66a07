/* SPDX-License-Identifier: MIT
 * The calls of POSIX threads that start threads or wait for them. Under the simulated clock no
 * thread may wait in the kernel for another one: that one could not get its turn. */
#include "sim/clock_share.h"
#include "sim/shim_clock.h"
#include "sim/shim_next.h"
#include "sim/shim_waiters.h"

#include <limits.h>
#include <semaphore.h>
#include <signal.h>
#include <unistd.h>

/* Where a C library has several, these are the ones that programs of today use. */
#define CONDITION_VERSION "GLIBC_2.3.2"

/* Otherwise the call goes on to the C library, which refuses a limit or a clock that is none. */
static bool may_wait_until(const struct timespec *limit) {
    return shim_clock_mine() && limit != NULL && shim_clock_is_valid(limit);
}

static bool may_wait_by(clockid_t clock, const struct timespec *limit) {
    return (clock == CLOCK_REALTIME || clock == CLOCK_MONOTONIC) && may_wait_until(limit);
}

/* --- threads --- */

EXPORT int pthread_create(pthread_t *restrict thread, const pthread_attr_t *restrict attributes,
                          void *(*start)(void *), void *restrict argument) {
    FIND_NEXT(pthread_create, EAGAIN)
    return shim_clock_mine() ? shim_clock_start_thread(next, thread, attributes, start, argument)
                             : next(thread, attributes, start, argument);
}

static bool has_ended(void *thread) {
    return !shim_clock_has_thread(*(pthread_t *)thread);
}

/* False when the time is up. */
static bool await_end(pthread_t thread, int64_t until_ns) {
    if (pthread_equal(thread, pthread_self())) {
        return true; /* the C library refuses */
    }
    const struct shim_wait wait = {
        .ready = has_ended, .attempt = has_ended, .what = &thread, .until_ns = until_ns};
    enum shim_wait_end end = SHIM_INTERRUPTED;
    while (end == SHIM_INTERRUPTED) {
        end = shim_clock_wait(&wait);
        pthread_testcancel();
    }
    return end == SHIM_READY;
}

EXPORT int pthread_join(pthread_t thread, void **result) {
    FIND_NEXT(pthread_join, EINVAL)
    if (shim_clock_mine()) {
        await_end(thread, SIM_CLOCK_NEVER);
    }
    return next(thread, result);
}

/* Without the limit once the thread has ended: that is a matter of a moment, of real time. */
EXPORT int pthread_timedjoin_np(pthread_t thread, void **result, const struct timespec *limit) {
    FIND_NEXT(pthread_timedjoin_np, EINVAL)
    if (!may_wait_until(limit)) {
        return next(thread, result, limit);
    }
    return await_end(thread, shim_clock_from_absolute(limit)) ? next(thread, result, NULL)
                                                              : ETIMEDOUT;
}

EXPORT int pthread_clockjoin_np(pthread_t thread, void **result, clockid_t clock,
                                const struct timespec *limit) {
    FIND_NEXT(pthread_clockjoin_np, EINVAL)
    if (!may_wait_by(clock, limit)) {
        return next(thread, result, clock, limit);
    }
    return await_end(thread, shim_clock_from_absolute(limit)) ? next(thread, result, clock, NULL)
                                                              : ETIMEDOUT;
}

EXPORT int pthread_cancel(pthread_t thread) {
    FIND_NEXT(pthread_cancel, EINVAL)
    int result = next(thread);
    if (result == 0 && shim_clock_mine()) {
        shim_clock_interrupt(thread, true);
    }
    return result;
}

static bool is_handled(int number) {
    struct sigaction action;
    return number > 0 && sigaction(number, NULL, &action) == 0 && action.sa_handler != SIG_DFL &&
           action.sa_handler != SIG_IGN;
}

/* The kernel wakes the thread when it gets round to it; its wait must end at this moment. */
EXPORT int pthread_kill(pthread_t thread, int number) {
    FIND_NEXT(pthread_kill, EINVAL)
    int result = next(thread, number);
    if (result == 0 && shim_clock_mine() && is_handled(number) &&
        !pthread_equal(thread, pthread_self())) {
        shim_clock_interrupt(thread, false);
    }
    return result;
}

/* --- locks --- */

/* A lock that is tried until it is free; errors other than EBUSY end the wait too. */
struct lock_wait {
    int (*take)(void *lock);
    void *lock;
    int result;
};

static bool lock_attempt(void *what) {
    struct lock_wait *wait = what;
    wait->result = wait->take(wait->lock);
    return wait->result != EBUSY;
}

/* A thread that unlocks and locks again without a rest would never let those that wait have it. */
static void give_way(void) {
    const struct shim_wait turn = {.until_ns = shim_clock_now(), .deaf = true};
    shim_clock_wait(&turn);
}

static int lock_until(int (*take)(void *lock), void *lock, int64_t until_ns) {
    struct lock_wait what = {.take = take, .lock = lock, .result = EBUSY};
    if (shim_waiters_any(lock)) {
        give_way();
    }
    if (lock_attempt(&what)) {
        return what.result;
    }
    struct shim_waiter waiter = {.object = lock};
    const struct shim_wait wait = {
        .attempt = lock_attempt, .what = &what, .until_ns = until_ns, .deaf = true};
    shim_waiter_enter(&waiter);
    const bool late = shim_clock_wait(&wait) == SHIM_TIME_UP;
    shim_waiter_leave(&waiter);
    return late ? ETIMEDOUT : what.result;
}

/* Trying does not tell an owner that locks again, but a mutex that checks for errors would. */
static bool is_checked_and_own(const pthread_mutex_t *mutex) {
    const int kind_bits = 3;
    return (mutex->__data.__kind & kind_bits) == PTHREAD_MUTEX_ERRORCHECK &&
           mutex->__data.__owner == gettid();
}

static int take_mutex(void *mutex) {
    int result = pthread_mutex_trylock(mutex);
    return result == EBUSY && is_checked_and_own(mutex) ? EDEADLK : result;
}

static int take_to_read(void *lock) {
    return pthread_rwlock_tryrdlock(lock);
}

static int take_to_write(void *lock) {
    return pthread_rwlock_trywrlock(lock);
}

EXPORT int pthread_mutex_lock(pthread_mutex_t *mutex) {
    FIND_NEXT(pthread_mutex_lock, EINVAL)
    return shim_clock_mine() ? lock_until(take_mutex, mutex, SIM_CLOCK_NEVER) : next(mutex);
}

EXPORT int pthread_mutex_timedlock(pthread_mutex_t *restrict mutex,
                                   const struct timespec *restrict limit) {
    FIND_NEXT(pthread_mutex_timedlock, EINVAL)
    return may_wait_until(limit) ? lock_until(take_mutex, mutex, shim_clock_from_absolute(limit))
                                 : next(mutex, limit);
}

EXPORT int pthread_mutex_clocklock(pthread_mutex_t *restrict mutex, clockid_t clock,
                                   const struct timespec *restrict limit) {
    FIND_NEXT(pthread_mutex_clocklock, EINVAL)
    return may_wait_by(clock, limit)
               ? lock_until(take_mutex, mutex, shim_clock_from_absolute(limit))
               : next(mutex, clock, limit);
}

EXPORT int pthread_rwlock_rdlock(pthread_rwlock_t *lock) {
    FIND_NEXT(pthread_rwlock_rdlock, EINVAL)
    return shim_clock_mine() ? lock_until(take_to_read, lock, SIM_CLOCK_NEVER) : next(lock);
}

EXPORT int pthread_rwlock_wrlock(pthread_rwlock_t *lock) {
    FIND_NEXT(pthread_rwlock_wrlock, EINVAL)
    return shim_clock_mine() ? lock_until(take_to_write, lock, SIM_CLOCK_NEVER) : next(lock);
}

#define RWLOCK_TIMED_CALL(name, take)                                                              \
    EXPORT int name(pthread_rwlock_t *restrict lock, const struct timespec *restrict limit) {      \
        FIND_NEXT(name, EINVAL)                                                                    \
        return may_wait_until(limit) ? lock_until(take, lock, shim_clock_from_absolute(limit))     \
                                     : next(lock, limit);                                          \
    }

#define RWLOCK_CLOCK_CALL(name, take)                                                              \
    EXPORT int name(pthread_rwlock_t *restrict lock, clockid_t clock,                              \
                    const struct timespec *restrict limit) {                                       \
        FIND_NEXT(name, EINVAL)                                                                    \
        return may_wait_by(clock, limit) ? lock_until(take, lock, shim_clock_from_absolute(limit)) \
                                         : next(lock, clock, limit);                               \
    }

RWLOCK_TIMED_CALL(pthread_rwlock_timedrdlock, take_to_read)
RWLOCK_TIMED_CALL(pthread_rwlock_timedwrlock, take_to_write)
RWLOCK_CLOCK_CALL(pthread_rwlock_clockrdlock, take_to_read)
RWLOCK_CLOCK_CALL(pthread_rwlock_clockwrlock, take_to_write)

/* --- conditions --- */

static bool is_signalled(void *waiter) {
    return ((const struct shim_waiter *)waiter)->woken;
}

static void lock_again(void *mutex) {
    lock_until(take_mutex, mutex, SIM_CLOCK_NEVER);
}

/* A cancellation is acted upon with the mutex locked, as for every wait for a condition. */
static int wait_for_condition(pthread_cond_t *condition, pthread_mutex_t *mutex, int64_t until_ns) {
    struct shim_waiter waiter = {.object = condition, .bits = SHIM_ANY_BITS};
    pthread_testcancel(); /* while the mutex is locked */
    int result = pthread_mutex_unlock(mutex);
    if (result != 0) {
        return result;
    }
    const struct shim_wait wait = {
        .ready = is_signalled, .attempt = is_signalled, .what = &waiter, .until_ns = until_ns};
    shim_waiter_enter(&waiter);
    enum shim_wait_end end = shim_clock_wait(&wait);
    shim_waiter_leave(&waiter);
    lock_again(mutex);
    pthread_testcancel();
    return end == SHIM_TIME_UP ? ETIMEDOUT : 0;
}

EXPORT int pthread_cond_wait(pthread_cond_t *restrict condition, pthread_mutex_t *restrict mutex) {
    FIND_NEXT_VERSION(pthread_cond_wait, CONDITION_VERSION, EINVAL)
    return shim_clock_mine() ? wait_for_condition(condition, mutex, SIM_CLOCK_NEVER)
                             : next(condition, mutex);
}

EXPORT int pthread_cond_timedwait(pthread_cond_t *restrict condition,
                                  pthread_mutex_t *restrict mutex,
                                  const struct timespec *restrict limit) {
    FIND_NEXT_VERSION(pthread_cond_timedwait, CONDITION_VERSION, EINVAL)
    return may_wait_until(limit)
               ? wait_for_condition(condition, mutex, shim_clock_from_absolute(limit))
               : next(condition, mutex, limit);
}

EXPORT int pthread_cond_clockwait(pthread_cond_t *restrict condition,
                                  pthread_mutex_t *restrict mutex, clockid_t clock,
                                  const struct timespec *restrict limit) {
    FIND_NEXT(pthread_cond_clockwait, EINVAL)
    return may_wait_by(clock, limit)
               ? wait_for_condition(condition, mutex, shim_clock_from_absolute(limit))
               : next(condition, mutex, clock, limit);
}

EXPORT int pthread_cond_signal(pthread_cond_t *condition) {
    FIND_NEXT_VERSION(pthread_cond_signal, CONDITION_VERSION, EINVAL)
    return shim_clock_mine() && shim_waiters_wake(condition, 1, SHIM_ANY_BITS) > 0
               ? 0
               : next(condition);
}

EXPORT int pthread_cond_broadcast(pthread_cond_t *condition) {
    FIND_NEXT_VERSION(pthread_cond_broadcast, CONDITION_VERSION, EINVAL)
    if (shim_clock_mine()) {
        shim_waiters_wake(condition, LONG_MAX, SHIM_ANY_BITS);
    }
    return next(condition);
}

/* --- semaphores --- */

static bool may_pass(void *semaphore) {
    int value = 0;
    return sem_getvalue(semaphore, &value) == 0 && value > 0;
}

static bool pass_attempt(void *semaphore) {
    return sem_trywait(semaphore) == 0 || errno != EAGAIN;
}

static int pass_until(sem_t *semaphore, int64_t until_ns) {
    const struct shim_wait wait = {.ready = may_pass,
                                   .attempt = pass_attempt,
                                   .what = semaphore,
                                   .until_ns = until_ns,
                                   .restarts = true};
    enum shim_wait_end end = shim_clock_wait(&wait);
    pthread_testcancel();
    if (end == SHIM_READY) {
        return 0;
    }
    errno = end == SHIM_TIME_UP ? ETIMEDOUT : EINTR;
    return -1;
}

EXPORT int sem_wait(sem_t *semaphore) {
    FIND_NEXT(sem_wait, -1)
    return shim_clock_mine() ? pass_until(semaphore, SIM_CLOCK_NEVER) : next(semaphore);
}

EXPORT int sem_timedwait(sem_t *restrict semaphore, const struct timespec *restrict limit) {
    FIND_NEXT(sem_timedwait, -1)
    return may_wait_until(limit) ? pass_until(semaphore, shim_clock_from_absolute(limit))
                                 : next(semaphore, limit);
}

EXPORT int sem_clockwait(sem_t *restrict semaphore, clockid_t clock,
                         const struct timespec *restrict limit) {
    FIND_NEXT(sem_clockwait, -1)
    return may_wait_by(clock, limit) ? pass_until(semaphore, shim_clock_from_absolute(limit))
                                     : next(semaphore, clock, limit);
}
