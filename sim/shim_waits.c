/* SPDX-License-Identifier: MIT
 * The calls that wait for descriptors. Under the simulated clock each becomes a look
 * without waiting, repeated whenever something can have changed. The network is the exception: an
 * answer from another machine takes no simulated time, so these waits are real and the clock stands
 * meanwhile. Waiting for others to connect is not waiting for an answer. */
#include "sim/shim_waits.h"

#include "sim/clock_share.h"
#include "sim/shim_clock.h"
#include "sim/shim_next.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stddef.h>
#include <sys/epoll.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

static const int64_t k_millisecond_ns = 1000000;
static const int64_t k_second_us = 1000000;

int __poll_chk(struct pollfd *files, nfds_t count, int timeout_ms, size_t room);
int __ppoll_chk(struct pollfd *files, nfds_t count, const struct timespec *timeout,
                const sigset_t *mask, size_t room);
ssize_t __read_chk(int fd, void *buffer, size_t bytes, size_t room);

bool shim_is_timeout(const struct timespec *timeout) {
    return timeout == NULL || (timeout->tv_sec >= 0 && shim_clock_is_valid(timeout));
}

int64_t shim_deadline_of(const struct timespec *timeout) {
    if (timeout == NULL || timeout->tv_sec > SIM_CLOCK_NEVER / SHIM_SECOND_NS - 1) {
        return SIM_CLOCK_NEVER;
    }
    return shim_clock_after(timeout->tv_sec * SHIM_SECOND_NS + timeout->tv_nsec);
}

bool shim_wait_for(struct shim_wait wait, bool *interrupted) {
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
    int listens = 0;
    bool known = getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 &&
                 getsockopt(fd, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) == 0;
    errno = saved_errno;
    return known && listens == 0 && (domain == AF_INET || domain == AF_INET6);
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
        shim_wait_for((struct shim_wait){.until_ns = until_ns}, &interrupted);
    }
    return result;
}

static int poll_until(struct pollfd *files, nfds_t count, int64_t until_ns, bool restarts) {
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
    struct shim_wait wait = {.ready = poll_attempt,
                             .attempt = poll_attempt,
                             .what = &what,
                             .until_ns = until_ns,
                             .restarts = restarts};
    bool interrupted = false;
    bool ready = shim_wait_for(wait, &interrupted);
    return ready ? what.result : interrupted ? -1 : 0;
}

EXPORT int poll(struct pollfd *files, nfds_t count, int timeout_ms) {
    FIND_NEXT(poll, -1)
    if (!shim_clock_mine()) {
        return next(files, count, timeout_ms);
    }
    int64_t until_ns =
        timeout_ms < 0 ? SIM_CLOCK_NEVER : shim_clock_after(timeout_ms * k_millisecond_ns);
    return poll_until(files, count, until_ns, false);
}

EXPORT int __poll_chk(struct pollfd *files, nfds_t count, int timeout_ms, size_t room) {
    FIND_NEXT(__poll_chk, -1)
    bool fits = room / sizeof *files >= count;
    return fits && shim_clock_mine() ? poll(files, count, timeout_ms)
                                     : next(files, count, timeout_ms, room);
}

EXPORT int ppoll(struct pollfd *files, nfds_t count, const struct timespec *timeout,
                 const sigset_t *mask) {
    FIND_NEXT(ppoll, -1)
    if (!shim_clock_mine() || !shim_is_timeout(timeout)) {
        return next(files, count, timeout, mask);
    }
    sigset_t before;
    int result = -1;
    if (shim_mask_put(mask, &before) || poll_now(files, count, 0) != 0) {
        result = poll_until(files, count, shim_deadline_of(timeout), false);
    }
    shim_mask_restore(mask, &before);
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
    shim_wait_for(wait, &interrupted);
    for (int at = 0; at < 3 && !interrupted && what->result >= 0; ++at) {
        if (sets[at] != NULL) {
            *sets[at] = what->answer[at];
        }
    }
    return interrupted ? -1 : what->result;
}

static bool is_interval(const struct timeval *timeout) {
    return timeout == NULL || (timeout->tv_sec >= 0 && timeout->tv_usec >= 0);
}

static int64_t end_of(const struct timeval *timeout) {
    if (timeout == NULL) {
        return SIM_CLOCK_NEVER;
    }
    const struct timespec duration = {.tv_sec = timeout->tv_sec + timeout->tv_usec / k_second_us,
                                      .tv_nsec = timeout->tv_usec % k_second_us * 1000};
    return shim_deadline_of(&duration);
}

EXPORT int select(int limit, fd_set *restrict reading, fd_set *restrict writing,
                  fd_set *restrict special, struct timeval *restrict timeout) {
    FIND_NEXT(select, -1)
    struct select_wait what = {.limit = limit, .asked = {reading, writing, special}};
    if (!shim_clock_mine() || limit > FD_SETSIZE || !is_interval(timeout)) {
        return next(limit, reading, writing, special, timeout);
    }
    fd_set *sets[3] = {reading, writing, special};
    int64_t until_ns = end_of(timeout);
    int result = 0;
    if (select_network(&what)) { /* a wait in vain then takes its simulated time as well */
        result = next(limit, reading, writing, special, timeout);
        sets[0] = sets[1] = sets[2] = NULL;
        what = (struct select_wait){.limit = 0};
    }
    if (result == 0) {
        result = select_until(&what, sets, until_ns);
    }
    if (timeout != NULL) { /* as the kernel does: what is left */
        int64_t left_us = (until_ns - shim_clock_now()) / 1000;
        left_us = left_us < 0 ? 0 : left_us;
        *timeout =
            (struct timeval){.tv_sec = left_us / k_second_us, .tv_usec = left_us % k_second_us};
    }
    return result;
}

EXPORT int pselect(int limit, fd_set *restrict reading, fd_set *restrict writing,
                   fd_set *restrict special, const struct timespec *restrict timeout,
                   const sigset_t *restrict mask) {
    FIND_NEXT(pselect, -1)
    struct select_wait what = {.limit = limit, .asked = {reading, writing, special}};
    if (!shim_clock_mine() || limit > FD_SETSIZE || !shim_is_timeout(timeout) ||
        select_network(&what)) {
        return next(limit, reading, writing, special, timeout, mask);
    }
    fd_set *sets[3] = {reading, writing, special};
    sigset_t before;
    int result = -1;
    if (shim_mask_put(mask, &before) || select_attempt(&what)) {
        result = select_until(&what, sets, shim_deadline_of(timeout));
    }
    shim_mask_restore(mask, &before);
    return result;
}

/* --- epoll --- */

/* A set is readable when it has something to tell: the call itself need not wait. False: errno. */
static bool wait_for_set(int set, int64_t timeout_ns, const sigset_t *mask) {
    struct pollfd file = {.fd = set, .events = POLLIN, .revents = 0};
    const struct timespec duration = {.tv_sec = timeout_ns / SHIM_SECOND_NS,
                                      .tv_nsec = timeout_ns % SHIM_SECOND_NS};
    return ppoll(&file, 1, timeout_ns < 0 ? NULL : &duration, mask) != -1;
}

EXPORT int epoll_wait(int set, struct epoll_event *events, int room, int timeout_ms) {
    FIND_NEXT(epoll_wait, -1)
    if (!shim_clock_mine()) {
        return next(set, events, room, timeout_ms);
    }
    return wait_for_set(set, timeout_ms * k_millisecond_ns, NULL) ? next(set, events, room, 0) : -1;
}

EXPORT int epoll_pwait(int set, struct epoll_event *events, int room, int timeout_ms,
                       const sigset_t *mask) {
    FIND_NEXT(epoll_pwait, -1)
    if (!shim_clock_mine()) {
        return next(set, events, room, timeout_ms, mask);
    }
    return wait_for_set(set, timeout_ms * k_millisecond_ns, mask) ? next(set, events, room, 0, NULL)
                                                                  : -1;
}

EXPORT int epoll_pwait2(int set, struct epoll_event *events, int room,
                        const struct timespec *timeout, const sigset_t *mask) {
    FIND_NEXT(epoll_pwait2, -1)
    if (!shim_clock_mine() || !shim_is_timeout(timeout)) {
        return next(set, events, room, timeout, mask);
    }
    const struct timespec none = {0, 0};
    int64_t until_ns = shim_deadline_of(timeout);
    int64_t timeout_ns = until_ns == SIM_CLOCK_NEVER ? -1 : until_ns - shim_clock_now();
    return wait_for_set(set, timeout_ns, mask) ? next(set, events, room, &none, NULL) : -1;
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
    return poll_until(&file, 1, SIM_CLOCK_NEVER, true) != -1;
}

static bool wait_received(int fd, int flags) {
    return (flags & MSG_DONTWAIT) != 0 || wait_readable(fd);
}

EXPORT ssize_t read(int fd, void *buffer, size_t bytes) {
    FIND_NEXT(read, -1)
    return wait_readable(fd) ? next(fd, buffer, bytes) : -1;
}

EXPORT ssize_t __read_chk(int fd, void *buffer, size_t bytes, size_t room) {
    FIND_NEXT(__read_chk, -1)
    return wait_readable(fd) ? next(fd, buffer, bytes, room) : -1;
}

EXPORT ssize_t recv(int fd, void *buffer, size_t bytes, int flags) {
    FIND_NEXT(recv, -1)
    return wait_received(fd, flags) ? next(fd, buffer, bytes, flags) : -1;
}

EXPORT ssize_t recvfrom(int fd, void *restrict buffer, size_t bytes, int flags, __SOCKADDR_ARG from,
                        socklen_t *restrict size) {
    FIND_NEXT(recvfrom, -1)
    return wait_received(fd, flags) ? next(fd, buffer, bytes, flags, from, size) : -1;
}

EXPORT ssize_t recvmsg(int fd, struct msghdr *message, int flags) {
    FIND_NEXT(recvmsg, -1)
    return wait_received(fd, flags) ? next(fd, message, flags) : -1;
}

EXPORT int accept(int fd, __SOCKADDR_ARG from, socklen_t *restrict size) {
    FIND_NEXT(accept, -1)
    return wait_readable(fd) ? next(fd, from, size) : -1;
}

EXPORT int accept4(int fd, __SOCKADDR_ARG from, socklen_t *restrict size, int flags) {
    FIND_NEXT(accept4, -1)
    return wait_readable(fd) ? next(fd, from, size, flags) : -1;
}

/* --- named pipes --- */

struct open_wait {
    int folder;
    const char *path;
    int flags;
    int fd;
};

/* A writer can be opened without waiting only when there is a reader. */
static bool open_attempt(void *what) {
    struct open_wait *wait = what;
    wait->fd = openat(wait->folder, wait->path, wait->flags | O_NONBLOCK, 0);
    return wait->fd != -1 || errno != ENXIO;
}

static bool waits_for_other_end(int folder, const char *path, int flags) {
    struct stat file;
    if (path == NULL || !shim_clock_mine() || (flags & (O_NONBLOCK | O_PATH)) != 0 ||
        (flags & O_ACCMODE) == O_RDWR) {
        return false;
    }
    int saved_errno = errno;
    bool pipe = fstatat(folder, path, &file, 0) == 0 && S_ISFIFO(file.st_mode);
    errno = saved_errno;
    return pipe;
}

/* A reader is open at once, so that writers find it, but is handed out only when one has come. */
int shim_open_pipe(int folder, const char *path, int flags) {
    if (!waits_for_other_end(folder, path, flags)) {
        return SHIM_NO_PIPE;
    }
    struct open_wait what = {.folder = folder, .path = path, .flags = flags, .fd = -1};
    struct shim_wait wait = {
        .attempt = open_attempt, .what = &what, .until_ns = SIM_CLOCK_NEVER, .restarts = true};
    bool interrupted = false;
    if (!shim_wait_for(wait, &interrupted) || what.fd == -1) {
        return -1;
    }
    struct pollfd file = {.fd = what.fd, .events = POLLIN, .revents = 0};
    bool writes = (flags & O_ACCMODE) == O_WRONLY;
    if (!writes && poll_until(&file, 1, SIM_CLOCK_NEVER, true) == -1) {
        close(what.fd);
        errno = EINTR;
        return -1;
    }
    fcntl(what.fd, F_SETFL, flags & ~(O_CREAT | O_EXCL | O_TRUNC | O_NOCTTY | O_CLOEXEC));
    return what.fd;
}
