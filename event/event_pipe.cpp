// SPDX-License-Identifier: MIT
// The event pipe; see event_pipe.h.

#include "event/event_pipe.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ux {
namespace {

constexpr unsigned k_retry_us = 1000;
constexpr int k_poll_ms = 20;

// A reader that goes away must not end the process: SIGPIPE is held back and taken out again.
class sigpipe_blocked {
  public:
    sigpipe_blocked() {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    }
    ~sigpipe_blocked() {
        if (sigismember(&m_before, SIGPIPE) == 0) {
            const timespec now = {0, 0};
            sigtimedwait(&m_signals, nullptr, &now);
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    sigpipe_blocked(const sigpipe_blocked &) = delete;
    sigpipe_blocked &operator=(const sigpipe_blocked &) = delete;

  private:
    sigset_t m_signals;
    sigset_t m_before;
};

// Opens `path` if it names a pipe: in /tmp anybody may have put something else there.
int open_pipe(const char *path, int flags) {
    const int descriptor = open(path, flags | O_CLOEXEC);
    struct stat status;
    if (descriptor < 0 || (fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode)))
        return descriptor;
    close(descriptor);
    errno = EINVAL;
    return -1;
}

// Opens, writes and closes; errno tells why not. A message is shorter than PIPE_BUF: it goes in
// whole or not at all.
bool write_now(const char *path, const char *text) {
    const int descriptor = open_pipe(path, O_WRONLY | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    const sigpipe_blocked guard;
    const bool written = write(descriptor, text, strlen(text)) >= 0;
    const int error = errno;
    close(descriptor);
    errno = error;
    return written;
}

bool is_passing(int error) {
    return error == ENXIO || error == EAGAIN || error == EPIPE || error == EINTR;
}

} // namespace

void write_pipe(const char *path, const char *text, give_up_test give_up) {
    for (int asked = 0; !write_now(path, text) && is_passing(errno) && !give_up(asked); asked++)
        usleep(k_retry_us);
}

// Does not block: the wait for a writer is read()'s, which can be given up.
pipe_lines::pipe_lines(const char *path) : pipe_lines(open_pipe(path, O_RDONLY | O_NONBLOCK)) {}

pipe_lines::~pipe_lines() {
    if (m_descriptor >= 0)
        close(m_descriptor);
}

// Waits for characters or for the last writer to close; a pipe that had no writer yet is quiet.
// Giving up comes after a last look, so that what was written before the test turned is read.
bool pipe_lines::await(give_up_test give_up) {
    pollfd wait = {m_descriptor, POLLIN, 0};
    for (int asked = 0; !m_gave_up; asked++) {
        const bool is_last_look = give_up(asked);
        if (poll(&wait, 1, is_last_look ? 0 : k_poll_ms) > 0)
            return true;
        m_gave_up = is_last_look;
    }
    return false;
}

// False at the end of the stream. Another reader may have been faster: then the wait goes on.
bool pipe_lines::fill(give_up_test give_up) {
    ssize_t got = 0;
    while (!m_ended && await(give_up)) {
        got = ::read(m_descriptor, m_buffer, sizeof m_buffer);
        if (got >= 0 || errno != EAGAIN)
            break;
    }
    m_next = 0;
    m_length = got > 0 ? static_cast<size_t>(got) : 0;
    m_ended = got <= 0;
    return !m_ended;
}

bool pipe_lines::read(char *line, size_t size, give_up_test give_up) {
    size_t length = 0;
    while (length + 1 < size) {
        if (m_next == m_length && !fill(give_up))
            break;
        line[length++] = m_buffer[m_next++];
        if (line[length - 1] == '\n')
            break;
    }
    if (length > 0)
        line[length] = '\0';
    return length > 0;
}

} // namespace ux
