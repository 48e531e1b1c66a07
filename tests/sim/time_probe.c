/* SPDX-License-Identifier: MIT
 * Runs in the simulator's virtual time and looks at it through ordinary calls. `time-probe NAME`
 * carries out one check; a check that does not hold is told on standard error and ends with status
 * 1. Every expectation of a moment is in milliseconds since the run began, and exact. */
#include "tests/sim/moments.h"
#include "tests/sim/probe.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <signal.h>
#include <stdatomic.h>
#include <sys/epoll.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static void sleep_ms(long ms) {
    const struct timespec duration = {ms / 1000, ms % 1000 * 1000000};
    CHECK(nanosleep(&duration, NULL) == 0);
}

/* --- the clocks and every way to sleep --- */

static void clocks(void) {
    struct timespec date;
    struct timespec before;
    struct timespec after;
    CHECK(time(NULL) == k_start_s);
    CHECK(clock_gettime(CLOCK_MONOTONIC, &before) == 0);
    CHECK(sleep(5) == 0);
    CHECK(clock_gettime(CLOCK_REALTIME, &date) == 0);
    CHECK(date.tv_sec == k_start_s + 5 && date.tv_nsec == 0);
    CHECK(clock_gettime(CLOCK_MONOTONIC, &after) == 0);
    CHECK(after.tv_sec - before.tv_sec == 5 && after.tv_nsec == before.tv_nsec);
    CHECK(timespec_get(&date, TIME_UTC) == TIME_UTC && date.tv_sec == k_start_s + 5);
    time_t now = 0;
    CHECK(time(&now) == k_start_s + 5 && now == k_start_s + 5);
    CHECK(localtime(&now)->tm_hour == 0 && localtime(&now)->tm_sec == 5);
    CHECK(clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &date) == 0 && date.tv_sec < 5);
}

static void sleeps(void) {
    CHECK(usleep(1500) == 0);
    CHECK(usleep(500) == 0 && now_ms() == 2);
    sleep_ms(40);
    CHECK(now_ms() == 42);
    const struct timespec third = {0, 58000000};
    CHECK(clock_nanosleep(CLOCK_MONOTONIC, 0, &third, NULL) == 0 && now_ms() == 100);
    const struct timespec date = date_at(250);
    CHECK(clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, &date, NULL) == 0 && now_ms() == 250);
    CHECK(clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, &date, NULL) == 0 && now_ms() == 250);
    struct timespec up;
    clock_gettime(CLOCK_MONOTONIC, &up);
    up.tv_sec += 1;
    CHECK(clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &up, NULL) == 0 && now_ms() == 1250);
    const struct timespec wrong = {0, 1000000000};
    CHECK(nanosleep(&wrong, NULL) == -1 && errno == EINVAL);
    CHECK(sleep(3600) == 0 && now_ms() == 3601250);
}

static void timed_waits(void) {
    int pipes[2];
    CHECK(pipe(pipes) == 0);
    struct pollfd file = {.fd = pipes[0], .events = POLLIN, .revents = 0};
    CHECK(poll(&file, 1, 20) == 0 && now_ms() == 20);
    CHECK(poll(NULL, 0, 80) == 0 && now_ms() == 100);
    const struct timespec duration = {1, 0};
    CHECK(ppoll(&file, 1, &duration, NULL) == 0 && now_ms() == 1100);
    fd_set set;
    FD_ZERO(&set);
    FD_SET(pipes[0], &set);
    struct timeval limit = {0, 400000};
    CHECK(select(pipes[0] + 1, &set, NULL, NULL, &limit) == 0 && now_ms() == 1500);
    CHECK(!FD_ISSET(pipes[0], &set) && limit.tv_sec == 0 && limit.tv_usec == 0);
    CHECK(pselect(0, NULL, NULL, NULL, &duration, NULL) == 0 && now_ms() == 2500);
    int events = epoll_create1(0);
    struct epoll_event event = {.events = EPOLLIN};
    CHECK(epoll_ctl(events, EPOLL_CTL_ADD, pipes[0], &event) == 0);
    CHECK(epoll_wait(events, &event, 1, 500) == 0 && now_ms() == 3000);
    CHECK(write(pipes[1], "x", 1) == 1);
    CHECK(epoll_wait(events, &event, 1, 500) == 1 && poll(&file, 1, -1) == 1 && now_ms() == 3000);
    FD_SET(pipes[0], &set);
    limit = (struct timeval){9, 0};
    CHECK(select(pipes[0] + 1, &set, NULL, NULL, &limit) == 1 && FD_ISSET(pipes[0], &set));
    CHECK(limit.tv_sec == 9 && now_ms() == 3000);
}

static void timed_locks(void) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
    struct timespec limit = date_at(70);
    pthread_mutex_lock(&mutex);
    CHECK(pthread_cond_timedwait(&condition, &mutex, &limit) == ETIMEDOUT && now_ms() == 70);
    CHECK(pthread_cond_timedwait(&condition, &mutex, &limit) == ETIMEDOUT && now_ms() == 70);
    limit = date_at(90);
    CHECK(pthread_mutex_timedlock(&mutex, &limit) == ETIMEDOUT && now_ms() == 90);
    CHECK(pthread_mutex_unlock(&mutex) == 0 && pthread_mutex_timedlock(&mutex, &limit) == 0);
    sem_t semaphore;
    sem_init(&semaphore, 0, 1);
    limit = date_at(200);
    CHECK(sem_wait(&semaphore) == 0 && now_ms() == 90);
    CHECK(sem_timedwait(&semaphore, &limit) == -1 && errno == ETIMEDOUT && now_ms() == 200);
    clock_gettime(CLOCK_MONOTONIC, &limit);
    ++limit.tv_sec;
    CHECK(sem_clockwait(&semaphore, CLOCK_MONOTONIC, &limit) == -1 && now_ms() == 1200);
    ++limit.tv_sec;
    CHECK(pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, &limit) == ETIMEDOUT);
    CHECK(now_ms() == 2200);
    ++limit.tv_sec;
    CHECK(pthread_cond_clockwait(&condition, &mutex, CLOCK_MONOTONIC, &limit) == ETIMEDOUT);
    CHECK(now_ms() == 3200);
}

/* --- threads --- */

static char s_log[256];

static void note(const char *who) {
    size_t length = strlen(s_log);
    snprintf(s_log + length, sizeof s_log - length, "%s%lld ", who, now_ms());
}

static void *every_ten(void *unused) {
    for (int round = 0; round < 5; ++round) {
        usleep(10000);
        note("a");
    }
    return unused;
}

static void *every_twenty_five(void *unused) {
    for (int round = 0; round < 2; ++round) {
        sleep_ms(25);
        note("b");
    }
    return unused;
}

/* At 50 both are due; the second thread has waited since 25, the first since 40. */
static void two_threads(void) {
    pthread_t one = start(every_ten, NULL);
    pthread_t other = start(every_twenty_five, NULL);
    CHECK(pthread_join(one, NULL) == 0 && pthread_join(other, NULL) == 0);
    CHECK(strcmp(s_log, "a10 a20 b25 a30 a40 b50 a50 ") == 0);
}

static int s_pipe[2];

static void *write_later(void *unused) {
    sleep(1);
    CHECK(write(s_pipe[1], "1", 1) == 1);
    sleep(1);
    CHECK(write(s_pipe[1], "2", 1) == 1);
    sleep(1);
    close(s_pipe[1]);
    return unused;
}

static void reading_waits_for_another_thread(void) {
    char letter = 0;
    CHECK(pipe(s_pipe) == 0);
    pthread_t writer = start(write_later, NULL);
    CHECK(read(s_pipe[0], &letter, 1) == 1 && letter == '1' && now_ms() == 1000);
    struct pollfd file = {.fd = s_pipe[0], .events = POLLIN, .revents = 0};
    CHECK(poll(&file, 1, -1) == 1 && now_ms() == 2000);
    CHECK(read(s_pipe[0], &letter, 1) == 1 && letter == '2');
    CHECK(read(s_pipe[0], &letter, 1) == 0 && now_ms() == 3000);
    pthread_join(writer, NULL);
}

static const char k_fifo[] = "/tmp/event"; /* the run's own */

static void *write_fifo(void *unused) {
    FILE *pipe = fopen(k_fifo, "w");
    CHECK(pipe != NULL && now_ms() == 300); /* where the reader came */
    CHECK(fputs("one\n", pipe) >= 0 && fclose(pipe) == 0);
    sleep_ms(200);
    int fd = open(k_fifo, O_WRONLY);
    CHECK(fd != -1 && now_ms() == 500);
    CHECK(write(fd, "two\n", 4) == 4 && close(fd) == 0);
    return unused;
}

static void named_pipes_wait_for_their_other_end(void) {
    char line[16] = "";
    CHECK(mkfifo(k_fifo, 0600) == 0);
    pthread_t writer = start(write_fifo, NULL);
    sleep_ms(300);
    FILE *pipe = fopen(k_fifo, "r");
    CHECK(pipe != NULL && fgets(line, sizeof line, pipe) != NULL && strcmp(line, "one\n") == 0);
    CHECK(fgets(line, sizeof line, pipe) == NULL && fclose(pipe) == 0);
    int fd = open(k_fifo, O_RDONLY);
    CHECK(fd != -1 && now_ms() == 500 && (fcntl(fd, F_GETFL) & O_NONBLOCK) == 0);
    CHECK(read(fd, line, sizeof line) == 4 && memcmp(line, "two\n", 4) == 0);
    CHECK(read(fd, line, sizeof line) == 0);
    pthread_join(writer, NULL);
}

struct message {
    long type;
    char text[8];
};

static void *send_later(void *queue) {
    const struct message message = {.type = 3, .text = "hello"};
    sleep_ms(120);
    const struct message other = {.type = 1, .text = "other"};
    CHECK(msgsnd(*(int *)queue, &other, sizeof other.text, 0) == 0);
    sleep_ms(80);
    CHECK(msgsnd(*(int *)queue, &message, sizeof message.text, 0) == 0);
    return NULL;
}

static void receiving_waits_for_a_message(void) {
    struct message message;
    int queue = msgget(IPC_PRIVATE, 0600);
    pthread_t sender = start(send_later, &queue);
    CHECK(msgrcv(queue, &message, sizeof message.text, 3, 0) == sizeof message.text);
    CHECK(strcmp(message.text, "hello") == 0 && now_ms() == 200);
    CHECK(msgrcv(queue, &message, sizeof message.text, 3, IPC_NOWAIT) == -1 && errno == ENOMSG);
    pthread_join(sender, NULL);
    CHECK(msgctl(queue, IPC_RMID, NULL) == 0);
    CHECK(msgrcv(queue, &message, sizeof message.text, 3, 0) == -1 && errno == EINVAL);
}

static pthread_mutex_t s_mutex = PTHREAD_MUTEX_INITIALIZER;
static pthread_rwlock_t s_lock = PTHREAD_RWLOCK_INITIALIZER;
static pthread_cond_t s_condition = PTHREAD_COND_INITIALIZER;
static sem_t s_semaphore;
static int s_round;

static void *hold_locks(void *unused) {
    pthread_mutex_lock(&s_mutex);
    pthread_rwlock_wrlock(&s_lock);
    sleep_ms(500);
    pthread_mutex_unlock(&s_mutex);
    sleep_ms(500);
    pthread_rwlock_unlock(&s_lock);
    sleep_ms(500);
    sem_post(&s_semaphore);
    return unused;
}

static void locks_are_waited_for(void) {
    sem_init(&s_semaphore, 0, 0);
    pthread_t holder = start(hold_locks, NULL);
    sleep_ms(1);
    CHECK(pthread_mutex_lock(&s_mutex) == 0 && now_ms() == 500);
    CHECK(pthread_rwlock_rdlock(&s_lock) == 0 && now_ms() == 1000);
    CHECK(sem_wait(&s_semaphore) == 0 && now_ms() == 1500);
    pthread_join(holder, NULL);
}

static void *answer(void *unused) {
    pthread_mutex_lock(&s_mutex);
    for (int round = 1; round <= 3; ++round) {
        while (s_round < 2 * round - 1) {
            pthread_cond_wait(&s_condition, &s_mutex);
        }
        usleep(10000);
        ++s_round;
        pthread_cond_signal(&s_condition);
    }
    pthread_mutex_unlock(&s_mutex);
    return unused;
}

static void conditions_pass_the_turn(void) {
    pthread_t other = start(answer, NULL);
    pthread_mutex_lock(&s_mutex);
    for (int round = 1; round <= 3; ++round) {
        ++s_round;
        pthread_cond_broadcast(&s_condition);
        while (s_round < 2 * round) {
            pthread_cond_wait(&s_condition, &s_mutex);
        }
        CHECK(now_ms() == 10 * round);
    }
    pthread_mutex_unlock(&s_mutex);
    pthread_join(other, NULL);
}

static atomic_int s_flag;

static void *raise_flag(void *unused) {
    sleep(2);
    s_flag = 1;
    return unused;
}

/* Busy waits cost a millisecond now and then, so their ends are not exact. */
static void busy_waits_end(void) {
    while (now_ms() < 300) {
    }
    CHECK(now_ms() <= 302);
    pthread_t other = start(raise_flag, NULL);
    while (s_flag == 0) {
        sched_yield();
    }
    CHECK(now_ms() >= 2300 && now_ms() <= 2304);
    pthread_join(other, NULL);
    int pipes[2];
    CHECK(pipe(pipes) == 0);
    struct pollfd file = {.fd = pipes[0], .events = POLLIN, .revents = 0};
    int rounds = 0;
    for (long long begun = now_ms(); now_ms() < begun + 5; ++rounds) {
        CHECK(poll(&file, 1, 0) == 0);
    }
    CHECK(rounds > 100);
}

static void *sleep_for_ever(void *unused) {
    for (;;) {
        sleep(1000);
    }
    return unused;
}

static void *receive_for_ever(void *queue) {
    struct message message;
    msgrcv(*(int *)queue, &message, sizeof message.text, 0, 0);
    return NULL;
}

static void cancelled_threads_end(void) {
    int queue = msgget(IPC_PRIVATE, 0600);
    pthread_t sleeper = start(sleep_for_ever, NULL);
    pthread_t receiver = start(receive_for_ever, &queue);
    void *result = NULL;
    sleep(10);
    CHECK(pthread_cancel(sleeper) == 0 && pthread_cancel(receiver) == 0);
    CHECK(pthread_join(sleeper, &result) == 0 && result == PTHREAD_CANCELED);
    CHECK(pthread_join(receiver, &result) == 0 && result == PTHREAD_CANCELED);
    CHECK(now_ms() == 10000);
    msgctl(queue, IPC_RMID, NULL);
}

static void *end_at_once(void *argument) {
    return argument;
}

static void many_threads_come_and_go(void) {
    for (int round = 0; round < 300; ++round) {
        void *result = NULL;
        pthread_t thread = start(end_at_once, &s_round);
        CHECK(pthread_join(thread, &result) == 0 && result == &s_round);
    }
    pthread_t all[200];
    for (int at = 0; at < 200; ++at) {
        all[at] = start(every_twenty_five, NULL);
    }
    for (int at = 0; at < 200; ++at) {
        pthread_join(all[at], NULL);
    }
    CHECK(now_ms() == 50);
}

static void *end_process(void *unused) {
    sleep(7);
    CHECK(now_ms() == 7000);
    exit(0);
    return unused;
}

static void main_thread_may_leave(void) {
    start(end_process, NULL);
    pthread_exit(NULL);
}

/* --- signals, children --- */

static volatile sig_atomic_t s_signals;

static void count_signal(int number) {
    s_signals += number == SIGUSR1;
}

static void *send_signal(void *thread) {
    sleep(1);
    pthread_kill(*(pthread_t *)thread, SIGUSR1);
    sleep(1);
    pthread_kill(*(pthread_t *)thread, SIGUSR1);
    return NULL;
}

static void signals_end_waits(void) {
    struct sigaction action = {.sa_handler = count_signal};
    sigaction(SIGUSR1, &action, NULL);
    pthread_t self = pthread_self();
    pthread_t other = start(send_signal, &self);
    CHECK(sleep(100) == 99 && s_signals == 1 && now_ms() == 1000);
    CHECK(pause() == -1 && errno == EINTR && s_signals == 2 && now_ms() == 2000);
    pthread_join(other, NULL);
}

static void children_live_in_real_time(void) {
    sleep(100000000); /* three years: the child can tell */
    int status = -1;
    pid_t child = fork();
    if (child == 0) {
        struct timeval begun;
        struct timeval ended;
        gettimeofday(&begun, NULL);
        usleep(2000);
        gettimeofday(&ended, NULL);
        long passed_us = (ended.tv_sec - begun.tv_sec) * 1000000 + ended.tv_usec - begun.tv_usec;
        _exit(begun.tv_sec != k_start_s + 100000000 && passed_us >= 2000 ? 0 : 1);
    }
    CHECK(waitpid(child, &status, 0) == child && status == 0);
    CHECK(system("exit 4") == 4 << 8);
    CHECK(now_ms() == 100000000000);
}

/* --- hosts that are no good --- */

static void spin(void) {
    for (;;) {
        atomic_load(&s_flag);
    }
}

static void hang(void) {
    char line[8];
    CHECK(pipe(s_pipe) == 0);
    fgets(line, sizeof line, fdopen(s_pipe[0], "r"));
}

static void killed(void) {
    start(sleep_for_ever, NULL);
    sleep(5);
    raise(SIGKILL);
}

static const struct probe_check k_checks[] = {
    {"clocks", clocks},
    {"sleeps", sleeps},
    {"timed_waits", timed_waits},
    {"timed_locks", timed_locks},
    {"two_threads", two_threads},
    {"reading_waits_for_another_thread", reading_waits_for_another_thread},
    {"named_pipes_wait_for_their_other_end", named_pipes_wait_for_their_other_end},
    {"receiving_waits_for_a_message", receiving_waits_for_a_message},
    {"locks_are_waited_for", locks_are_waited_for},
    {"conditions_pass_the_turn", conditions_pass_the_turn},
    {"busy_waits_end", busy_waits_end},
    {"cancelled_threads_end", cancelled_threads_end},
    {"many_threads_come_and_go", many_threads_come_and_go},
    {"main_thread_may_leave", main_thread_may_leave},
    {"signals_end_waits", signals_end_waits},
    {"children_live_in_real_time", children_live_in_real_time},
    {"spin", spin},
    {"hang", hang},
    {"killed", killed},
};

int main(int argc, char **argv) {
    return run_probe(k_checks, sizeof k_checks / sizeof *k_checks, argc, argv);
}
