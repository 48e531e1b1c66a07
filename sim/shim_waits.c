/* SPDX-License-Identifier: MIT
 * The calls that wait for descriptors and queues. Under the simulated clock each becomes a look
 * without waiting, repeated whenever something can have changed. The network is the exception: an
 * answer from another machine takes no simulated time, so these waits are real and the clock stands
 * meanwhile. */
#include "sim/shim_waits.h"

#include "sim/clock_share.h"
#include "sim/shim_clock.h"
#include "sim/shim_next.h"
#include "sim/shim_record.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stddef.h>
#include <sys/epoll.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

static const int64_t k_millisecond_ns = 1000000;

int __poll_chk(struct pollfd *files, nfds_t count, int timeout_ms, size_t room);
int __ppoll_chk(struct pollfd *files, nfds_t count, const struct timespec *timeout,
                const sigset_t *mask, size_t room);
ssize_t __read_chk(int fd, void *buffer, size_t bytes, size_t room);

static int64_t deadline_of(const struct timespec *timeout) {
    if (timeout == NULL || timeout->tv_sec > SIM_CLOCK_NEVER / SHIM_SECOND_NS - 1) {
        return SIM_CLOCK_NEVER;
    }
    return shim_clock_after(timeout->tv_sec * SHIM_SECOND_NS + timeout->tv_nsec);
}

/* True when it became ready; otherwise the time was up, or errno is EINTR and *interrupted set. */
static bool wait_for(struct shim_wait wait, bool *interrupted) {
    enum shim_wait_end end = shim_clock_wait(&wait);
    pthread_testcancel();
    *interrupted = end == SHIM_INTERRUPTED;
    if (*interrupted) {
        errno = EINTR;
    }
    return end == SHIM_READY;
}

/* --- poll --- */

static int poll_now(struct pollfd *files, nfds_t count, int timeout_ms) {
    static function_slot slot;
    __typeof__(&poll) next = (__typeof__(&poll))next_function(&slot, "poll", NULL);
    return next == NULL ? -1 : next(files, count, timeout_ms);
}

struct poll_wait {
    struct pollfd *files;
    nfds_t count;
    int result;
};

static bool poll_attempt(void *what) {
    struct poll_wait *wait = what;
    wait->result = poll_now(wait->files, wait->count, 0);
    return wait->result != 0;
}

static bool is_network(int fd) {
    int domain = AF_UNSPEC;
    socklen_t size = sizeof domain;
    int saved_errno = errno;
    bool known = getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0;
    errno = saved_errno;
    return known && (domain == AF_INET || domain == AF_INET6);
}

static bool any_network(const struct pollfd *files, nfds_t count) {
    for (nfds_t at = 0; at < count; ++at) {
        if (files[at].fd >= 0 && is_network(files[at].fd)) {
            return true;
        }
    }
    return false;
}

/* Waits in real time; a wait in vain then takes its simulated time as well. */
static int poll_network(struct poll_wait *wait, int64_t until_ns) {
    int64_t left_ms = (until_ns - shim_clock_now() + k_millisecond_ns - 1) / k_millisecond_ns;
    int limit_ms = until_ns == SIM_CLOCK_NEVER ? -1
                   : left_ms > INT32_MAX       ? INT32_MAX
                                               : (int)left_ms;
    int result = poll_now(wait->files, wait->count, limit_ms);
    bool interrupted = false;
    if (result == 0) {
        wait_for((struct shim_wait){.until_ns = until_ns}, &interrupted);
    }
    return result;
}

static int poll_until(struct pollfd *files, nfds_t count, int64_t until_ns) {
    struct poll_wait what = {.files = files, .count = count, .result = 0};
    if (poll_attempt(&what)) {
        return what.result;
    }
    if (until_ns <= shim_clock_now()) {
        shim_clock_glance();
        return 0;
    }
    if (any_network(files, count)) {
        return poll_network(&what, until_ns);
    }
    struct shim_wait wait = {
        .ready = poll_attempt, .attempt = poll_attempt, .what = &what, .until_ns = until_ns};
    bool interrupted = false;
    bool ready = wait_for(wait, &interrupted);
    return ready ? what.result : interrupted ? -1 : 0;
}

EXPORT int poll(struct pollfd *files, nfds_t count, int timeout_ms) {
    FIND_NEXT(poll, -1)
    if (!shim_clock_mine()) {
        return next(files, count, timeout_ms);
    }
    return poll_until(files, count,
                      timeout_ms < 0 ? SIM_CLOCK_NEVER
                                     : shim_clock_after(timeout_ms * k_millisecond_ns));
}

EXPORT int __poll_chk(struct pollfd *files, nfds_t count, int timeout_ms, size_t room) {
    FIND_NEXT(__poll_chk, -1)
    bool fits = room / sizeof *files >= count;
    return fits && shim_clock_mine() ? poll(files, count, timeout_ms)
                                     : next(files, count, timeout_ms, room);
}

static void set_mask(const sigset_t *mask, sigset_t *before) {
    if (mask != NULL) {
        pthread_sigmask(SIG_SETMASK, mask, before);
    }
}

EXPORT int ppoll(struct pollfd *files, nfds_t count, const struct timespec *timeout,
                 const sigset_t *mask) {
    FIND_NEXT(ppoll, -1)
    if (!shim_clock_mine()) {
        return next(files, count, timeout, mask);
    }
    sigset_t before;
    set_mask(mask, &before);
    int result = poll_until(files, count, deadline_of(timeout));
    set_mask(mask == NULL ? NULL : &before, NULL);
    return result;
}

EXPORT int __ppoll_chk(struct pollfd *files, nfds_t count, const struct timespec *timeout,
                       const sigset_t *mask, size_t room) {
    FIND_NEXT(__ppoll_chk, -1)
    bool fits = room / sizeof *files >= count;
    return fits && shim_clock_mine() ? ppoll(files, count, timeout, mask)
                                     : next(files, count, timeout, mask, room);
}

/* --- select --- */

struct select_wait {
    int limit;
    const fd_set *asked[3]; /* null = not asked */
    fd_set answer[3];
    int result;
};

static bool select_attempt(void *what) {
    static function_slot slot;
    __typeof__(&select) next = (__typeof__(&select))next_function(&slot, "select", NULL);
    struct select_wait *wait = what;
    fd_set *sets[3];
    for (int at = 0; at < 3; ++at) {
        sets[at] = wait->asked[at] == NULL ? NULL : &wait->answer[at];
        if (sets[at] != NULL) {
            *sets[at] = *wait->asked[at];
        }
    }
    struct timeval none = {0, 0};
    wait->result = next == NULL ? -1 : next(wait->limit, sets[0], sets[1], sets[2], &none);
    return wait->result != 0;
}

static bool select_network(const struct select_wait *wait) {
    for (int fd = 0; fd < wait->limit; ++fd) {
        for (int at = 0; at < 3; ++at) {
            if (wait->asked[at] != NULL && FD_ISSET(fd, wait->asked[at]) && is_network(fd)) {
                return true;
            }
        }
    }
    return false;
}

static int select_until(struct select_wait *what, fd_set *sets[3], int64_t until_ns) {
    for (int at = 0; at < 3; ++at) {
        what->asked[at] = sets[at];
    }
    bool interrupted = false;
    if (until_ns <= shim_clock_now() && !select_attempt(what)) {
        shim_clock_glance();
    }
    struct shim_wait wait = {
        .ready = select_attempt, .attempt = select_attempt, .what = what, .until_ns = until_ns};
    wait_for(wait, &interrupted);
    for (int at = 0; at < 3 && !interrupted && what->result >= 0; ++at) {
        if (sets[at] != NULL) {
            *sets[at] = what->answer[at];
        }
    }
    return interrupted ? -1 : what->result;
}

EXPORT int select(int limit, fd_set *restrict reading, fd_set *restrict writing,
                  fd_set *restrict special, struct timeval *restrict timeout) {
    FIND_NEXT(select, -1)
    struct select_wait what = {.limit = limit, .asked = {reading, writing, special}};
    if (!shim_clock_mine() || limit > FD_SETSIZE || select_network(&what)) {
        return next(limit, reading, writing, special, timeout);
    }
    fd_set *sets[3] = {reading, writing, special};
    struct timespec duration = {0, 0};
    if (timeout != NULL) {
        duration = (struct timespec){.tv_sec = timeout->tv_sec, .tv_nsec = timeout->tv_usec * 1000};
    }
    int64_t until_ns = deadline_of(timeout == NULL ? NULL : &duration);
    int result = select_until(&what, sets, until_ns);
    if (timeout != NULL) { /* as the kernel does: what is left */
        int64_t left_us = (until_ns - shim_clock_now()) / 1000;
        left_us = left_us < 0 ? 0 : left_us;
        *timeout = (struct timeval){.tv_sec = left_us / 1000000, .tv_usec = left_us % 1000000};
    }
    return result;
}

EXPORT int pselect(int limit, fd_set *restrict reading, fd_set *restrict writing,
                   fd_set *restrict special, const struct timespec *restrict timeout,
                   const sigset_t *restrict mask) {
    FIND_NEXT(pselect, -1)
    struct select_wait what = {.limit = limit, .asked = {reading, writing, special}};
    if (!shim_clock_mine() || limit > FD_SETSIZE || select_network(&what)) {
        return next(limit, reading, writing, special, timeout, mask);
    }
    fd_set *sets[3] = {reading, writing, special};
    sigset_t before;
    set_mask(mask, &before);
    int result = select_until(&what, sets, deadline_of(timeout));
    set_mask(mask == NULL ? NULL : &before, NULL);
    return result;
}

/* --- epoll --- */

EXPORT int epoll_wait(int set, struct epoll_event *events, int room, int timeout_ms) {
    FIND_NEXT(epoll_wait, -1)
    if (shim_clock_mine() &&
        timeout_ms != 0) { /* a set is readable when it has something to tell */
        struct pollfd file = {.fd = set, .events = POLLIN, .revents = 0};
        if (poll(&file, 1, timeout_ms) == -1) {
            return -1;
        }
        timeout_ms = 0;
    }
    return next(set, events, room, timeout_ms);
}

/* --- reading --- */

/* Waits until a read would not wait, unless it is told not to. */
static bool wait_readable(int fd) {
    struct pollfd file = {.fd = fd, .events = POLLIN, .revents = 0};
    if (!shim_clock_mine() || poll_now(&file, 1, 0) != 0 || is_network(fd)) {
        return true;
    }
    int flags = fcntl(fd, F_GETFL);
    if (flags == -1 || (flags & O_NONBLOCK) != 0) {
        shim_clock_glance();
        return true;
    }
    return poll_until(&file, 1, SIM_CLOCK_NEVER) != -1;
}

EXPORT ssize_t read(int fd, void *buffer, size_t bytes) {
    FIND_NEXT(read, -1)
    return wait_readable(fd) ? next(fd, buffer, bytes) : -1;
}

EXPORT ssize_t __read_chk(int fd, void *buffer, size_t bytes, size_t room) {
    FIND_NEXT(__read_chk, -1)
    return wait_readable(fd) ? next(fd, buffer, bytes, room) : -1;
}

/* --- message queues --- */

struct receive_wait {
    __typeof__(&msgrcv) next;
    int queue;
    void *message;
    size_t bytes;
    long type;
    int flags;
    ssize_t result;
};

/* Also true when the queue is gone: the attempt tells. */
static bool queue_holds_something(void *what) {
    const struct receive_wait *wait = what;
    struct msqid_ds state;
    return msgctl(wait->queue, IPC_STAT, &state) == -1 || state.msg_qnum > 0;
}

static bool receive_attempt(void *what) {
    struct receive_wait *wait = what;
    wait->result =
        wait->next(wait->queue, wait->message, wait->bytes, wait->type, wait->flags | IPC_NOWAIT);
    return wait->result != -1 || errno != ENOMSG;
}

static ssize_t received(int queue, const void *message, ssize_t result) {
    if (result >= 0) {
        shim_record(queue, message, (size_t)result);
    }
    return result;
}

EXPORT ssize_t msgrcv(int queue, void *message, size_t bytes, long type, int flags) {
    FIND_NEXT(msgrcv, -1)
    if (!shim_clock_mine() || (flags & IPC_NOWAIT) != 0) {
        shim_clock_glance();
        return received(queue, message, next(queue, message, bytes, type, flags));
    }
    struct receive_wait what = {next, queue, message, bytes, type, flags, -1};
    struct shim_wait wait = {.ready = queue_holds_something,
                             .attempt = receive_attempt,
                             .what = &what,
                             .until_ns = SIM_CLOCK_NEVER};
    bool interrupted = false;
    return received(queue, message, wait_for(wait, &interrupted) ? what.result : -1);
}

struct send_wait {
    __typeof__(&msgsnd) next;
    int queue;
    const void *message;
    size_t bytes;
    int flags;
    int result;
};

static bool send_attempt(void *what) {
    struct send_wait *wait = what;
    wait->result = wait->next(wait->queue, wait->message, wait->bytes, wait->flags | IPC_NOWAIT);
    return wait->result != -1 || errno != EAGAIN;
}

EXPORT int msgsnd(int queue, const void *message, size_t bytes, int flags) {
    FIND_NEXT(msgsnd, -1)
    if (!shim_clock_mine() || (flags & IPC_NOWAIT) != 0) {
        return next(queue, message, bytes, flags);
    }
    struct send_wait what = {next, queue, message, bytes, flags, -1};
    struct shim_wait wait = {.attempt = send_attempt, .what = &what, .until_ns = SIM_CLOCK_NEVER};
    bool interrupted = false;
    return wait_for(wait, &interrupted) ? what.result : -1;
}

/* --- signals --- */

EXPORT int pause(void) {
    FIND_NEXT(pause, -1)
    if (!shim_clock_mine()) {
        return next();
    }
    bool interrupted = false;
    wait_for((struct shim_wait){.until_ns = SIM_CLOCK_NEVER}, &interrupted);
    return -1;
}

struct signal_wait {
    const sigset_t *set;
    siginfo_t info;
    int number;
};

static bool signal_attempt(void *what) {
    struct signal_wait *wait = what;
    const struct timespec none = {0, 0};
    wait->number = sigtimedwait(wait->set, &wait->info, &none);
    return wait->number != -1;
}

EXPORT int sigwait(const sigset_t *restrict set, int *restrict number) {
    FIND_NEXT(sigwait, ENOSYS)
    if (!shim_clock_mine()) {
        return next(set, number);
    }
    struct signal_wait what = {.set = set, .number = -1};
    struct shim_wait wait = {.attempt = signal_attempt, .what = &what, .until_ns = SIM_CLOCK_NEVER};
    bool interrupted = false;
    while (!wait_for(wait, &interrupted)) {
    }
    *number = what.number;
    return 0;
}

/* --- named pipes --- */

struct open_wait {
    const char *path;
    int flags;
    int fd;
};

/* A writer can be opened without waiting only when there is a reader. */
static bool open_attempt(void *what) {
    struct open_wait *wait = what;
    wait->fd = openat(AT_FDCWD, wait->path, wait->flags | O_NONBLOCK, 0);
    return wait->fd != -1 || errno != ENXIO;
}

static bool waits_for_other_end(const char *path, int flags) {
    struct stat file;
    if (path == NULL || !shim_clock_mine() || (flags & (O_NONBLOCK | O_PATH)) != 0 ||
        (flags & O_ACCMODE) == O_RDWR) {
        return false;
    }
    int saved_errno = errno;
    bool pipe = fstatat(AT_FDCWD, path, &file, 0) == 0 && S_ISFIFO(file.st_mode);
    errno = saved_errno;
    return pipe;
}

/* A reader is open at once, so that writers find it, but is handed out only when one has come. */
int shim_open_pipe(const char *path, int flags) {
    if (!waits_for_other_end(path, flags)) {
        return SHIM_NO_PIPE;
    }
    struct open_wait what = {.path = path, .flags = flags, .fd = -1};
    struct shim_wait wait = {.attempt = open_attempt, .what = &what, .until_ns = SIM_CLOCK_NEVER};
    bool interrupted = false;
    if (!wait_for(wait, &interrupted) || what.fd == -1) {
        return -1;
    }
    struct pollfd file = {.fd = what.fd, .events = POLLIN, .revents = 0};
    bool writes = (flags & O_ACCMODE) == O_WRONLY;
    if (!writes && poll_until(&file, 1, SIM_CLOCK_NEVER) == -1) {
        close(what.fd);
        errno = EINTR;
        return -1;
    }
    fcntl(what.fd, F_SETFL, flags & ~(O_CREAT | O_EXCL | O_TRUNC | O_NOCTTY | O_CLOEXEC));
    return what.fd;
}
