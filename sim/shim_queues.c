/* SPDX-License-Identifier: MIT
 * Message queues: the calls that wait under the simulated clock, and the recording of what is
 * received. */
#include "sim/clock_share.h"
#include "sim/shim_clock.h"
#include "sim/shim_next.h"
#include "sim/shim_record.h"
#include "sim/shim_waits.h"

#include <sys/ipc.h>
#include <sys/msg.h>

struct receive_wait {
    __typeof__(&msgrcv) next;
    int queue;
    void *message;
    size_t bytes;
    long type;
    int flags;
    bool was_there; /* at an earlier attempt */
    ssize_t result;
};

/* The call of a thread that waits already is told so when its queue is removed. */
static void tell_removal(bool was_there) {
    errno = was_there && errno == EINVAL ? EIDRM : errno;
}

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
    if (wait->result == -1 && errno == ENOMSG) {
        wait->was_there = true;
        return false;
    }
    tell_removal(wait->result == -1 && wait->was_there);
    return true;
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
    struct receive_wait what = {next, queue, message, bytes, type, flags, false, -1};
    struct shim_wait wait = {.ready = queue_holds_something,
                             .attempt = receive_attempt,
                             .what = &what,
                             .until_ns = SIM_CLOCK_NEVER};
    bool interrupted = false;
    return received(queue, message, shim_wait_for(wait, &interrupted) ? what.result : -1);
}

struct send_wait {
    __typeof__(&msgsnd) next;
    int queue;
    const void *message;
    size_t bytes;
    int flags;
    bool was_there; /* at an earlier attempt */
    int result;
};

static bool send_attempt(void *what) {
    struct send_wait *wait = what;
    wait->result = wait->next(wait->queue, wait->message, wait->bytes, wait->flags | IPC_NOWAIT);
    if (wait->result == -1 && errno == EAGAIN) {
        wait->was_there = true;
        return false;
    }
    tell_removal(wait->result == -1 && wait->was_there);
    return true;
}

EXPORT int msgsnd(int queue, const void *message, size_t bytes, int flags) {
    FIND_NEXT(msgsnd, -1)
    if (!shim_clock_mine() || (flags & IPC_NOWAIT) != 0) {
        return next(queue, message, bytes, flags);
    }
    struct send_wait what = {next, queue, message, bytes, flags, false, -1};
    struct shim_wait wait = {.attempt = send_attempt, .what = &what, .until_ns = SIM_CLOCK_NEVER};
    bool interrupted = false;
    return shim_wait_for(wait, &interrupted) ? what.result : -1;
}
