/* SPDX-License-Identifier: MIT
 * Waits in virtual time that are rarer than those of time_probe.c: wrong timeouts, signals and
 * cancellation in the middle, sockets, locks that others want. `wait-probe NAME` carries out one
 * check. Every expectation of a moment is in milliseconds since the run began, and exact. */
#include "tests/sim/early_caller.h"
#include "tests/sim/moments.h"
#include "tests/sim/probe.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

static void constructors_live_by_the_clock(void) {
    CHECK(early_caller_begun() == k_start_s);
    CHECK(early_caller_woken() == k_start_s + 3);
}

/* --- timeouts that are none --- */

static pthread_mutex_t s_mutex = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t s_condition = PTHREAD_COND_INITIALIZER;
static pthread_rwlock_t s_lock = PTHREAD_RWLOCK_INITIALIZER;
static sem_t s_semaphore;

#define CHECK_REFUSED(call) CHECK((errno = 0, (call) == -1) && errno == EINVAL)

static void wrong_timeouts_are_refused(void) {
    const struct timespec wrong = {0, 1000000000};
    const struct timespec negative = {-1, 0};
    struct timeval interval = {-1, 0};
    struct epoll_event event;
    CHECK_REFUSED(ppoll(NULL, 0, &wrong, NULL));
    CHECK_REFUSED(ppoll(NULL, 0, &negative, NULL));
    CHECK_REFUSED(pselect(0, NULL, NULL, NULL, &wrong, NULL));
    CHECK_REFUSED(select(0, NULL, NULL, NULL, &interval));
    CHECK_REFUSED(epoll_pwait2(epoll_create1(0), &event, 1, &negative, NULL));
    CHECK(clock_nanosleep(CLOCK_MONOTONIC, 0, &negative, NULL) == EINVAL);
    CHECK(clock_nanosleep(CLOCK_MONOTONIC_RAW, 0, &(struct timespec){1, 0}, NULL) == EOPNOTSUPP);
    pthread_mutex_lock(&s_mutex);
    CHECK(pthread_cond_timedwait(&s_condition, &s_mutex, &wrong) == EINVAL);
    CHECK(pthread_mutex_timedlock(&s_mutex, &wrong) == EINVAL);
    CHECK(pthread_cond_clockwait(&s_condition, &s_mutex, CLOCK_PROCESS_CPUTIME_ID, &wrong) ==
          EINVAL);
    sem_init(&s_semaphore, 0, 0);
    CHECK_REFUSED(sem_timedwait(&s_semaphore, &wrong));
    CHECK(now_ms() == 0);
}

/* Dates long before 1970 and durations beyond all years. */
static void extreme_timeouts_end_or_last(void) {
    const struct timespec early = {-5000000000000, 0};
    pthread_mutex_lock(&s_mutex);
    CHECK(pthread_mutex_timedlock(&s_mutex, &early) == ETIMEDOUT);
    CHECK(pthread_cond_timedwait(&s_condition, &s_mutex, &early) == ETIMEDOUT);
    struct timeval interval = {1, 1500000};
    CHECK(select(0, NULL, NULL, NULL, &interval) == 0 && now_ms() == 2500);
    int pipes[2];
    CHECK(pipe(pipes) == 0 && write(pipes[1], "x", 1) == 1);
    struct pollfd file = {.fd = pipes[0], .events = POLLIN, .revents = 0};
    const struct timespec ages = {0x7fffffffffffffff, 999999999};
    CHECK(ppoll(&file, 1, &ages, NULL) == 1 && now_ms() == 2500);
}

/* --- locks and threads --- */

static void *sleep_five(void *unused) {
    sleep(5);
    return unused;
}

static void timed_locks_and_joins(void) {
    struct timespec limit = date_at(1000);
    pthread_rwlock_wrlock(&s_lock);
    CHECK(pthread_rwlock_timedrdlock(&s_lock, &limit) == ETIMEDOUT && now_ms() == 1000);
    limit = date_at(2000);
    CHECK(pthread_rwlock_timedwrlock(&s_lock, &limit) == ETIMEDOUT && now_ms() == 2000);
    clock_gettime(CLOCK_MONOTONIC, &limit);
    ++limit.tv_sec;
    CHECK(pthread_rwlock_clockrdlock(&s_lock, CLOCK_MONOTONIC, &limit) == ETIMEDOUT);
    CHECK(now_ms() == 3000);
    void *result = NULL;
    pthread_t thread = start(sleep_five, &s_lock); /* until 8000 */
    limit = date_at(4000);
    CHECK(pthread_timedjoin_np(thread, &result, &limit) == ETIMEDOUT && now_ms() == 4000);
    limit = date_at(9000);
    CHECK(pthread_timedjoin_np(thread, &result, &limit) == 0 && result == &s_lock);
    CHECK(now_ms() == 8000);
}

static void *hold_most_of_the_time(void *unused) {
    for (int round = 0; round < 100; ++round) {
        pthread_mutex_lock(&s_mutex);
        usleep(10000);
        pthread_mutex_unlock(&s_mutex);
    }
    return unused;
}

/* The other thread locks again at once, but not before those that wait. */
static void a_lock_goes_to_who_waits(void) {
    pthread_t other = start(hold_most_of_the_time, NULL);
    usleep(1000);
    CHECK(pthread_mutex_lock(&s_mutex) == 0 && now_ms() == 10);
    CHECK(pthread_mutex_unlock(&s_mutex) == 0);
    pthread_join(other, NULL);
    CHECK(now_ms() == 1000);
}

static void a_checked_mutex_tells_its_owner(void) {
    pthread_mutexattr_t kind;
    pthread_mutexattr_init(&kind);
    pthread_mutexattr_settype(&kind, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_t mutex;
    pthread_mutex_init(&mutex, &kind);
    CHECK(pthread_mutex_lock(&mutex) == 0);
    CHECK(pthread_mutex_lock(&mutex) == EDEADLK);
}

static void *defer_cancellation(void *left) {
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, NULL);
    *(unsigned *)left = sleep(10);
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, NULL);
    sleep(100);
    return left;
}

static void cancellation_may_be_put_off(void) {
    unsigned left = 99;
    void *result = NULL;
    pthread_t thread = start(defer_cancellation, &left);
    sleep(1);
    CHECK(pthread_cancel(thread) == 0 && pthread_join(thread, &result) == 0);
    CHECK(left == 0 && result == PTHREAD_CANCELED && now_ms() == 10000);
}

/* --- signals --- */

static volatile sig_atomic_t s_signals;

static void count_signal(int number) {
    s_signals += number == SIGUSR1;
}

static void handle(int flags) {
    struct sigaction action = {.sa_handler = count_signal, .sa_flags = flags};
    CHECK(sigaction(SIGUSR1, &action, NULL) == 0);
}

static int s_pipe[2];

static void *signal_then_write(void *thread) {
    sleep(1);
    pthread_kill(*(pthread_t *)thread, SIGUSR1);
    sleep(1);
    CHECK(write(s_pipe[1], "x", 1) == 1);
    return NULL;
}

static void reading_goes_on_after_handlers_that_ask_for_it(void) {
    char letter = 0;
    pthread_t self = pthread_self();
    CHECK(pipe(s_pipe) == 0);
    handle(SA_RESTART);
    pthread_t other = start(signal_then_write, &self);
    CHECK(read(s_pipe[0], &letter, 1) == 1 && letter == 'x' && now_ms() == 2000);
    CHECK(s_signals == 1);
    pthread_join(other, NULL);
    handle(0);
    other = start(signal_then_write, &self);
    CHECK(read(s_pipe[0], &letter, 1) == -1 && errno == EINTR && now_ms() == 3000);
    pthread_join(other, NULL);
}

static void *send_signal(void *thread) {
    sleep(1);
    pthread_kill(*(pthread_t *)thread, SIGUSR1);
    return NULL;
}

static void signals_can_be_fetched(void) {
    sigset_t set;
    siginfo_t info;
    const struct timespec duration = {2, 0};
    pthread_t self = pthread_self();
    sigemptyset(&set);
    sigaddset(&set, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &set, NULL);
    CHECK(sigtimedwait(&set, &info, &duration) == -1 && errno == EAGAIN && now_ms() == 2000);
    pthread_t other = start(send_signal, &self);
    CHECK(sigtimedwait(&set, &info, &duration) == SIGUSR1 && info.si_signo == SIGUSR1);
    CHECK(now_ms() == 3000);
    pthread_join(other, NULL);
    other = start(send_signal, &self);
    CHECK(sigwaitinfo(&set, NULL) == SIGUSR1 && now_ms() == 4000);
    pthread_join(other, NULL);
}

/* What was held back until the wait is not lost: that is what the mask is for. */
static void masks_of_waits_let_pending_signals_through(void) {
    sigset_t all;
    sigset_t none;
    struct epoll_event event;
    const struct timespec duration = {5, 0};
    sigfillset(&all);
    sigemptyset(&none);
    handle(0);
    pthread_sigmask(SIG_SETMASK, &all, NULL);
    raise(SIGUSR1);
    CHECK(s_signals == 0 && ppoll(NULL, 0, &duration, &none) == -1 && errno == EINTR);
    raise(SIGUSR1);
    CHECK(s_signals == 1 && pselect(0, NULL, NULL, NULL, &duration, &none) == -1 && errno == EINTR);
    raise(SIGUSR1);
    CHECK(epoll_pwait(epoll_create1(0), &event, 1, 5000, &none) == -1 && errno == EINTR);
    raise(SIGUSR1);
    CHECK(s_signals == 3 && sigsuspend(&none) == -1 && errno == EINTR && s_signals == 4);
    CHECK(now_ms() == 0 && ppoll(NULL, 0, &duration, &none) == 0 && now_ms() == 5000);
}

/* --- descriptors and queues --- */

static void *write_on_three_occasions(void *unused) {
    for (int round = 0; round < 3; ++round) {
        sleep(1);
        CHECK(write(s_pipe[1], "x", 1) == 1);
    }
    return unused;
}

static void every_epoll_waits(void) {
    char letter = 0;
    struct epoll_event event = {.events = EPOLLIN};
    const struct timespec duration = {3, 0};
    int set = epoll_create1(0);
    CHECK(pipe(s_pipe) == 0 && epoll_ctl(set, EPOLL_CTL_ADD, s_pipe[0], &event) == 0);
    CHECK(epoll_pwait(set, &event, 1, 500, NULL) == 0 && now_ms() == 500);
    CHECK(epoll_pwait2(set, &event, 1, &(struct timespec){0, 500000000}, NULL) == 0);
    CHECK(now_ms() == 1000);
    pthread_t other = start(write_on_three_occasions, NULL);
    CHECK(epoll_pwait(set, &event, 1, -1, NULL) == 1 && now_ms() == 2000);
    CHECK(read(s_pipe[0], &letter, 1) == 1);
    CHECK(epoll_pwait2(set, &event, 1, &duration, NULL) == 1 && now_ms() == 3000);
    CHECK(read(s_pipe[0], &letter, 1) == 1);
    CHECK(epoll_pwait2(set, &event, 1, NULL, NULL) == 1 && now_ms() == 4000);
    pthread_join(other, NULL);
}

static int s_sockets[2];

static void *send_three_times(void *unused) {
    for (int round = 0; round < 3; ++round) {
        sleep(1);
        CHECK(send(s_sockets[1], "x", 1, 0) == 1);
    }
    return unused;
}

static void receiving_from_another_thread(void) {
    char letter = 0;
    CHECK(socketpair(AF_UNIX, SOCK_STREAM, 0, s_sockets) == 0);
    pthread_t other = start(send_three_times, NULL);
    struct iovec room = {.iov_base = &letter, .iov_len = 1};
    struct msghdr message = {.msg_iov = &room, .msg_iovlen = 1};
    CHECK(recv(s_sockets[0], &letter, 1, MSG_DONTWAIT) == -1 && errno == EAGAIN && now_ms() == 0);
    CHECK(recv(s_sockets[0], &letter, 1, 0) == 1 && now_ms() == 1000);
    CHECK(recvfrom(s_sockets[0], &letter, 1, 0, NULL, NULL) == 1 && now_ms() == 2000);
    CHECK(recvmsg(s_sockets[0], &message, 0) == 1 && now_ms() == 3000);
    pthread_join(other, NULL);
}

static void *serve(void *listener) {
    accept(*(int *)listener, NULL, NULL);
    return NULL;
}

static void *poll_for_callers(void *listener) {
    struct pollfd file = {.fd = *(int *)listener, .events = POLLIN, .revents = 0};
    poll(&file, 1, -1);
    return NULL;
}

/* Nobody calls: the clock goes on all the same. */
static void servers_do_not_hold_the_clock(void) {
    int listener = socket(AF_INET, SOCK_STREAM, 0);
    struct sockaddr_in own = {.sin_family = AF_INET, .sin_addr.s_addr = htonl(INADDR_LOOPBACK)};
    CHECK(bind(listener, (struct sockaddr *)&own, sizeof own) == 0 && listen(listener, 1) == 0);
    start(serve, &listener);
    start(poll_for_callers, &listener);
    sleep(1000);
    CHECK(now_ms() == 1000000);
}

static void *remove_queue(void *queue) {
    sleep(1);
    CHECK(msgctl(*(int *)queue, IPC_RMID, NULL) == 0);
    return NULL;
}

static void a_removed_queue_is_told_to_who_waits(void) {
    struct {
        long type;
        char text[8];
    } message;
    int queue = msgget(IPC_PRIVATE, 0600);
    pthread_t other = start(remove_queue, &queue);
    CHECK(msgrcv(queue, &message, sizeof message.text, 0, 0) == -1 && errno == EIDRM);
    CHECK(now_ms() == 1000);
    CHECK(msgrcv(queue, &message, sizeof message.text, 0, 0) == -1 && errno == EINVAL);
    pthread_join(other, NULL);
}

static void *write_fifo(void *name) {
    sleep(1);
    int fd = open(name, O_WRONLY);
    CHECK(fd != -1 && write(fd, "x", 1) == 1);
    return NULL;
}

/* The same name in the current folder is a plain file. */
static void pipes_in_other_folders_are_waited_for(void) {
    char folder[] = "/tmp/wait-probe.XXXXXX";
    char name[64];
    char letter = 0;
    CHECK(mkdtemp(folder) != NULL);
    snprintf(name, sizeof name, "%s/pipe", folder);
    int at = open(folder, O_RDONLY | O_DIRECTORY);
    CHECK(mkfifo(name, 0600) == 0);
    pthread_t other = start(write_fifo, name);
    int fd = openat(at, "pipe", O_RDONLY);
    CHECK(unlink(name) == 0 && rmdir(folder) == 0);
    CHECK(fd != -1 && now_ms() == 1000 && read(fd, &letter, 1) == 1 && letter == 'x');
    pthread_join(other, NULL);
}

/* --- ends --- */

static void *tick(void *unused) {
    for (;;) {
        usleep(10000);
    }
    return unused;
}

static volatile sig_atomic_t s_asked_to_end;

static void note_end(int number) {
    s_asked_to_end = number;
}

/* Although the handler is one with SA_RESTART. */
static void pauses_until_asked_to_end(void) {
    signal(SIGTERM, note_end);
    start(tick, NULL);
    while (s_asked_to_end == 0) {
        pause();
    }
    puts("asked");
}

static void waits_for_the_signal_to_end(void) {
    sigset_t set;
    int number = 0;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &set, NULL);
    CHECK(sigwait(&set, &number) == 0 && number == SIGTERM);
    puts("asked");
}

static const struct probe_check k_checks[] = {
    {"constructors_live_by_the_clock", constructors_live_by_the_clock},
    {"wrong_timeouts_are_refused", wrong_timeouts_are_refused},
    {"extreme_timeouts_end_or_last", extreme_timeouts_end_or_last},
    {"timed_locks_and_joins", timed_locks_and_joins},
    {"a_lock_goes_to_who_waits", a_lock_goes_to_who_waits},
    {"a_checked_mutex_tells_its_owner", a_checked_mutex_tells_its_owner},
    {"cancellation_may_be_put_off", cancellation_may_be_put_off},
    {"reading_goes_on_after_handlers_that_ask_for_it",
     reading_goes_on_after_handlers_that_ask_for_it},
    {"signals_can_be_fetched", signals_can_be_fetched},
    {"masks_of_waits_let_pending_signals_through", masks_of_waits_let_pending_signals_through},
    {"every_epoll_waits", every_epoll_waits},
    {"receiving_from_another_thread", receiving_from_another_thread},
    {"servers_do_not_hold_the_clock", servers_do_not_hold_the_clock},
    {"a_removed_queue_is_told_to_who_waits", a_removed_queue_is_told_to_who_waits},
    {"pipes_in_other_folders_are_waited_for", pipes_in_other_folders_are_waited_for},
    {"pauses_until_asked_to_end", pauses_until_asked_to_end},
    {"waits_for_the_signal_to_end", waits_for_the_signal_to_end},
};

int main(int argc, char **argv) {
    return run_probe(k_checks, sizeof k_checks / sizeof *k_checks, argc, argv);
}
