// SPDX-License-Identifier: MIT
// The host: started with the shim before its libraries, watched, ended.
#pragma once

#include "sim/screen.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace ux::sim {

struct host_setup {
    std::vector<std::string> arguments;                         // the program first
    std::vector<std::pair<std::string, std::string>> variables; // set in its environment
    std::string preload;                                        // put in front of LD_PRELOAD
};

// How a process ended.
struct host_end {
    int wait_status = 0; // as waitpid gives it

    bool by_signal() const;
    int signal() const;    // by_signal()
    int exit_code() const; // otherwise
    // 0..255; a signal counts as shells report it.
    int as_exit_status() const;
    // "ended with exit status 3", "was ended by signal 11 (Segmentation fault)".
    std::string description() const;
};

// Ends the host, and what the host left running, at the latest when it goes.
class host_process {
  public:
    explicit host_process(const host_setup &setup); // throws failure when it cannot be started
    host_process(const host_process &) = delete;
    host_process &operator=(const host_process &) = delete;
    ~host_process();

    // How it ended, or nothing while it lives. Never blocks.
    std::optional<host_end> poll();

    // Asks it to end, waits up to `patience`, then kills it.
    host_end stop(std::chrono::milliseconds patience);

  private:
    pid_t m_pid = -1;
    std::optional<host_end> m_end;
};

// Where this program lies.
std::string own_folder();

// The preload library that belongs to this program: UX_SIM_SHIM, else in the build tree or the
// installation beside it. Throws failure.
std::string find_shim();

} // namespace ux::sim
