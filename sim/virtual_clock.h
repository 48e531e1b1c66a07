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

    // Lets a host that runs free and rests look again: somebody else may have sent something.
    void look_again();

    // The same, to be called now and then. Throws failure when the clock does not get on.
    void keep_free();

  private:
    bool rests() const; // the host waits for something that no more time was granted for
    void begin_to_watch();
    void watch(); // throws failure when time has stood still for too long
    void grant(int64_t horizon_ns);
    [[noreturn]] void complain() const;

    std::chrono::seconds m_limit;
    shared_memory m_memory;
    sim_clock_share *m_share; // there
    int64_t m_seen_ns = 0;    // simulated time, when it was last seen to get on:
    steady::time_point m_seen_at;
};

} // namespace ux::sim
