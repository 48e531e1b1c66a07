// SPDX-License-Identifier: MIT
// Helpers of the end-to-end tests: programs with captured output, private folders, PNG files.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace ux::sim::test {

// A folder that goes with everything in it.
class temp_folder {
  public:
    temp_folder();
    temp_folder(const temp_folder &) = delete;
    temp_folder &operator=(const temp_folder &) = delete;
    ~temp_folder();

    const std::string &path() const { return m_path; }
    std::string operator/(const std::string &name) const { return m_path + "/" + name; }
    std::vector<std::string> names() const; // of the entries, sorted

  private:
    std::string m_path;
};

void write_file(const std::string &path, const std::string &text);
std::string read_file(const std::string &path);

// Looks at `condition` again and again until it holds; false after a generous limit.
bool eventually(const std::function<bool()> &condition);

using variables = std::vector<std::pair<std::string, std::string>>;

// A started program. Asked to end when it goes, so that it can clean up; killed if it does not.
class program {
  public:
    // `input` becomes its standard input. DISPLAY and WAYLAND_DISPLAY are unset unless given.
    program(const std::vector<std::string> &arguments, const variables &environment = {},
            const std::string &input = "");
    program(const program &) = delete;
    program &operator=(const program &) = delete;
    ~program();

    pid_t pid() const { return m_pid; }
    void signal(int number) const;
    // Those that run and have become another program.
    std::vector<pid_t> children() const;

    // The exit status (128 + signal when killed), or nothing when it does not end in time.
    std::optional<int> wait();

    std::string out() const;
    std::string err() const;

  private:
    temp_folder m_folder;
    pid_t m_pid = -1;
    std::optional<int> m_status;
};

// True while a process exists and is no zombie.
bool is_alive(pid_t pid);

struct rgb_picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> bytes;

    // 0xrrggbb, or nothing outside.
    std::optional<uint32_t> at(int x, int y) const;
};

// An empty picture when the file is none.
rgb_picture read_png(const std::string &path);

} // namespace ux::sim::test
