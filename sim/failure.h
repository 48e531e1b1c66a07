// SPDX-License-Identifier: MIT
// How the simulator and its tools give up: one exception with the text for the user and the exit
// status, and the meaning of the statuses.
#pragma once

#include <stdexcept>
#include <string>

namespace ux::sim {

constexpr int k_status_ok = 0;
constexpr int k_status_failed = 1;           // the run went wrong
constexpr int k_status_usage = 2;            // bad options or a bad script; nothing was started
constexpr int k_status_unexpected = 3;       // a shot is not what --expect holds
constexpr int k_status_cannot_execute = 126; // as shells report it
constexpr int k_status_not_found = 127;      // as shells report it
constexpr int k_status_signal_base = 128;    // plus the number of the signal

class failure : public std::runtime_error {
  public:
    explicit failure(const std::string &text, int status = k_status_failed)
        : std::runtime_error(text), m_status(status) {}

    int status() const { return m_status; }

  private:
    int m_status;
};

class usage_failure : public failure {
  public:
    explicit usage_failure(const std::string &text) : failure(text, k_status_usage) {}
};

// "what: reason of errno".
std::string system_reason(const std::string &what);

} // namespace ux::sim
