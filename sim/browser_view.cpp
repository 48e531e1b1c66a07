// SPDX-License-Identifier: MIT
// Finding, starting and ending ux-view.
#include "sim/browser_view.h"

#include "sim/failure.h"
#include "sim/host_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace ux::sim {

namespace {

constexpr const char *k_program = "ux-view";
constexpr int k_start_limit_ms = 10000;
constexpr int k_end_limit_ms = 2000; // between SIGTERM and SIGKILL

// With a slash it is that file, without one it is looked up in PATH.
std::string program_path() {
    const std::string beside = own_folder() + "/" + k_program;
    return access(beside.c_str(), X_OK) == 0 ? beside : k_program;
}

class pipe_pair {
  public:
    pipe_pair() {
        if (pipe2(m_ends.data(), O_CLOEXEC) != 0) {
            throw failure(system_reason("cannot make a pipe"));
        }
    }
    pipe_pair(const pipe_pair &) = delete;
    pipe_pair &operator=(const pipe_pair &) = delete;
    ~pipe_pair() {
        close(m_ends[0]);
        close_writing();
    }
    int reading() const { return m_ends[0]; }
    int writing() const { return m_ends[1]; }
    void close_writing() {
        if (m_ends[1] != -1) {
            close(m_ends[1]);
        }
        m_ends[1] = -1;
    }

  private:
    std::array<int, 2> m_ends{};
};

// How it is started: its output goes to us, its input is empty, and a terminal's Ctrl+C is left to
// the simulator, which ends it when the host is done.
class spawn_settings {
  public:
    explicit spawn_settings(int output) {
        posix_spawn_file_actions_init(&m_files);
        posix_spawn_file_actions_addopen(&m_files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&m_files, output, STDOUT_FILENO);
        sigset_t none;
        sigset_t plain; // what the simulator ignores
        sigemptyset(&none);
        sigemptyset(&plain);
        sigaddset(&plain, SIGPIPE);
        sigaddset(&plain, SIGXFSZ);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &plain);
        posix_spawnattr_setpgroup(&m_attributes, 0);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                    POSIX_SPAWN_SETPGROUP);
    }
    spawn_settings(const spawn_settings &) = delete;
    spawn_settings &operator=(const spawn_settings &) = delete;
    ~spawn_settings() {
        posix_spawnattr_destroy(&m_attributes);
        posix_spawn_file_actions_destroy(&m_files);
    }
    const posix_spawn_file_actions_t *files() const { return &m_files; }
    const posix_spawnattr_t *attributes() const { return &m_attributes; }

  private:
    posix_spawn_file_actions_t m_files{};
    posix_spawnattr_t m_attributes{};
};

// The addresses, one a line, the page's last; or what came before the program ended.
std::string read_addresses(int from) {
    std::string text;
    std::array<char, 4096> part{};
    pollfd readable = {.fd = from, .events = POLLIN, .revents = 0};
    while (!text.ends_with('\n') || text.find("web ") == std::string::npos) {
        if (::poll(&readable, 1, k_start_limit_ms) <= 0) {
            throw failure(std::string(k_program) + " tells no address");
        }
        const ssize_t bytes = read(from, part.data(), part.size());
        if (bytes <= 0) {
            return "";
        }
        text.append(part.data(), static_cast<size_t>(bytes));
    }
    return text;
}

} // namespace

browser_view::browser_view(const std::string &folder, std::optional<int> port) : m_folder(folder) {
    pipe_pair output;
    start(port, output.writing());
    output.close_writing();
    try {
        const std::string addresses = read_addresses(output.reading());
        if (addresses.empty()) {
            int status = 0;
            waitpid(m_pid, &status, 0);
            m_pid = -1;
            const host_end end = {status};
            const bool good = !end.by_signal() && end.exit_code() == k_status_ok;
            throw failure(std::string(k_program) + " " + end.description(),
                          good ? k_status_failed : end.as_exit_status());
        }
        if (std::fputs(addresses.c_str(), stdout) == EOF || std::fflush(stdout) != 0) {
            throw failure(system_reason("cannot write to standard output"));
        }
    } catch (const failure &) {
        stop();
        throw;
    }
}

browser_view::~browser_view() {
    stop();
}

void browser_view::start(std::optional<int> port, int output) {
    const std::string program = program_path();
    std::vector<std::string> words = {program, "--web"};
    if (port) {
        words.insert(words.end(), {"--web-port", std::to_string(*port)});
    }
    words.push_back(m_folder);
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string &word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const spawn_settings settings(output);
    const int error = posix_spawnp(&m_pid, program.c_str(), settings.files(), settings.attributes(),
                                   arguments.data(), environ);
    if (error != 0) {
        m_pid = -1;
        throw failure("cannot start " + program + ": " + std::strerror(error));
    }
}

void browser_view::stop() {
    if (m_pid == -1) {
        return;
    }
    kill(m_pid, SIGTERM);
    const int watched = static_cast<int>(syscall(SYS_pidfd_open, m_pid, 0));
    pollfd until_end = {.fd = watched, .events = POLLIN, .revents = 0};
    if (watched == -1 || ::poll(&until_end, 1, k_end_limit_ms) != 1) {
        kill(m_pid, SIGKILL);
    }
    if (watched != -1) {
        close(watched);
    }
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

void browser_view::check() {
    int status = 0;
    if (m_pid == -1 || waitpid(m_pid, &status, WNOHANG) != m_pid) {
        return;
    }
    m_pid = -1;
    std::fprintf(stderr, "ux-sim: %s %s; the run goes on, and '%s %s' shows it again\n", k_program,
                 host_end{status}.description().c_str(), k_program, m_folder.c_str());
}

} // namespace ux::sim
