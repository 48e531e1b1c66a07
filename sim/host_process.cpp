// SPDX-License-Identifier: MIT
// Starting, watching and ending the host.
#include "sim/host_process.h"

#include "sim/failure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace ux::sim {

namespace {

bool sets_one_of(const char *entry, const host_setup &setup) {
    std::string_view name = std::string_view(entry).substr(0, std::string_view(entry).find('='));
    for (const auto &variable : setup.variables) {
        if (variable.first == name) {
            return true;
        }
    }
    return name == "LD_PRELOAD";
}

std::vector<std::string> environment_for(const host_setup &setup) {
    std::vector<std::string> result;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        if (!sets_one_of(*entry, setup)) {
            result.emplace_back(*entry);
        }
    }
    for (const auto &[name, value] : setup.variables) {
        std::string entry = name;
        entry += "=";
        entry += value;
        result.push_back(entry);
    }
    const char *others = std::getenv("LD_PRELOAD");
    bool more = others != nullptr && *others != '\0';
    result.push_back("LD_PRELOAD=" + setup.preload + (more ? std::string(":") + others : ""));
    return result;
}

std::vector<char *> pointers(std::vector<std::string> &texts) {
    std::vector<char *> result;
    result.reserve(texts.size() + 1);
    for (std::string &text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

// In the child, between fork and exec: only calls that are safe there. Reports by `report`.
[[noreturn]] void become_host(char *const *arguments, char *const *environment, pid_t parent,
                              int report) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    signal(SIGXFSZ, SIG_DFL);
    // A viewer that is killed takes its host with it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == parent) {
        execvpe(arguments[0], arguments, environment);
    }
    int reason = errno;
    [[maybe_unused]] ssize_t told = write(report, &reason, sizeof reason);
    _exit(k_status_not_found);
}

// Children of this process, whoever started them: the host's own became ours when it ended.
std::vector<pid_t> own_children() {
    std::array<char, 64> path{};
    std::snprintf(path.data(), path.size(), "/proc/self/task/%d/children", getpid());
    std::vector<pid_t> result;
    if (FILE *list = std::fopen(path.data(), "re")) {
        int pid = 0;
        while (std::fscanf(list, "%d", &pid) == 1) {
            result.push_back(pid);
        }
        std::fclose(list);
    }
    return result;
}

std::optional<std::string> existing(const std::string &path) {
    char *resolved = realpath(path.c_str(), nullptr);
    if (resolved == nullptr) {
        return std::nullopt;
    }
    std::string result = resolved;
    std::free(resolved);
    return result;
}

} // namespace

bool host_end::by_signal() const {
    return WIFSIGNALED(wait_status);
}

int host_end::signal() const {
    return WTERMSIG(wait_status);
}

int host_end::exit_code() const {
    return WEXITSTATUS(wait_status);
}

int host_end::as_exit_status() const {
    return by_signal() ? k_status_signal_base + signal() : exit_code();
}

std::string host_end::description() const {
    if (by_signal()) {
        return "was ended by signal " + std::to_string(signal()) + " (" + strsignal(signal()) + ")";
    }
    return "ended with exit status " + std::to_string(exit_code());
}

host_process::host_process(const host_setup &setup) {
    std::vector<std::string> arguments = setup.arguments;
    std::vector<std::string> environment = environment_for(setup);
    std::vector<char *> argument_pointers = pointers(arguments);
    std::vector<char *> environment_pointers = pointers(environment);
    std::array<int, 2> report{};
    if (pipe2(report.data(), O_CLOEXEC) != 0) {
        throw failure(system_reason("cannot make a pipe"));
    }
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    pid_t parent = getpid();
    m_pid = fork();
    if (m_pid == 0) {
        become_host(argument_pointers.data(), environment_pointers.data(), parent, report[1]);
    }
    close(report[1]);
    int reason = m_pid == -1 ? errno : 0;
    if (m_pid != -1 && read(report[0], &reason, sizeof reason) > 0) {
        waitpid(m_pid, nullptr, 0);
    }
    close(report[0]);
    if (reason != 0) {
        int status = reason == ENOENT ? k_status_not_found : k_status_cannot_execute;
        throw failure("cannot start " + setup.arguments[0] + ": " + std::strerror(reason), status);
    }
}

host_process::~host_process() {
    if (!poll()) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    // What a killed process leaves becomes ours in turn, so the list is asked for again.
    constexpr int k_generations = 64;
    std::vector<pid_t> left = own_children();
    for (int round = 0; round < k_generations && !left.empty(); ++round, left = own_children()) {
        for (pid_t pid : left) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }
}

std::optional<host_end> host_process::poll() {
    int status = 0;
    if (!m_end && waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_end = host_end{status};
    }
    return m_end;
}

host_end host_process::stop(std::chrono::milliseconds patience) {
    if (auto ended = poll()) {
        return *ended;
    }
    int watched = static_cast<int>(syscall(SYS_pidfd_open, m_pid, 0));
    kill(m_pid, SIGTERM);
    pollfd until_end{.fd = watched, .events = POLLIN, .revents = 0};
    const auto deadline = steady::now() + patience;
    while (!poll()) {
        auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady::now());
        if (left.count() <= 0) {
            kill(m_pid, SIGKILL);
            int status = 0;
            waitpid(m_pid, &status, 0);
            m_end = host_end{status};
            break;
        }
        // Without a descriptor for the process, look again now and then.
        constexpr int k_look_again_ms = 10;
        int wait_ms = static_cast<int>(left.count());
        ::poll(&until_end, 1, watched == -1 ? std::min(wait_ms, k_look_again_ms) : wait_ms);
    }
    if (watched != -1) {
        close(watched);
    }
    return *m_end;
}

std::string own_folder() {
    std::array<char, PATH_MAX> path{};
    ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
    std::string_view whole(path.data(), length > 0 ? static_cast<size_t>(length) : 0);
    return std::string(whole.substr(0, whole.rfind('/')));
}

std::string find_shim() {
    constexpr const char *k_file = "libux-sim-shim.so";
    if (const char *given = std::getenv("UX_SIM_SHIM"); given != nullptr && *given != '\0') {
        if (auto path = existing(given)) {
            return *path;
        }
        throw failure(system_reason(std::string("cannot use UX_SIM_SHIM ") + given));
    }
    const std::string beside = own_folder() + "/";
    for (const char *folder : {"../lib/", UX_SIM_SHIM_FOLDER}) {
        std::string path = folder[0] == '/' ? folder : beside + folder;
        if (auto found = existing(path + k_file)) {
            return *found;
        }
    }
    throw failure(std::string("cannot find ") + k_file + " beside " + beside +
                  "; UX_SIM_SHIM may name it");
}

} // namespace ux::sim
