// SPDX-License-Identifier: MIT
// The processes of viewers: starting, hearing and ending them.
#include "tools/view_server.h"

#include "tools/view_viewer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace ux::view {

namespace {

constexpr size_t k_most_viewers = 16;
constexpr size_t k_most_at_the_door = 16;
constexpr int k_newcomers_at_once = 4; // the others' pictures go on
constexpr int k_reports_at_once = 64;

// The new process keeps nothing that is ux-view's but its task's two sockets, and ends with it.
void leave_home(pid_t home, int connection, int channel) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != home) {
        _exit(0);
    }
    sigset_t ending;
    sigemptyset(&ending);
    for (int number : {SIGINT, SIGTERM, SIGHUP}) {
        std::signal(number, SIG_DFL);
        sigaddset(&ending, number);
    }
    sigprocmask(SIG_UNBLOCK, &ending, nullptr);
    for (int fd = STDERR_FILENO + 1; fd < FD_SETSIZE; ++fd) {
        if (fd != connection && fd != channel) {
            close(fd);
        }
    }
}

int run(const viewer_task &task) {
    try {
        serve_viewer(task);
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ux-view: %s\n", error.what());
        return 1;
    }
}

} // namespace

view_server::viewer_process::~viewer_process() {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

view_server::view_server(frame_source &source, sim::paced_sender &input,
                         std::vector<listener> sockets, const std::string &name,
                         const std::string &password)
    : m_source(source), m_input(input), m_sockets(std::move(sockets)), m_picture(source.layout()),
      m_watch(m_picture), m_name(name), m_password(password) {}

int view_server::add_to(fd_set &wanted) const {
    int highest = -1;
    const auto add = [&](int fd) {
        FD_SET(fd, &wanted);
        highest = std::max(highest, fd);
    };
    for (const listener &socket : m_sockets) {
        add(socket.fd());
    }
    for (const viewer_process &viewer : m_viewers) {
        add(viewer.channel.get());
    }
    return highest;
}

void view_server::look() {
    const std::byte *rows = m_source.rows();
    const bool changed = m_newcomer ? m_watch.look_whole(rows) : m_watch.look(rows);
    m_newcomer = false;
    if (!changed) {
        return;
    }
    for (const viewer_process &viewer : m_viewers) {
        // One that has not taken the packets before will see this change with them.
        send(viewer.channel.get(), "", 1, MSG_DONTWAIT | MSG_NOSIGNAL);
    }
}

void view_server::serve() {
    m_viewers.remove_if([&](viewer_process &viewer) { return !hear(viewer); });
    take_newcomers();
}

size_t view_server::count(bool is_in) const {
    return static_cast<size_t>(std::ranges::count(m_viewers, is_in, &viewer_process::is_in));
}

// False when the viewer has gone or may not stay.
bool view_server::hear(viewer_process &viewer) {
    for (int heard = 0; heard < k_reports_at_once; ++heard) {
        viewer_report report;
        const ssize_t bytes = recv(viewer.channel.get(), &report, sizeof report, MSG_DONTWAIT);
        if (bytes != sizeof report) {
            return bytes == -1 && (errno == EAGAIN || errno == EINTR);
        }
        if (report.kind == report_kind::came_in) {
            if (count(true) == k_most_viewers) {
                return false;
            }
            viewer.is_in = true;
        } else if (!report.repeated || m_input.idle()) {
            m_input.post(report.message);
        }
    }
    return true;
}

void view_server::take_newcomers() {
    for (const listener &socket : m_sockets) {
        for (int taken = 0; taken < k_newcomers_at_once; ++taken) {
            const int fd = accept4(socket.fd(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
            if (fd == -1) {
                break;
            }
            const sim::owned_fd connection(fd);
            if (count(true) < k_most_viewers) {
                make_room_at_the_door();
                start_process(fd);
            }
        }
    }
}

// Those who say nothing shall not keep the others out: the first to come goes.
void view_server::make_room_at_the_door() {
    if (count(false) == k_most_at_the_door) {
        m_viewers.erase(std::ranges::find(m_viewers, false, &viewer_process::is_in));
    }
}

// While nobody looked, nothing was compared: the newcomer's first picture must be a new one.
void view_server::start_process(int connection) {
    if (m_viewers.empty()) {
        m_watch.look_whole(m_source.rows());
    }
    m_newcomer = true;
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair.data()) != 0) {
        return; // no descriptor is free: the viewer is turned away
    }
    sim::owned_fd ours(pair[0]);
    const sim::owned_fd theirs(pair[1]);
    const pid_t home = getpid();
    const pid_t process = fork();
    if (process == 0) {
        leave_home(home, connection, theirs.get());
        _exit(run({.connection = connection,
                   .channel = theirs.get(),
                   .picture = m_picture,
                   .name = m_name,
                   .password = m_password}));
    }
    if (process != -1) {
        m_viewers.emplace_back(process, std::move(ours));
    }
}

} // namespace ux::view
