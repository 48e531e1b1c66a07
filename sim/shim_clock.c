/* SPDX-License-Identifier: MIT
 * Turns and time. The thread whose turn it is owns everything here without a lock; the exceptions,
 * each a single word, are the futex by which a turn is handed on and the mark of an interruption.
 */
#include "sim/shim_clock.h"

#include "sim/clock_share.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <linux/futex.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

enum { k_threads = 256, k_glances = 1000 };

static const int64_t k_glance_ns = 1000000;
static const long k_look_again_ns = 50000000; /* for interruptions that met a rest at its start */

/* With a limit, even one that never comes, the kernel tells of every signal handler that ran;
 * without one it would go on after a handler with SA_RESTART. */
static const struct timespec k_no_limit = {.tv_sec = 1 << 30};

/* A signal ends the wait that it meets, a cancellation also the next one. */
enum interruption { k_none, k_signal, k_cancellation };

struct thread {
    bool used;
    uint32_t turn;        /* futex: 1 = it is this thread's turn */
    uint32_t interrupted; /* enum interruption, not told yet */
    bool inside;          /* in this file: a signal handler must not come in again */
    struct shim_wait wait;
    uint64_t order; /* of the waits: the oldest goes first */
    uint64_t seen;  /* s_clock.turns at the last attempt */
    int glances;    /* since the last rest */
    int farewells;  /* rounds of destructors at the thread's end */
    int number;     /* the kernel's */
    pthread_t handle;
    void *(*start)(void *);
    void *argument;
};

static struct {
    struct sim_clock_share *share; /* null = real time */
    struct thread threads[k_threads];
    int used; /* of them, at most so far */
    struct thread *running;
    uint32_t grant;  /* the one in use */
    uint64_t orders; /* waits begun */
    uint64_t turns;  /* waits ended: only then can another attempt have become worth while */
    pthread_key_t key;
} s_clock;

static bool s_asked; /* whether this process shall live by the clock */
static __thread struct thread *t_thread;

#define LOAD(field) __atomic_load_n(&(field), __ATOMIC_ACQUIRE)
#define STORE(field, value) __atomic_store_n(&(field), value, __ATOMIC_RELEASE)

static int futex_wait(uint32_t *word, uint32_t value, const struct timespec *limit) {
    return (int)syscall(SYS_futex, word, FUTEX_WAIT, value, limit, NULL, 0);
}

static void futex_wake(uint32_t *word) {
    syscall(SYS_futex, word, FUTEX_WAKE, INT_MAX, NULL, NULL, 0);
}

/* --- turns --- */

/* Which handler ran cannot be told. Programs seldom mix both kinds. */
static bool all_handlers_restart(void) {
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action;
        if (sigaction(number, NULL, &action) == 0 && action.sa_handler != SIG_DFL &&
            action.sa_handler != SIG_IGN && (action.sa_flags & SA_RESTART) == 0) {
            return false;
        }
    }
    return true;
}

static void mark_signal(struct thread *thread) {
    if (thread->wait.restarts && all_handlers_restart()) {
        return;
    }
    uint32_t none = k_none;
    __atomic_compare_exchange_n(&thread->interrupted, &none, k_signal, false, __ATOMIC_ACQ_REL,
                                __ATOMIC_ACQUIRE);
}

/* A signal that came with what the last wait was for has had its effect. */
static void forget_signal(struct thread *thread) {
    uint32_t signal = k_signal;
    __atomic_compare_exchange_n(&thread->interrupted, &signal, k_none, false, __ATOMIC_ACQ_REL,
                                __ATOMIC_ACQUIRE);
}

static void give_turn(struct thread *to) {
    s_clock.running = to;
    STORE(s_clock.share->thread, to->number);
    STORE(to->turn, 1);
    futex_wake(&to->turn);
}

static void await_turn(struct thread *me) {
    while (LOAD(me->turn) == 0) {
        if (futex_wait(&me->turn, 0, &k_no_limit) == -1 && errno == EINTR) {
            mark_signal(me);
            futex_wake(&s_clock.share->granted);
        }
    }
    STORE(me->turn, 0);
}

static bool is_interrupted(const struct thread *thread) {
    return !thread->wait.deaf && LOAD(thread->interrupted) != k_none;
}

static bool can_go_on(const struct thread *thread) {
    if (is_interrupted(thread) || thread->wait.until_ns <= shim_clock_now()) {
        return true;
    }
    return thread->wait.attempt != NULL && thread->seen != s_clock.turns &&
           (thread->wait.ready == NULL || thread->wait.ready(thread->wait.what));
}

/* Rests until there is a new grant or an interruption; the caller looks again either way. */
static void rest(void) {
    struct sim_clock_share *share = s_clock.share;
    STORE(share->rested, s_clock.grant);
    futex_wake(&share->rested);
    const struct timespec limit = {.tv_sec = 0, .tv_nsec = k_look_again_ns};
    bool interrupted = false;
    while (LOAD(share->granted) == s_clock.grant && !interrupted) {
        if (futex_wait(&share->granted, s_clock.grant, &limit) == -1 && errno == EINTR) {
            mark_signal(t_thread);
            interrupted = true; /* the handler may have brought what somebody waits for */
        }
        for (int at = 0; at < s_clock.used; ++at) {
            interrupted =
                interrupted || (s_clock.threads[at].used && is_interrupted(&s_clock.threads[at]));
        }
    }
    s_clock.grant = LOAD(share->granted);
    STORE(share->rested, s_clock.grant - 1);
    ++s_clock.turns; /* whoever gave the grant may have sent something */
}

/* The thread that goes on next, null when there is none left. Moves the clock. */
static struct thread *choose(void) {
    for (;;) {
        struct thread *best = NULL;
        bool any = false;
        int64_t earliest = SIM_CLOCK_NEVER;
        for (int at = 0; at < s_clock.used; ++at) {
            struct thread *one = &s_clock.threads[at];
            if (!one->used) {
                continue;
            }
            any = true;
            earliest = one->wait.until_ns < earliest ? one->wait.until_ns : earliest;
            if ((best == NULL || one->order < best->order) && can_go_on(one)) {
                best = one;
            }
        }
        if (best != NULL || !any) {
            return best;
        }
        int64_t horizon = LOAD(s_clock.share->horizon_ns);
        if (earliest <= horizon && earliest != SIM_CLOCK_NEVER) {
            STORE(s_clock.share->now_ns, earliest);
            continue;
        }
        if (horizon != SIM_CLOCK_NEVER && horizon > shim_clock_now()) {
            STORE(s_clock.share->now_ns, horizon);
        }
        rest();
    }
}

static void let_others_run(struct thread *me) {
    struct thread *next = choose();
    if (next != me) {
        give_turn(next);
        await_turn(me);
    }
}

static bool cancellation_is_enabled(void) {
    int state = PTHREAD_CANCEL_ENABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    pthread_setcancelstate(state, NULL);
    return state == PTHREAD_CANCEL_ENABLE;
}

/* Whether something ends the wait before it is over. A cancellation that the thread does not want
 * to hear of now does not; the C library remembers it. */
static bool take_interruption(struct thread *me) {
    if (!is_interrupted(me)) {
        return false;
    }
    const bool cancelled =
        __atomic_exchange_n(&me->interrupted, k_none, __ATOMIC_ACQ_REL) == k_cancellation;
    return !cancelled || cancellation_is_enabled();
}

enum shim_wait_end shim_clock_wait(const struct shim_wait *wait) {
    struct thread *me = t_thread;
    enum shim_wait_end end = SHIM_READY;
    const int64_t begun_ns = shim_clock_now();
    if (!wait->deaf) {
        pthread_testcancel(); /* a cancellation from before */
    }
    me->inside = true;
    me->wait = *wait;
    me->order = ++s_clock.orders;
    forget_signal(me);
    for (bool first = true;; first = false) {
        me->seen = s_clock.turns;
        if (wait->attempt != NULL && wait->attempt(wait->what)) {
            break;
        }
        if (take_interruption(me)) {
            end = SHIM_INTERRUPTED;
            break;
        }
        if (!first && wait->until_ns <= shim_clock_now()) {
            end = SHIM_TIME_UP;
            break;
        }
        let_others_run(me);
    }
    if (shim_clock_now() > begun_ns) {
        me->glances = 0;
    }
    ++s_clock.turns;
    me->inside = false;
    return end;
}

void shim_clock_glance(void) {
    if (!shim_clock_mine() || ++t_thread->glances < k_glances) {
        return;
    }
    t_thread->glances = 0;
    const struct shim_wait pause = {.until_ns = shim_clock_after(k_glance_ns), .deaf = true};
    shim_clock_wait(&pause);
}

/* --- threads --- */

static struct thread *new_thread(void) {
    for (int at = 0; at < k_threads; ++at) {
        struct thread *thread = &s_clock.threads[at];
        if (!thread->used) {
            *thread = (struct thread){.used = true, .order = ++s_clock.orders};
            thread->wait.until_ns = shim_clock_now();
            s_clock.used = at >= s_clock.used ? at + 1 : s_clock.used;
            return thread;
        }
    }
    return NULL;
}

/* The last of the thread's destructors, so that the others still take turns: a key's destructor is
 * called again as long as it sets the key again, for a few rounds. */
static void leave(void *thread) {
    struct thread *me = thread;
    if (s_clock.share == NULL) {
        return;
    }
    if (++me->farewells < PTHREAD_DESTRUCTOR_ITERATIONS - 1) {
        pthread_setspecific(s_clock.key, me);
        return;
    }
    if (s_clock.running != me) { /* cancelled in the middle of a wait */
        me->wait = (struct shim_wait){.until_ns = 0};
        STORE(me->interrupted, k_cancellation);
        await_turn(me);
    }
    me->inside = true;
    me->used = false;
    ++s_clock.turns;
    struct thread *next = choose();
    t_thread = NULL;
    if (next != NULL) {
        give_turn(next);
    }
}

static void *begin(void *thread) {
    struct thread *me = thread;
    t_thread = me;
    me->inside = true;
    pthread_setspecific(s_clock.key, me);
    await_turn(me);
    me->number = (int)syscall(SYS_gettid);
    STORE(s_clock.share->thread, me->number);
    ++s_clock.turns;
    me->inside = false;
    return me->start(me->argument);
}

int shim_clock_start_thread(__typeof__(&pthread_create) create, pthread_t *thread,
                            const pthread_attr_t *attributes, void *(*start)(void *),
                            void *argument) {
    struct thread *made = new_thread();
    if (made == NULL) {
        return EAGAIN;
    }
    made->start = start;
    made->argument = argument;
    int result = create(&made->handle, attributes, begin, made);
    if (result != 0) {
        made->used = false;
    } else {
        *thread = made->handle;
    }
    return result;
}

static struct thread *find_thread(pthread_t handle) {
    for (int at = 0; at < s_clock.used; ++at) {
        struct thread *thread = &s_clock.threads[at];
        if (thread->used && pthread_equal(thread->handle, handle)) {
            return thread;
        }
    }
    return NULL;
}

bool shim_clock_has_thread(pthread_t handle) {
    return find_thread(handle) != NULL;
}

void shim_clock_interrupt(pthread_t handle, bool cancel) {
    struct thread *thread = find_thread(handle);
    if (thread != NULL && cancel) {
        STORE(thread->interrupted, k_cancellation);
    } else if (thread != NULL) {
        mark_signal(thread);
    }
}

/* --- the clock --- */

/* A forked child lives in real time, and so does what it starts. */
static void leave_in_child(void) {
    s_clock.share = NULL;
    t_thread = NULL;
}

static struct sim_clock_share *map_share(void) {
    const char *path = getenv("UX_SIM_CLOCK");
    int fd = path == NULL || *path == '\0' ? -1 : openat(AT_FDCWD, path, O_RDWR | O_CLOEXEC);
    if (fd == -1) {
        return NULL;
    }
    void *memory =
        mmap(NULL, sizeof(struct sim_clock_share), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    return memory == MAP_FAILED ? NULL : memory;
}

/* The first process of the run owns the clock, also after it has executed another program. */
static bool claim(struct sim_clock_share *share) {
    int32_t nobody = 0;
    const int32_t own = getpid();
    return __atomic_compare_exchange_n(&share->owner, &nobody, own, false, __ATOMIC_ACQ_REL,
                                       __ATOMIC_ACQUIRE) ||
           nobody == own;
}

static void join_clock(void) {
    struct sim_clock_share *share = map_share();
    if (share == NULL || !claim(share) || pthread_key_create(&s_clock.key, leave) != 0) {
        return;
    }
    s_clock.share = share;
    s_clock.grant = LOAD(share->granted);
    pthread_atfork(NULL, NULL, leave_in_child);
    struct thread *first = new_thread();
    first->number = (int)syscall(SYS_gettid);
    first->handle = pthread_self();
    s_clock.running = first;
    STORE(share->thread, first->number);
    t_thread = first;
    pthread_setspecific(s_clock.key, first);
}

/* At the first call, which may come from another library's constructor. What joining itself calls
 * meets real time. */
__attribute__((constructor)) static void prepare(void) {
    if (!LOAD(s_asked) && !__atomic_exchange_n(&s_asked, true, __ATOMIC_ACQ_REL)) {
        join_clock();
    }
}

bool shim_clock_runs(void) {
    prepare();
    return s_clock.share != NULL;
}

bool shim_clock_mine(void) {
    prepare();
    return t_thread != NULL && s_clock.share != NULL && s_clock.running == t_thread &&
           !t_thread->inside;
}

int64_t shim_clock_now(void) {
    return LOAD(s_clock.share->now_ns);
}

int64_t shim_clock_epoch_s(void) {
    return LOAD(s_clock.share->epoch_s);
}

int64_t shim_clock_after(int64_t duration_ns) {
    int64_t now = shim_clock_now();
    if (duration_ns <= 0) {
        return now;
    }
    return duration_ns > SIM_CLOCK_NEVER - now ? SIM_CLOCK_NEVER : now + duration_ns;
}
