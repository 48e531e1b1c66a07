// SPDX-License-Identifier: MIT
// Starting and watching programs, folders and pictures for the end-to-end tests.
#include "tests/sim/process.h"

#include <png.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ux::sim::test {

namespace {

constexpr std::chrono::seconds k_limit{30};
constexpr std::chrono::milliseconds k_look_again{3};

void redirect(int to, const std::string &path, int flags) {
    int fd = open(path.c_str(), flags, 0600);
    dup2(fd, to);
    close(fd);
}

} // namespace

temp_folder::temp_folder() : m_path("/tmp/ux-sim-test.XXXXXX") {
    if (mkdtemp(m_path.data()) == nullptr) {
        throw std::runtime_error("mkdtemp");
    }
}

temp_folder::~temp_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> temp_folder::names() const {
    std::vector<std::string> result;
    for (const auto &entry : std::filesystem::directory_iterator(m_path)) {
        result.push_back(entry.path().filename());
    }
    std::ranges::sort(result);
    return result;
}

void write_file(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string read_file(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

bool eventually(const std::function<bool()> &condition) {
    const auto deadline = std::chrono::steady_clock::now() + k_limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(k_look_again);
    }
    return true;
}

program::program(const std::vector<std::string> &arguments, const variables &environment,
                 const std::string &input) {
    write_file(m_folder / "in", input);
    std::vector<char *> pointers;
    for (const std::string &argument : arguments) {
        pointers.push_back(const_cast<char *>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    m_pid = fork();
    if (m_pid == 0) {
        redirect(STDIN_FILENO, m_folder / "in", O_RDONLY);
        redirect(STDOUT_FILENO, m_folder / "out", O_WRONLY | O_CREAT | O_TRUNC);
        redirect(STDERR_FILENO, m_folder / "err", O_WRONLY | O_CREAT | O_TRUNC);
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
        for (const auto &[name, value] : environment) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        execvp(pointers[0], pointers.data());
        _exit(127);
    }
}

program::~program() {
    if (m_status || m_pid <= 0) {
        return;
    }
    kill(m_pid, SIGTERM);
    if (!wait()) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

void program::signal(int number) const {
    kill(m_pid, number);
}

// The file that a process runs; empty when it is gone.
static std::filesystem::path program_of(pid_t pid) {
    std::error_code gone;
    return std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/exe", gone);
}

std::vector<pid_t> program::children() const {
    const std::string pid = std::to_string(m_pid);
    std::ifstream list("/proc/" + pid + "/task/" + pid + "/children");
    const std::filesystem::path own = program_of(m_pid);
    std::vector<pid_t> result;
    for (pid_t child = 0; list >> child;) {
        const std::filesystem::path file = program_of(child);
        if (!file.empty() && file != own) {
            result.push_back(child);
        }
    }
    return result;
}

std::optional<int> program::wait() {
    int status = 0;
    if (!m_status && eventually([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; })) {
        m_status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }
    return m_status;
}

std::string program::out() const {
    return read_file(m_folder / "out");
}

std::string program::err() const {
    return read_file(m_folder / "err");
}

bool is_alive(pid_t pid) {
    std::string state = read_file("/proc/" + std::to_string(pid) + "/stat");
    size_t name_end = state.rfind(')');
    return name_end != std::string::npos && state.substr(name_end + 2, 1) != "Z";
}

std::optional<uint32_t> rgb_picture::at(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        return std::nullopt;
    }
    const uint8_t *pixel = bytes.data() + (static_cast<size_t>(y) * width + x) * 3;
    return static_cast<uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
}

rgb_picture read_png(const std::string &path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    rgb_picture result;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        return result;
    }
    image.format = PNG_FORMAT_RGB;
    result.bytes.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, result.bytes.data(), 0, nullptr) != 0) {
        result.width = static_cast<int>(image.width);
        result.height = static_cast<int>(image.height);
    }
    return result;
}

} // namespace ux::sim::test
