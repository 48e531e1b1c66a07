// SPDX-License-Identifier: MIT
// The simulator's end of the simulated clock: grants time to the host and waits until it is used
// up.
#pragma once

#include "sim/screen.h"

#include <chrono>
#include <functional>
#include <string>

struct sim_clock_share;

namespace ux::sim {

// The date at which a run in virtual time begins if none is given: 2025-01-01, 00:00:00 UTC.
constexpr int64_t k_first_second = 1735689600;

class virtual_clock {
  public:
    // `epoch_s`: the date at which the run begins, seconds since 1970. `limit`: for how long, in
    // real time, simulated time may stand still. Throws failure.
    virtual_clock(int64_t epoch_s, std::chrono::seconds limit);

    // Under which the host can open the clock's memory as long as this process lives.
    std::string path() const { return m_memory.path(); }

    // Simulated time since the run began, on a scale of its own.
    steady::time_point now() const;

    // Lets the host run up to and including `until`, and returns when it rests there, or as soon as
    // `leave` says so, which is asked every few milliseconds. Throws failure when the clock does
    // not get on.
    void run_until(steady::time_point until, const std::function<bool()> &leave);

    // Lets the host run without end; returns at once. Time goes as fast as the host can.
    void run_free();

    // The host waits for something that no time brings about.
    bool rests() const;

  private:
    void grant(int64_t horizon_ns);
    [[noreturn]] void complain() const;

    std::chrono::seconds m_limit;
    shared_memory m_memory;
    sim_clock_share *m_share; // there
};

} // namespace ux::sim
